#include "operations/queries.h"
#include "rules/rules.h"

namespace umlmm::rules {

namespace {

engine::Element* contextOf(engine::Element const& aBehavior) noexcept {
  return queries::nearestOwner(aBehavior, ids::metaclass::BehavioredClassifier);
}

}  // namespace

engine::Rule const Behavior::Context{
    .fValue = [](engine::Element const& aElement, Kelm::Deviant const& aDeviant) {
      return Kelm::Object(contextOf(aElement), aDeviant);
    }};

engine::Rule const Action::Context{
    .fValue = [](engine::Element const& aElement, Kelm::Deviant const& aDeviant) {
      engine::Element const* const behavior = queries::nearestOwner(aElement, ids::metaclass::Behavior);
      return Kelm::Object(behavior == nullptr ? nullptr : contextOf(*behavior), aDeviant);
    }};

}  // namespace umlmm::rules
