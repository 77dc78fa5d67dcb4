#include "derivations/replace.h"

#include "engine/engine.h"
#include "engine/links.h"

namespace umlmm::derivations {

void replaceValue(engine::Reading aOwner, engine::FeatureIndex aRoot, engine::Element* aLiteral) {
  if (engine::Reading const old = aOwner.reference(aRoot)) engine::destroy(*old, aOwner.deviant());
  if (aLiteral != nullptr) engine::link(*aOwner, engine::feature(aRoot), *aLiteral);
}

}  // namespace umlmm::derivations
