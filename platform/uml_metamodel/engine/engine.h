#pragma once

#include "engine/slots.h"

/// The life of elements.
namespace umlmm::engine {

/// What the kernel calls in the engine.
extern Kelm::ElementEngine const kElementEngine;

/// Destroys the element with all that it owns, innermost first: no feature of any other element refers to one
/// of them afterwards. Handles to them answer false to `isvalid`. Costs what is touched.
void destroy(Element& aElement, Deviant const& aDeviant);

}  // namespace umlmm::engine
