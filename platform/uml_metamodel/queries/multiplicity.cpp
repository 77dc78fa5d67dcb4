#include <limits>

#include "queries/queries.h"
#include "uml_metamodel/umlmm/UnlimitedNatural.h"

namespace umlmm::queries {

namespace {

constexpr std::uint32_t kUnlimited = UnlimitedNatural::kUnlimited;

std::uint32_t unlimitedValue(Reading aLiteral) noexcept {
  return aLiteral.number(ids::LiteralUnlimitedNatural::Value);
}
std::int32_t integerValue(Reading aLiteral) noexcept {
  return static_cast<std::int32_t>(aLiteral.number(ids::LiteralInteger::Value));
}

}  // namespace

std::optional<std::int32_t> integerOf(Reading aValue) noexcept {
  if (!aValue) return std::nullopt;
  if (aValue.isA(ids::metaclass::LiteralInteger)) return integerValue(aValue);
  if (!aValue.isA(ids::metaclass::LiteralUnlimitedNatural)) return std::nullopt;
  std::uint32_t const value = unlimitedValue(aValue);
  if (value > static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max())) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

std::optional<std::uint32_t> unlimitedOf(Reading aValue) noexcept {
  if (!aValue) return std::nullopt;
  if (aValue.isA(ids::metaclass::LiteralUnlimitedNatural)) return unlimitedValue(aValue);
  if (!aValue.isA(ids::metaclass::LiteralInteger)) return std::nullopt;
  std::int32_t const value = integerValue(aValue);
  if (value == -1) return kUnlimited;
  return value < 0 ? std::nullopt : std::optional(static_cast<std::uint32_t>(value));
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
