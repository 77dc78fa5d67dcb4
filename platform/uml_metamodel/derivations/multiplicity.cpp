#include "derivations/derivations.h"
#include "derivations/replace.h"
#include "engine/Change.h"
#include "engine/engine.h"
#include "engine/failures.h"
#include "queries/queries.h"

/// Bounds of multiplicities: the numbers of the values that hold them. A bit of each element remembers that a
/// bound was neither set nor unset nor given a value, and so still reads as its default.
namespace umlmm::derivations {

namespace {

constexpr char kSource[] = "uml_metamodel/derivations/multiplicity";

struct Bound {
  engine::FeatureIndex fBound;
  engine::FeatureIndex fValue;
  int fLiteral;
  engine::FeatureIndex fNumber;
  Kelm::PrimitiveKind fKind;
};

constexpr Bound kLower{ids::MultiplicityElement::Lower, ids::MultiplicityElement::LowerValue,
                       ids::metaclass::LiteralInteger, ids::LiteralInteger::Value,
                       Kelm::PrimitiveKind::Integer};
constexpr Bound kUpper{ids::MultiplicityElement::Upper, ids::MultiplicityElement::UpperValue,
                       ids::metaclass::LiteralUnlimitedNatural, ids::LiteralUnlimitedNatural::Value,
                       Kelm::PrimitiveKind::UnlimitedNatural};

/// Without a value: the default as long as it stands, else nothing.
Kelm::Object readDefault(Reading aElement, Bound const& aBound, std::uint32_t aDefault) {
  bool const isDefault = aElement.flag(aBound.fBound);
  return isDefault ? Kelm::makePrimitive(aBound.fKind, aDefault) : Kelm::Object();
}

Kelm::Object readLower(Reading aElement) {
  Reading const value = aElement.reference(kLower.fValue);
  if (!value) return readDefault(aElement, kLower, static_cast<std::uint32_t>(queries::lowerBound(aElement)));
  auto const number = queries::integerOf(value);
  return number ? Kelm::makePrimitive(kLower.fKind, static_cast<std::uint32_t>(*number)) : Kelm::Object();
}

Kelm::Object readUpper(Reading aElement) {
  Reading const value = aElement.reference(kUpper.fValue);
  if (!value) return readDefault(aElement, kUpper, queries::upperBound(aElement));
  auto const number = queries::unlimitedOf(value);
  return number ? Kelm::makePrimitive(kUpper.fKind, *number) : Kelm::Object();
}

template <Bound const& Side>
void set(Reading aElement, Kelm::Object const& aValue) {
  if (!aValue.isNull() && !Kelm::isPrimitive(aValue, Side.fKind))
    engine::failures::raiseNotAValue(kSource, engine::feature(Side.fBound));
  Reading literal = aElement.reference(Side.fValue);
  if (aValue.isNull()) {
    replaceValue(aElement, Side.fValue, nullptr);
  } else {
    if (!literal || !literal.isA(Side.fLiteral)) {
      literal = aElement.on(engine::Change::create(Side.fLiteral, aElement.model()));
      replaceValue(aElement, Side.fValue, literal.element());
    }
    engine::Change::setInteger(*literal, Side.fNumber, aValue.getDeviant().value());
  }
  engine::Change::setFlags(*aElement, Side.fBound, 1, 0);
}

}  // namespace

engine::Derivation const MultiplicityElement::Lower{.fValue = readLower, .fSet = set<kLower>};
engine::Derivation const MultiplicityElement::Upper{.fValue = readUpper, .fSet = set<kUpper>};
// With another default, which the bound itself gives.
engine::Derivation const ExtensionEnd::Lower{.fValue = readLower, .fSet = set<kLower>};

}  // namespace umlmm::derivations
