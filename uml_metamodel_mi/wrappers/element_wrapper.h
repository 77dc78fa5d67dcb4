#pragma once

/// What the unit of a metaclass is made of.
#include "uml_metamodel_mi/datatypes/values.h"
#include "uml_metamodel_mi/frame/ElementClassInfo.h"
#include "uml_metamodel_mi/wrappers/ElementClass.h"
#include "uml_metamodel_mi/wrappers/elementMethods.h"
#include "uml_metamodel_mi/wrappers/propertyRows.h"
#include "uml_metamodel_mi/wrappers/registrars.h"

namespace umlmm::mi {

using Kelm::mi::MultiplicityMany;
using Kelm::mi::MultiplicityOptional;
using Kelm::mi::MultiplicitySingle;
using Kelm::mi::MutabilityChangeable;
using Kelm::mi::MutabilityReadOnly;

}  // namespace umlmm::mi
