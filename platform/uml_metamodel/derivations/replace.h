#pragma once

#include "engine/Reading.h"

namespace umlmm::derivations {

/// A new literal in the place of the value that a single containment holds; the old value is destroyed. Null
/// leaves the place empty. These are two steps of a derived write, which is one change: when the second
/// raises, the caller's change takes back the first.
void replaceValue(engine::Reading aOwner, engine::FeatureIndex aRoot, engine::Element* aLiteral);

}  // namespace umlmm::derivations
