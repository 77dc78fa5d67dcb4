#include "derivations/derivations.h"
#include "engine/ids.h"
#include "queries/queries.h"

/// What an element knows of its owner, read from the container and the feature that holds it there.
namespace umlmm::derivations {

namespace {

/// The feature that holds the element, as its container has it.
engine::Feature const& holder(Reading aElement) noexcept {
  return engine::seenOn(*aElement.owner(), engine::feature(aElement.containment()));
}

}  // namespace

engine::Derivation const Element::Owner{.fValue = [](Reading aElement) { return aElement.owner().object(); }};

engine::Derivation const NamedElement::Namespace{
    .fValue = [](Reading aElement) { return queries::namespaceOf(aElement).object(); }};

engine::Derivation const Feature::FeaturingClassifier{
    .fValues = [](Reading aElement, std::vector<engine::Element*>& aOut) {
      if (aElement.owner() && holder(aElement).fGivesFeaturingClassifier)
        aOut.push_back(aElement.owner().element());
    }};

// A behavior's context may be a classifier further out than the one that nests it.
engine::Derivation const RedefinableElement::RedefinitionContext{
    .fValues = [](Reading aElement, std::vector<engine::Element*>& aOut) {
      Reading behaviored;
      if (aElement.isA(ids::metaclass::Behavior)) {
        behaviored = queries::nearestOwner(aElement, ids::metaclass::BehavioredClassifier);
        if (behaviored) aOut.push_back(behaviored.element());
      }
      Reading const owner = aElement.owner();
      if (owner && owner != behaviored && holder(aElement).fGivesContext) aOut.push_back(owner.element());
    }};

}  // namespace umlmm::derivations
