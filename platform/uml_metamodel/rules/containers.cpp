#include "engine/ids.h"
#include "operations/queries.h"
#include "rules/rules.h"

/// What an element knows of its owner, read from the container and the feature that holds it there.
namespace umlmm::rules {

namespace {

/// The feature that holds the element, as its container has it.
engine::Feature const& holder(engine::Element const& aElement) noexcept {
  return engine::seenOn(*aElement.container(), engine::feature(aElement.containerFeature()));
}

}  // namespace

engine::Rule const Element::Owner{
    .fValue = [](engine::Element const& aElement, Kelm::Deviant const& aDeviant) {
      return Kelm::Object(aElement.container(), aDeviant);
    }};

engine::Rule const NamedElement::Namespace{
    .fValue = [](engine::Element const& aElement, Kelm::Deviant const& aDeviant) {
      return Kelm::Object(queries::namespaceOf(aElement), aDeviant);
    }};

engine::Rule const Feature::FeaturingClassifier{
    .fValues = [](engine::Element const& aElement, std::vector<engine::Element*>& aOut) {
      if (aElement.container() != nullptr && holder(aElement).fGivesFeaturingClassifier)
        aOut.push_back(aElement.container());
    }};

// A behavior's context may be a classifier further out than the one that nests it.
engine::Rule const RedefinableElement::RedefinitionContext{
    .fValues = [](engine::Element const& aElement, std::vector<engine::Element*>& aOut) {
      engine::Element* behaviored = nullptr;
      if (queries::isA(aElement, ids::metaclass::Behavior)) {
        behaviored = queries::nearestOwner(aElement, ids::metaclass::BehavioredClassifier);
        if (behaviored != nullptr) aOut.push_back(behaviored);
      }
      if (aElement.container() != nullptr && aElement.container() != behaviored &&
          holder(aElement).fGivesContext)
        aOut.push_back(aElement.container());
    }};

}  // namespace umlmm::rules
