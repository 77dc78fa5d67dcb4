#pragma once

#include <vector>

#include "engine/Reading.h"
#include "queries/Visited.h"

/// Walks along lists of relationships: from an element over the entries of a list to what each entry refers
/// to. None recurses, so depth costs no stack.
namespace umlmm::queries {

using engine::Reading;
using Elements = std::vector<Element*>;

/// A step of such a walk, as from a classifier over its generalizations to their general ends.
struct Step {
  /// A stored list of the elements that are walked.
  engine::FeatureIndex fList;
  /// A single reference of its entries.
  engine::FeatureIndex fTarget;

  Reading target(Reading aEntry) const noexcept { return aEntry.reference(fTarget); }
  /// Calls `aVisit` with each target that is there, in order, repeats included. It must not change the list.
  template <class Visit>
  void forEachTarget(Reading aElement, Visit aVisit) const {
    for (Reading const entry : aElement.list(fList))
      if (Reading const next = target(entry)) aVisit(next);
  }
};

/// The targets of an element in order, then for each of them in order all of its own, each once. The start is
/// among them only if a cycle leads back to it. Ends early, with `aUntil` as the last, once that one is
/// found.
Elements closureOf(Reading aStart, Step const& aStep, Reading aUntil = {});

}  // namespace umlmm::queries
