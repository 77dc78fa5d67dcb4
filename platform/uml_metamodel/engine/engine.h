#pragma once

#include "engine/slots.h"

/// The life of elements.
namespace umlmm::engine {

/// What the kernel calls in the engine.
extern Kelm::ElementEngine const kElementEngine;

/// A new element with the defaults of its metaclass, at the top level of the model.
Element& create(int aMetaclass, Kelm::ModelObject& aModel);

/// Destroys the element with all that it owns, innermost first: no feature of any other element refers to one
/// of them afterwards. Handles to them answer false to `isvalid`. Costs what is touched.
void destroy(Element& aElement, Deviant const& aDeviant);

/// Drops all elements of a model that is being closed.
void dropAll(Kelm::ModelObject& aModel);

}  // namespace umlmm::engine
