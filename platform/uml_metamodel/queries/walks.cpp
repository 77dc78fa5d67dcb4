#include "queries/walks.h"

#include <algorithm>

#include "engine/ElementRef.h"

namespace umlmm::queries {

namespace {

/// What is to be followed, next one last.
class Open {
 public:
  explicit Open(Step const& aStep) noexcept : fStep(aStep) {}

  /// Adds the targets of an element and answers them, last one first.
  std::span<Element* const> expand(Reading aElement) {
    std::size_t const start = fElements.size();
    auto const entries = aElement.entries(fStep.fList);
    for (Element const* const entry : entries.first(std::min(entries.size(), engine::kLookAhead)))
      if (entry != nullptr) engine::prefetchSlots(*entry);
    for (std::size_t at = entries.size(); at > 0; --at) {
      if (entries[at - 1] == nullptr) continue;
      Reading const target = fStep.target(aElement.on(*entries[at - 1]));
      if (!target) continue;
      engine::prefetchSlots(*target);
      fElements.push_back(target.element());
    }
    return std::span(fElements).subspan(start);
  }
  bool empty() const noexcept { return fElements.empty(); }
  Element& next() noexcept {
    Element& next = *fElements.back();
    fElements.pop_back();
    return next;
  }

 private:
  Step const& fStep;
  Elements fElements;
};

}  // namespace

Elements closureOf(Reading aStart, Step const& aStep, Reading aUntil) {
  Visited listed;
  listed.allowFollow();
  Open open(aStep);
  // Targets are listed before the first of them is followed, so that nearer ones come before those further
  // off.
  auto const expand = [&](Reading aElement) {
    auto const targets = open.expand(aElement);
    return std::none_of(targets.rbegin(), targets.rend(), [&](Element* aTarget) {
      return listed.insert(*aTarget) && aTarget == aUntil.element();
    });
  };
  bool goOn = expand(aStart);
  while (goOn && !open.empty()) {
    Element& next = open.next();
    if (&next != &*aStart && listed.follow(next)) goOn = expand(aStart.on(next));
  }
  return listed.take();
}

}  // namespace umlmm::queries
