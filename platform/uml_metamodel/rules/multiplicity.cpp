#include "engine/engine.h"
#include "engine/failures.h"
#include "operations/queries.h"
#include "rules/replace.h"
#include "rules/rules.h"

/// Bounds of multiplicities: the numbers of the values that hold them. A bit of each element remembers that a
/// bound was neither set nor unset nor given a value, and so still reads as its default.
namespace umlmm::rules {

namespace {

constexpr char kSource[] = "uml_metamodel/rules/multiplicity";

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
Kelm::Object readDefault(engine::Element const& aElement, Bound const& aBound, std::uint32_t aDefault) {
  bool const isDefault = engine::flagBits(aElement, aBound.fBound, 1) != 0;
  return isDefault ? Kelm::makePrimitive(aBound.fKind, aDefault) : Kelm::Object();
}

Kelm::Object readLower(engine::Element const& aElement, Kelm::Deviant const&) {
  engine::Element const* const value = values::reference(aElement, kLower.fValue);
  if (value == nullptr)
    return readDefault(aElement, kLower, static_cast<std::uint32_t>(queries::lowerBound(aElement)));
  auto const number = queries::integerOf(value);
  return number ? Kelm::makePrimitive(kLower.fKind, static_cast<std::uint32_t>(*number)) : Kelm::Object();
}

Kelm::Object readUpper(engine::Element const& aElement, Kelm::Deviant const&) {
  engine::Element const* const value = values::reference(aElement, kUpper.fValue);
  if (value == nullptr) return readDefault(aElement, kUpper, queries::upperBound(aElement));
  auto const number = queries::unlimitedOf(value);
  return number ? Kelm::makePrimitive(kUpper.fKind, *number) : Kelm::Object();
}

template <Bound const& Side>
void set(engine::Element& aElement, Kelm::Deviant const&, Kelm::Object const& aValue) {
  if (!aValue.isNull() && !Kelm::isPrimitive(aValue, Side.fKind))
    engine::failures::raiseNotAValue(kSource, engine::feature(Side.fBound));
  engine::Element* literal = values::reference(aElement, Side.fValue);
  if (aValue.isNull()) {
    replaceValue(aElement, Side.fValue, nullptr);
  } else {
    if (literal == nullptr || !queries::isA(*literal, Side.fLiteral)) {
      literal = &engine::Change::create(Side.fLiteral, *aElement.model());
      replaceValue(aElement, Side.fValue, literal);
    }
    engine::Change::setInteger(*literal, Side.fNumber, aValue.getDeviant().value());
  }
  engine::Change::setFlags(aElement, Side.fBound, 1, 0);
}

}  // namespace

engine::Rule const MultiplicityElement::Lower{.fValue = readLower, .fSet = set<kLower>};
engine::Rule const MultiplicityElement::Upper{.fValue = readUpper, .fSet = set<kUpper>};
// With another default, which the bound itself gives.
engine::Rule const ExtensionEnd::Lower{.fValue = readLower, .fSet = set<kLower>};

}  // namespace umlmm::rules
