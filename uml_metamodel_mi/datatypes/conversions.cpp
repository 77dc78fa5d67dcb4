#include "uml_metamodel_mi/datatypes/conversions.h"

#include <memory>
#include <string>

#include "brond/TypeInfo.h"
#include "kelm/Asserter.h"

namespace Kelm::mi {

vesk::VeskValue boxLiteral(Object const& aLiteral, vesk::VeskInterned aTypeName) {
  return announceObject(aLiteral.get(), aLiteral.getDeviant(), false, aTypeName);
}

umlmm::UnlimitedNatural unboxUnlimitedNatural(tarnArray const* aText) {
  std::unique_ptr<char, decltype(&tarnFree)> const text(tarnArray2String(aText), &tarnFree);
  Brond::ErrorHolder error;
  Brond::any const converted = umlmm::UnlimitedNatural::getTypeInfo()->convertFromString(text.get(), error);
  if (error.hasError()) kelm::Error_IncorrectType("UnlimitedNatural");
  return Brond::any_cast<umlmm::UnlimitedNatural>(converted);
}

vesk::VeskValue boxUnlimitedNatural(umlmm::UnlimitedNatural aValue) {
  std::string const text = umlmm::UnlimitedNatural::getTypeInfo()->convertToString(Brond::any(aValue));
  return tarnCreateString(text.c_str());
}

UnboxedArgument<std::string> ArgumentUnboxer<std::string>::unbox(vesk::VeskValue aValue) {
  std::unique_ptr<char, decltype(&tarnFree)> const text(tarnArrayToString_UTF8(aValue.array()), &tarnFree);
  return {text.get(), tarn::numberOfElements(aValue.array()) != 0};
}

UnboxedArgument<umlmm::String> ArgumentUnboxer<umlmm::String>::unbox(vesk::VeskValue aValue) {
  std::u16string_view const text = tarn::textOf(aValue.array());
  return {umlmm::String(text), !text.empty()};
}

vesk::VeskValue Boxer<umlmm::String>::box(umlmm::String const& aValue) {
  return tarnCreateString_UTF16(aValue.data());
}

UnboxedArgument<umlmm::UnlimitedNatural> ArgumentUnboxer<umlmm::UnlimitedNatural>::unbox(
    vesk::VeskValue aValue) {
  if (tarn::numberOfElements(aValue.array()) == 0) return {};
  return {unboxUnlimitedNatural(aValue.array()), true};
}

}  // namespace Kelm::mi
