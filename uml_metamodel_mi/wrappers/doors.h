#pragma once

#include "uml_metamodel_mi/wrappers/ElementDescription.h"

/// Short roads to the properties that elements keep themselves (vesk::PropertyDoor).
namespace umlmm::mi {

/// Lets the host open doors to the properties of a metaclass.
void offerDoors(ElementDescription const& aDescription);

}  // namespace umlmm::mi
