#pragma once

#include <vector>

#include "engine/links.h"
#include "operations/Visited.h"
#include "rules/values.h"

/// Walks along lists of relationships: from an element over the entries of a list to what each entry refers
/// to. None recurses, so depth costs no stack.
namespace umlmm::queries {

/// A step of such a walk, as from a classifier over its generalizations to their general ends.
struct Step {
  engine::FeatureIndex fList;
  engine::FeatureIndex fTarget;

  Element* target(Element const& aEntry) const noexcept { return values::reference(aEntry, fTarget); }
  /// Calls `aVisit` with each target that is there, in order, repeats included.
  template <class Visit>
  void forEachTarget(Element const& aElement, Visit aVisit) const {
    for (Element* const entry : values::elements(aElement, fList))
      if (Element* const next = target(*entry)) aVisit(*next);
  }
};

/// The targets of an element in order, then for each of them in order all of its own, each once: `aVisit` is
/// called with each and answers whether to go on. The start is visited only if a cycle leads back to it.
template <class Visit>
void walkClosure(Element const& aStart, Step const& aStep, Visit aVisit) {
  struct Frame {
    Element* const* fNext;
    Element* const* fEnd;
  };
  Visited listed;
  Visited expanded;
  std::vector<Frame> open;
  // Targets are listed before the first of them is followed, so that nearer ones come before those further
  // off.
  auto const expand = [&](Element const& aElement) {
    bool goOn = true;
    aStep.forEachTarget(aElement, [&](Element& aTarget) {
      if (goOn && listed.insert(aTarget)) goOn = aVisit(aTarget);
    });
    auto const entries = values::entries(aElement, aStep.fList);
    if (!entries.empty()) open.push_back({entries.data(), entries.data() + entries.size()});
    return goOn;
  };
  expanded.insert(aStart);
  if (!expand(aStart)) return;
  while (!open.empty()) {
    Frame& top = open.back();
    if (top.fNext == top.fEnd) {
      open.pop_back();
      continue;
    }
    Element const* const entry = *top.fNext++;
    Element const* const next = entry == nullptr ? nullptr : aStep.target(*entry);
    if (next != nullptr && expanded.insert(*next) && !expand(*next)) return;
  }
}

}  // namespace umlmm::queries
