#include <limits>

#include "queries/queries.h"
#include "uml_metamodel/umlmm/UnlimitedNatural.h"

namespace umlmm::queries {

namespace {

constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kUnlimited = UnlimitedNatural::kUnlimited;

/// The number that a literal gives; `kUnlimited` is no integer.
std::int64_t numberOf(Reading aValue) noexcept {
  if (!aValue) return kNone;
  if (aValue.isA(ids::metaclass::LiteralInteger))
    return static_cast<std::int32_t>(aValue.number(ids::LiteralInteger::Value));
  if (aValue.isA(ids::metaclass::LiteralString)) {
    // Tools write bounds as texts as well.
    std::u16string_view const text = aValue.text(ids::LiteralString::Value);
    return text == u"*" || text == u"n" ? kUnlimited : numberIn(text).value_or(kNone);
  }
  bool const isNatural = aValue.isA(ids::metaclass::LiteralUnlimitedNatural);
  return isNatural ? std::int64_t{aValue.number(ids::LiteralUnlimitedNatural::Value)} : kNone;
}

}  // namespace

std::optional<std::int64_t> numberIn(std::u16string_view aText) noexcept {
  bool const isNegative = aText.starts_with(u'-');
  if (isNegative) aText.remove_prefix(1);
  if (aText.empty()) return std::nullopt;
  std::int64_t number = 0;
  for (char16_t const digit : aText) {
    if (digit < u'0' || digit > u'9' || number > kUnlimited) return std::nullopt;
    number = 10 * number + (digit - u'0');
  }
  return isNegative ? -number : number;
}

std::optional<std::int32_t> integerOf(Reading aValue) noexcept {
  std::int64_t const number = numberOf(aValue);
  if (number != static_cast<std::int32_t>(number)) return std::nullopt;
  return static_cast<std::int32_t>(number);
}

std::optional<std::uint32_t> unlimitedOf(Reading aValue) noexcept {
  std::int64_t const number = numberOf(aValue);
  // -1 is written for unlimited.
  if (number < -1 || number > kUnlimited) return std::nullopt;
  return static_cast<std::uint32_t>(number);
}

std::int32_t lowerBound(Reading aMultiplicity) noexcept {
  std::int32_t const otherwise = aMultiplicity.isA(ids::metaclass::ExtensionEnd) ? 0 : 1;
  return integerOf(aMultiplicity.reference(ids::MultiplicityElement::LowerValue)).value_or(otherwise);
}

std::uint32_t upperBound(Reading aMultiplicity) noexcept {
  return unlimitedOf(aMultiplicity.reference(ids::MultiplicityElement::UpperValue)).value_or(1);
}

bool includesMultiplicity(Reading aMultiplicity, Reading aOther) noexcept {
  return aOther && lowerBound(aMultiplicity) <= lowerBound(aOther) &&
         upperBound(aMultiplicity) >= upperBound(aOther);
}

namespace {

/// Whether a number is at least the lower bound.
bool reachesLower(Reading aMultiplicity, std::uint32_t aNumber) noexcept {
  return static_cast<std::int64_t>(aNumber) >= lowerBound(aMultiplicity);
}

}  // namespace

/// An unlimited upper bound has all bits set and so stands above every number.
bool includesCardinality(Reading aMultiplicity, std::int32_t aCardinality) noexcept {
  auto const cardinality = static_cast<std::uint32_t>(aCardinality);
  return aCardinality >= 0 && reachesLower(aMultiplicity, cardinality) &&
         cardinality <= upperBound(aMultiplicity);
}

bool isCompatibleWith(Reading aMultiplicity, Reading aOther) noexcept {
  if (!aOther) return false;
  return !reachesLower(aMultiplicity, upperBound(aMultiplicity)) ||
         includesMultiplicity(aOther, aMultiplicity);
}

}  // namespace umlmm::queries
