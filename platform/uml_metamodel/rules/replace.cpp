#include "rules/replace.h"

#include "engine/engine.h"
#include "engine/links.h"
#include "rules/values.h"

namespace umlmm::rules {

void replaceValue(engine::Element& aOwner, engine::FeatureIndex aRoot, engine::Element* aLiteral) {
  if (engine::Element* const old = values::reference(aOwner, aRoot))
    engine::destroy(*old, aOwner.model()->baseDeviant());
  if (aLiteral != nullptr) engine::link(aOwner, engine::feature(aRoot), *aLiteral);
}

}  // namespace umlmm::rules
