#include "model_files/dialect/values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "kelm/String.h"
#include "kelm/kernel/containers/Ref.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/String.h"

namespace umlmm::files {

namespace {

using Kelm::makePrimitive;
using Kelm::PrimitiveKind;

std::string_view trimmed(std::string_view aText) noexcept {
  constexpr std::string_view kBlanks = " \t\r\n";
  std::size_t const from = aText.find_first_not_of(kBlanks);
  if (from == std::string_view::npos) return {};
  return aText.substr(from, aText.find_last_not_of(kBlanks) - from + 1);
}

template <class Number>
std::optional<Number> number(std::string_view aText) noexcept {
  Number value = 0;
  auto const [end, error] = std::from_chars(aText.data(), aText.data() + aText.size(), value);
  if (error != std::errc() || end != aText.data() + aText.size()) return std::nullopt;
  return value;
}

Kelm::Object boolean(std::string_view aText) {
  if (aText == "true" || aText == "1") return makePrimitive(PrimitiveKind::Boolean, 1);
  if (aText == "false" || aText == "0") return makePrimitive(PrimitiveKind::Boolean, 0);
  return {};
}

Kelm::Object integer(std::string_view aText) {
  // Bounds are written as integers, too, and unlimited is less than none.
  auto const value = aText == "*" ? std::optional(-1) : number<std::int32_t>(aText);
  return value ? makePrimitive(PrimitiveKind::Integer, static_cast<std::uint32_t>(*value)) : Kelm::Object();
}

Kelm::Object unlimitedNatural(std::string_view aText) {
  if (aText == "*" || aText == "-1" || aText == "n")
    return makePrimitive(PrimitiveKind::UnlimitedNatural, UINT32_MAX);
  auto const value = number<std::uint32_t>(aText);
  return value ? makePrimitive(PrimitiveKind::UnlimitedNatural, *value) : Kelm::Object();
}

/// Literals are written with a small first letter: "inout", "private", "sequential".
bool isSpelling(std::string_view aText, std::string_view aLiteral) noexcept {
  return aText.size() == aLiteral.size() && aText.substr(1) == aLiteral.substr(1) &&
         (aText.front() | 0x20) == (aLiteral.front() | 0x20);
}

Kelm::Object literal(Kelm::EnumerationType const& aType, std::string_view aText) {
  auto const literals = aType.literals();
  for (std::size_t at = 0; !aText.empty() && at < literals.size(); ++at)
    if (isSpelling(aText, literals[at]))
      return Kelm::Object(aType.object(static_cast<int>(at)), Kelm::Deviant());
  return {};
}

}  // namespace

Kelm::Object textObject(std::string_view aText) {
  std::array<char16_t, 256> some;
  std::u16string many;
  std::size_t const length = aText.size();
  if (length > some.size()) many.resize(length);
  char16_t* const wide = length > some.size() ? many.data() : some.data();
  // Without a way out of the loop, so that it takes several characters in a step.
  unsigned char all = 0;
  for (std::size_t at = 0; at < length; ++at) {
    auto const byte = static_cast<unsigned char>(aText[at]);
    all |= byte;
    wide[at] = byte;
  }
  bool const isAscii = all < 0x80;
  Kelm::StringObject* const record = Kelm::StringObject::make(
      isAscii ? std::u16string_view(wide, length) : std::u16string_view(many = Kelm::toUtf16(aText)));
  Kelm::Object const object(record, Kelm::Deviant());
  record->decRef();
  return object;
}

Kelm::Object valueOf(Feature const& aFeature, std::string_view aText) {
  switch (aFeature.fKind) {
    case Kind::Boolean:
      return boolean(trimmed(aText));
    case Kind::Integer:
      return integer(trimmed(aText));
    case Kind::UnlimitedNatural:
      return unlimitedNatural(trimmed(aText));
    case Kind::Enumeration:
      return literal(*aFeature.fEnumeration, trimmed(aText));
    case Kind::String:
      return textObject(aText);
    case Kind::Reference:
      break;
  }
  return {};
}

bool appendValue(Kelm::Generic::SequenceIntf& aList, Feature const& aFeature, Kelm::Object const& aValue,
                 Kelm::Deviant const& aDeviant) {
  using Kelm::Generic::RefAccess;
  switch (aFeature.fKind) {
    case Kind::String:
      aList.generic_push_back(aDeviant, RefAccess<String>::make(String(aValue)));
      return true;
    case Kind::Boolean:
      aList.generic_push_back(aDeviant, RefAccess<Boolean>::make(Boolean(aValue)));
      return true;
    default:
      return false;
  }
}

std::string textOf(Feature const& aFeature, Kelm::Object const& aValue) {
  std::uint32_t const bits = aValue.getDeviant().value();
  switch (aFeature.fKind) {
    case Kind::Boolean:
      return bits != 0 ? "true" : "false";
    case Kind::Integer:
      return std::to_string(static_cast<std::int32_t>(bits));
    case Kind::UnlimitedNatural:
      return bits == UINT32_MAX ? "*" : std::to_string(bits);
    case Kind::Enumeration: {
      std::string text = aFeature.fEnumeration->text(Kelm::literalNumber(aValue, *aFeature.fEnumeration));
      if (!text.empty() && text.front() >= 'A' && text.front() <= 'Z')
        text.front() = static_cast<char>(text.front() | 0x20);
      return text;
    }
    case Kind::String:
      return Kelm::toUtf8(Kelm::asString(aValue)->text());
    case Kind::Reference:
      break;
  }
  return {};
}

namespace {

std::vector<Kelm::Generic::Loan> loansOf(Kelm::Generic::SequenceIntf const& aList,
                                         Kelm::Deviant const& aDeviant) {
  std::vector<Kelm::Generic::Loan> loans(static_cast<std::size_t>(aList.generic_size(aDeviant)));
  aList.readBlock(aDeviant, 0, static_cast<int>(loans.size()), loans.data());
  return loans;
}

Kelm::Generic::SequenceIntf const& listOf(Element const& aElement, Feature const& aFeature,
                                          Kelm::Deviant const& aDeviant) {
  return *aFeature.fMethods->getSequenceEntry(&aElement, aDeviant, aFeature.fId);
}

Element* asElement(Kelm::Object const& aObject) {
  return Kelm::queryHandle<Kelm::ClassObject, Kelm::VisitationDomain>(aObject).get();
}

}  // namespace

Kelm::Object read(Element const& aElement, Feature const& aFeature, Kelm::Deviant const& aDeviant) {
  return aFeature.fMethods->getEntry(&aElement, aDeviant, aFeature.fId);
}

std::vector<Element*> elementsOf(Element const& aElement, Feature const& aFeature,
                                 Kelm::Deviant const& aDeviant) {
  std::vector<Element*> elements;
  if (!aFeature.fMany) {
    if (Element* const element = asElement(read(aElement, aFeature, aDeviant))) elements.push_back(element);
    return elements;
  }
  for (auto const& loan : loansOf(listOf(aElement, aFeature, aDeviant), aDeviant))
    elements.push_back(Kelm::Generic::RefAccess<Kelm::ClassObject>::get(loan).get());
  return elements;
}

Element* elementAt(Element const& aElement, Feature const& aFeature, std::size_t aPosition,
                   Kelm::Deviant const& aDeviant) {
  Kelm::Generic::SequenceIntf const& list = listOf(aElement, aFeature, aDeviant);
  if (aPosition >= static_cast<std::size_t>(list.generic_size(aDeviant))) return nullptr;
  Kelm::Generic::Loan loan;
  list.readBlock(aDeviant, static_cast<int>(aPosition), 1, &loan);
  return Kelm::Generic::RefAccess<Kelm::ClassObject>::get(loan).get();
}

std::vector<std::string> textsOf(Element const& aElement, Feature const& aFeature,
                                 Kelm::Deviant const& aDeviant) {
  std::vector<std::string> texts;
  if (!aFeature.fMany) {
    Kelm::Object const value = read(aElement, aFeature, aDeviant);
    if (!value.isNull()) texts.push_back(textOf(aFeature, value));
    return texts;
  }
  for (auto const& loan : loansOf(listOf(aElement, aFeature, aDeviant), aDeviant))
    texts.push_back(aFeature.fKind == Kind::Boolean
                        ? (Kelm::Generic::RefAccess<Boolean>::get(loan).value() ? "true" : "false")
                        : Kelm::toUtf8(Kelm::Generic::RefAccess<String>::get(loan).text()));
  return texts;
}

std::string pathOf(Element const& aElement, Kelm::Deviant const& aDeviant) {
  std::string path;
  for (Element const* element = &aElement; element != nullptr; element = containerOf(*element, aDeviant)) {
    Metaclass const& metaclass = Metamodel::instance().metaclassOf(*element);
    Feature const* const feature = metaclass.feature("name");
    Kelm::Object const name = feature == nullptr ? Kelm::Object() : read(*element, *feature, aDeviant);
    if (!path.empty()) path.insert(0, "::");
    path.insert(0, name.isNull() ? std::string(metaclass.fName) : textOf(*feature, name));
  }
  return path;
}

std::string externalIdOf(Element const& aElement, Kelm::Deviant const& aDeviant) {
  Kelm::Object const id = aElement.getKernelEntry(aDeviant, Element::ExternalId);
  return id.isNull() ? std::string() : Kelm::toUtf8(Kelm::asString(id)->text());
}

Element* containerOf(Element const& aElement, Kelm::Deviant const& aDeviant) {
  return asElement(aElement.getKernelEntry(aDeviant, Element::ContainerKelm));
}

}  // namespace umlmm::files
