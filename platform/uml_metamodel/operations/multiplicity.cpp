#include <limits>

#include "operations/queries.h"
#include "operations/results.h"
#include "uml_metamodel/umlmm/ExtensionEnd.h"
#include "uml_metamodel/umlmm/MultiplicityElement.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/multiplicity";

}  // namespace

namespace queries {

namespace {

constexpr std::uint32_t kUnlimited = UnlimitedNatural::kUnlimited;

std::uint32_t unlimitedValue(Element const& aLiteral) noexcept {
  return values::number(aLiteral, ids::LiteralUnlimitedNatural::Value);
}
std::int32_t integerValue(Element const& aLiteral) noexcept {
  return static_cast<std::int32_t>(values::number(aLiteral, ids::LiteralInteger::Value));
}

}  // namespace

std::optional<std::int32_t> integerOf(Element const* aValue) noexcept {
  if (aValue == nullptr) return std::nullopt;
  if (isA(*aValue, ids::metaclass::LiteralInteger)) return integerValue(*aValue);
  if (!isA(*aValue, ids::metaclass::LiteralUnlimitedNatural)) return std::nullopt;
  std::uint32_t const value = unlimitedValue(*aValue);
  if (value > static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max())) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

std::optional<std::uint32_t> unlimitedOf(Element const* aValue) noexcept {
  if (aValue == nullptr) return std::nullopt;
  if (isA(*aValue, ids::metaclass::LiteralUnlimitedNatural)) return unlimitedValue(*aValue);
  if (!isA(*aValue, ids::metaclass::LiteralInteger)) return std::nullopt;
  std::int32_t const value = integerValue(*aValue);
  if (value == -1) return kUnlimited;
  return value < 0 ? std::nullopt : std::optional(static_cast<std::uint32_t>(value));
}

std::int32_t lowerBound(Element const& aMultiplicity) noexcept {
  std::int32_t const otherwise = isA(aMultiplicity, ids::metaclass::ExtensionEnd) ? 0 : 1;
  return integerOf(values::reference(aMultiplicity, ids::MultiplicityElement::LowerValue))
      .value_or(otherwise);
}

std::uint32_t upperBound(Element const& aMultiplicity) noexcept {
  return unlimitedOf(values::reference(aMultiplicity, ids::MultiplicityElement::UpperValue)).value_or(1);
}

bool includesMultiplicity(Element const& aMultiplicity, Element const* aOther) noexcept {
  return aOther != nullptr && lowerBound(aMultiplicity) <= lowerBound(*aOther) &&
         upperBound(aMultiplicity) >= upperBound(*aOther);
}

namespace {

/// Whether a number is at least the lower bound.
bool reachesLower(Element const& aMultiplicity, std::uint32_t aNumber) noexcept {
  return static_cast<std::int64_t>(aNumber) >= lowerBound(aMultiplicity);
}

/// An unlimited upper bound has all bits set and so stands above every number.
bool includesCardinality(Element const& aMultiplicity, std::int32_t aCardinality) noexcept {
  auto const cardinality = static_cast<std::uint32_t>(aCardinality);
  return aCardinality >= 0 && reachesLower(aMultiplicity, cardinality) &&
         cardinality <= upperBound(aMultiplicity);
}

bool isCompatibleWith(Element const& aMultiplicity, Element const* aOther) noexcept {
  if (aOther == nullptr) return false;
  return !reachesLower(aMultiplicity, upperBound(aMultiplicity)) ||
         includesMultiplicity(*aOther, &aMultiplicity);
}

}  // namespace

}  // namespace queries

namespace NSInterface {

using queries::given;

Boolean MultiplicityElementIntf::isMultivalued(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::upperBound(*this) > 1;
}

Boolean MultiplicityElementIntf::includesCardinality(Kelm::Deviant const& aDeviant, Integer aC) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::includesCardinality(*this, aC.value());
}

Boolean MultiplicityElementIntf::includesMultiplicity(Kelm::Deviant const& aDeviant,
                                                      ImmutableMultiplicityElement const& aM) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::includesMultiplicity(*this, given(aM));
}

Integer MultiplicityElementIntf::lowerBound(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::lowerBound(*this);
}

Integer ExtensionEndIntf::lowerBound(Kelm::Deviant const& aDeviant) const {
  return MultiplicityElementIntf::lowerBound(aDeviant);
}

UnlimitedNatural MultiplicityElementIntf::upperBound(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return UnlimitedNatural(queries::upperBound(*this));
}

Boolean MultiplicityElementIntf::compatibleWith(Kelm::Deviant const& aDeviant,
                                                ImmutableMultiplicityElement const& aOther) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::isCompatibleWith(*this, given(aOther));
}

Boolean MultiplicityElementIntf::is(Kelm::Deviant const& aDeviant, Integer aLowerbound,
                                    Integer aUpperbound) const {
  engine::checkReadable(*this, aDeviant, kSource);
  if (aUpperbound.value() < -1) return false;
  // As an unsigned number, -1 is the unlimited bound.
  return queries::lowerBound(*this) == aLowerbound.value() &&
         queries::upperBound(*this) == static_cast<std::uint32_t>(aUpperbound.value());
}

}  // namespace NSInterface

}  // namespace umlmm
