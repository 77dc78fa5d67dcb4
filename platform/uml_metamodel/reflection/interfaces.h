#pragma once

#include "engine/Feature.h"
#include "kelm/IntrospectiveMethods.h"

namespace umlmm::reflection {

/// The accessor tables by metaclass. Made from the catalogue.
extern Kelm::IntrospectiveMethods const* const kAccessors[engine::kMetaclassCount];

}  // namespace umlmm::reflection
