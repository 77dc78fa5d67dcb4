#include "engine/failures.h"

#include <algorithm>

#include "kelm/Asserter.h"
#include "kelm/String.h"

namespace umlmm::engine {

namespace {

char const* typeName(Feature const& aFeature) noexcept {
  return aFeature.isReference() ? metaclass(aFeature.fType).fName : "value";
}

/// " 'Order'", cut if it is long; empty for what has no name.
std::string nameIn(Element const& aElement) {
  constexpr std::size_t kShown = 60;
  FeatureIndex const naming = namingFeature(aElement);
  if (naming == kNoFeature) return {};
  auto const* const record = pointerSlot<Kelm::StringObject>(aElement, naming);
  if (record == nullptr || record->text().empty()) return {};
  std::string name = Kelm::toUtf8(record->text().substr(0, kShown));
  // The text of a failure ends at the first zero.
  std::replace(name.begin(), name.end(), '\0', ' ');
  return " '" + name + (record->text().size() > kShown ? "...'" : "'");
}

/// "Class 'Order'"
std::string describe(Element const& aElement) {
  return metaclass(metaclassOf(aElement)).fName + nameIn(aElement);
}

/// "an Association", "a Class"; names with a U are spoken with a consonant.
std::string withArticle(std::string const& aName) {
  return (std::string_view("AEIO").find(aName.front()) != std::string_view::npos ? "an " : "a ") + aName;
}

/// Why an element is not one of a model that is open: "the Class 'Order' is destroyed or its model closed".
std::string whyNotHere(Element const& aElement) {
  return "the " + describe(aElement) +
         (aElement.model() == nullptr ? " is destroyed or its model closed" : " is of another model");
}

std::string bound(Feature const& aFeature) {
  return aFeature.fUpper == 1 ? "one value" : std::to_string(aFeature.fUpper) + " values";
}

}  // namespace

void raiseNotInVariant(Element const& aElement, Place aPlace) {
  failures::raise(aPlace, std::string(Kelm::words::kNotInVariant) + ": " + whyNotHere(aElement));
}

namespace failures {

std::string nameOf(Feature const& aFeature) {
  return std::string(metaclass(aFeature.fOwner).fName) + "." + aFeature.fName;
}

void raise(Place aPlace, std::string const& aText) {
  Kelm::raiseFailure(aText.c_str(), aPlace.fSource, aPlace.fLine);
}

void raiseOtherModel(Place aPlace, Feature const& aFeature, Element const& aValue) {
  raise(aPlace, nameOf(aFeature) + " takes elements of the same model only; " + whyNotHere(aValue));
}

void raiseWrongType(Place aPlace, Feature const& aFeature, Element const& aValue) {
  raise(aPlace, nameOf(aFeature) + " takes " + withArticle(typeName(aFeature)) + ", not " +
                    withArticle(describe(aValue)));
}

void raiseNotAValue(Place aPlace, Feature const& aFeature) {
  static constexpr char const* kAccepted[] = {
      "a Boolean", "an Integer", "an UnlimitedNatural", "a String", "an enumeration literal", "an element"};
  raise(aPlace, nameOf(aFeature) + " takes " + kAccepted[static_cast<int>(aFeature.fValueType)]);
}

void raiseNoRoom(Place aPlace, Feature const& aFeature) {
  raise(aPlace, nameOf(aFeature) + " holds " + bound(aFeature) + " at most, and has " +
                    (aFeature.fUpper == 1 ? "it; take that" : "them; take one") + " out first");
}

void raiseTooMany(Place aPlace, Feature const& aFeature) {
  raise(aPlace, nameOf(aFeature) + " holds " + bound(aFeature) + " at most; these would be more");
}

void raiseOwnsItself(Place aPlace, Feature const& aFeature, Element const& aElement) {
  raise(aPlace, nameOf(aFeature) + " would make " + withArticle(describe(aElement)) + " own itself");
}

void raiseReadOnly(Place aPlace, Feature const& aFeature) {
  raise(aPlace, nameOf(aFeature) + " is computed and cannot be set");
}

void raiseSingleExpected(Place aPlace, Feature const& aFeature) {
  raise(aPlace, nameOf(aFeature) + " holds one value, not a sequence");
}

void raiseManyExpected(Place aPlace, Feature const& aFeature) {
  raise(aPlace, nameOf(aFeature) + " holds a sequence; change it through the sequence or assign one");
}

void raiseNotMember(Place aPlace, Element const& aElement, Feature const& aFeature) {
  raise(aPlace, withArticle(describe(aElement)) + " has no feature " + nameOf(aFeature));
}

}  // namespace failures

}  // namespace umlmm::engine
