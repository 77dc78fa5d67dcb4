#pragma once

#include <string>
#include <string_view>

#include "engine/slots.h"

/// The failures of changes, each naming the feature, what was given and what is accepted. All raise before
/// anything has changed.
namespace umlmm::engine::failures {

/// "Property.class"
std::string nameOf(Feature const& aFeature);
[[noreturn]] void raise(Place aPlace, std::string const& aText);
[[noreturn]] void raiseOtherModel(Place aPlace, Feature const& aFeature, Element const& aValue);
[[noreturn]] void raiseWrongType(Place aPlace, Feature const& aFeature, Element const& aValue);
[[noreturn]] void raiseNotAValue(Place aPlace, Feature const& aFeature);
/// The feature is full.
[[noreturn]] void raiseNoRoom(Place aPlace, Feature const& aFeature);
/// It would be full with fewer than the values given.
[[noreturn]] void raiseTooMany(Place aPlace, Feature const& aFeature);
[[noreturn]] void raiseOwnsItself(Place aPlace, Feature const& aFeature, Element const& aElement);
[[noreturn]] void raiseReadOnly(Place aPlace, Feature const& aFeature);
[[noreturn]] void raiseSingleExpected(Place aPlace, Feature const& aFeature);
[[noreturn]] void raiseManyExpected(Place aPlace, Feature const& aFeature);
[[noreturn]] void raiseNotMember(Place aPlace, Element const& aElement, Feature const& aFeature);

}  // namespace umlmm::engine::failures
