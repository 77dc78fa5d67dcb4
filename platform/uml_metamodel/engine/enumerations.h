#pragma once

#include "engine/Feature.h"
#include "kelm/values.h"

namespace umlmm::engine {

/// The record of an enumeration by index. Made from the catalogue.
Kelm::EnumerationType& enumeration(int aIndex);

}  // namespace umlmm::engine
