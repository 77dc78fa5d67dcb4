#pragma once

/// What the unit of a metaclass is made of.
#include "frame/ElementClassInfo.h"
#include "uml_metamodel_mi/datatypes/conversions.h"
#include "uml_metamodel_mi/wrappers/ElementDescription.h"
#include "uml_metamodel_mi/wrappers/elementClasses.h"
#include "uml_metamodel_mi/wrappers/elementMethods.h"
#include "uml_metamodel_mi/wrappers/propertyRows.h"

namespace umlmm::mi {

using Kelm::mi::MultiplicityMany;
using Kelm::mi::MultiplicityOptional;
using Kelm::mi::MultiplicitySingle;
using Kelm::mi::MutabilityChangeable;
using Kelm::mi::MutabilityReadOnly;

}  // namespace umlmm::mi
