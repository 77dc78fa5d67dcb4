#include "engine/failures.h"

#include "kelm/Asserter.h"

namespace umlmm::engine {

namespace {

constexpr char kSource[] = "uml_metamodel/engine";

char const* typeName(Feature const& aFeature) noexcept {
  return aFeature.isReference() ? kMetaclasses[aFeature.fType].fName : "value";
}

std::string describe(Element const& aElement) {
  std::string text = std::string("a ") + kMetaclasses[metaclassOf(aElement)].fName;
  return text;
}

}  // namespace

void raiseNotInVariant() { Kelm::raiseFailure(Kelm::words::kNotInVariant, kSource); }

namespace failures {

std::string nameOf(Feature const& aFeature) {
  return std::string(kMetaclasses[aFeature.fOwner].fName) + "." + aFeature.fName;
}

void raise(std::string const& aText) { Kelm::raiseFailure(aText.c_str(), kSource); }

void raiseOtherModel(Feature const& aFeature) {
  raise(nameOf(aFeature) +
        " takes elements of the same model only; the value is of another model or destroyed");
}

void raiseWrongType(Feature const& aFeature, Element const& aValue) {
  raise(nameOf(aFeature) + " takes a " + typeName(aFeature) + ", not " + describe(aValue));
}

void raiseNotAValue(Feature const& aFeature) {
  static constexpr char const* kAccepted[] = {
      "a Boolean", "an Integer", "an UnlimitedNatural", "a String", "an enumeration literal", "an element"};
  raise(nameOf(aFeature) + " takes " + kAccepted[static_cast<int>(aFeature.fValueType)]);
}

void raiseNoRoom(Feature const& aFeature) {
  raise(nameOf(aFeature) + " holds one value at most, and has it; take that out first");
}

void raiseOwnsItself(Feature const& aFeature, Element const& aElement) {
  raise(nameOf(aFeature) + " would make " + describe(aElement) + " own itself");
}

void raiseReadOnly(Feature const& aFeature) { raise(nameOf(aFeature) + " is computed and cannot be set"); }

void raiseSingleExpected(Feature const& aFeature) {
  raise(nameOf(aFeature) + " holds one value, not a sequence");
}

void raiseManyExpected(Feature const& aFeature) {
  raise(nameOf(aFeature) + " holds a sequence; change it through the sequence or assign one");
}

void raiseNotMember(Element const& aElement, Feature const& aFeature) {
  raise(describe(aElement) + " has no feature " + nameOf(aFeature));
}

}  // namespace failures

}  // namespace umlmm::engine
