#include "operations/queries.h"
#include "rules/rules.h"

namespace umlmm::rules {

namespace {

Reading contextOf(Reading aBehavior) noexcept {
  return queries::nearestOwner(aBehavior, ids::metaclass::BehavioredClassifier);
}

}  // namespace

engine::Rule const Behavior::Context{.fValue = [](Reading aElement) { return contextOf(aElement).object(); }};

engine::Rule const Action::Context{.fValue = [](Reading aElement) {
  Reading const behavior = queries::nearestOwner(aElement, ids::metaclass::Behavior);
  return (behavior ? contextOf(behavior) : behavior).object();
}};

}  // namespace umlmm::rules
