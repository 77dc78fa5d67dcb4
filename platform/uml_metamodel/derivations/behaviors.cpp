#include "derivations/derivations.h"
#include "queries/queries.h"

namespace umlmm::derivations {

namespace {

Reading contextOf(Reading aBehavior) noexcept {
  return queries::nearestOwner(aBehavior, ids::metaclass::BehavioredClassifier);
}

}  // namespace

engine::Derivation const Behavior::Context{
    .fValue = [](Reading aElement) { return contextOf(aElement).object(); }};

engine::Derivation const Action::Context{.fValue = [](Reading aElement) {
  Reading const behavior = queries::nearestOwner(aElement, ids::metaclass::Behavior);
  return (behavior ? contextOf(behavior) : behavior).object();
}};

}  // namespace umlmm::derivations
