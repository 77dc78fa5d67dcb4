#pragma once

#include <string>
#include <string_view>

#include "engine/slots.h"

/// The failures of changes, each naming the feature, what was given and what is accepted. All raise before
/// anything has changed.
namespace umlmm::engine::failures {

/// "Property.class"
std::string nameOf(Feature const& aFeature);
[[noreturn]] void raise(std::string const& aText);
[[noreturn]] void raiseOtherModel(Feature const& aFeature);
[[noreturn]] void raiseWrongType(Feature const& aFeature, Element const& aValue);
[[noreturn]] void raiseNotAValue(Feature const& aFeature);
[[noreturn]] void raiseNoRoom(Feature const& aFeature);
[[noreturn]] void raiseOwnsItself(Feature const& aFeature, Element const& aElement);
[[noreturn]] void raiseReadOnly(Feature const& aFeature);
[[noreturn]] void raiseSingleExpected(Feature const& aFeature);
[[noreturn]] void raiseManyExpected(Feature const& aFeature);
[[noreturn]] void raiseNotMember(Element const& aElement, Feature const& aFeature);

}  // namespace umlmm::engine::failures
