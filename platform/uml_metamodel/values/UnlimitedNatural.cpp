#include "uml_metamodel/umlmm/UnlimitedNatural.h"

#include <charconv>
#include <string>
#include <string_view>

#include "brond/TypeInfo.h"
#include "uml_metamodel/umlmm/detail/primitive.h"

namespace umlmm {

namespace {

constexpr char kUnlimitedText[] = "*";

std::string_view trimmed(std::string_view aText) {
  constexpr char kBlanks[] = " \t\n\r\f\v";
  std::size_t const first = aText.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return aText.substr(first, aText.find_last_not_of(kBlanks) - first + 1);
}

class UnlimitedNaturalTypeInfo final : public Brond::TypeInfo {
 public:
  Brond::any convertFromString(std::string const& aText, Brond::ErrorHolder& aError) const override {
    std::string_view const text = trimmed(aText);
    if (text == kUnlimitedText) return Brond::any(UnlimitedNatural(UnlimitedNatural::kUnlimited));
    std::uint32_t number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    // The greatest number has one text only, that of unlimited.
    if (error == std::errc() && end == text.data() + text.size() && number != UnlimitedNatural::kUnlimited)
      return Brond::any(UnlimitedNatural(number));
    aError.setError("'" + aText + "' is neither '*' nor a number from 0 to 4294967294");
    return Brond::any();
  }

  std::string convertToString(Brond::any const& aValue) const override {
    UnlimitedNatural const& value = Brond::any_cast<UnlimitedNatural>(aValue);
    return value.isUnlimited() ? kUnlimitedText : std::to_string(value.value());
  }
};

}  // namespace

UnlimitedNatural::UnlimitedNatural(Kelm::ImmutableObject const& aObject)
    : fValue(detail::primitiveBits<UnlimitedNatural>(aObject, Kelm::PrimitiveKind::UnlimitedNatural)) {}

UnlimitedNatural::operator Kelm::Object() const {
  return Kelm::makePrimitive(Kelm::PrimitiveKind::UnlimitedNatural, fValue);
}

// Never destroyed: values are written down until the very end.
Brond::TypeInfo const* UnlimitedNatural::getTypeInfo() noexcept {
  static Brond::TypeInfo const& sTypeInfo = *new UnlimitedNaturalTypeInfo;
  return &sTypeInfo;
}

}  // namespace umlmm
