#include "operations/walks.h"

#include <algorithm>

#include "engine/ElementRef.h"

namespace umlmm::queries {

namespace {

/// What is to be followed, next one last.
class Open {
 public:
  explicit Open(Step const& aStep) noexcept : fStep(aStep) {}

  /// Adds the targets of an element and answers them, last one first.
  std::span<Element* const> expand(Element const& aElement) {
    std::size_t const start = fElements.size();
    auto const entries = values::entries(aElement, fStep.fList);
    for (Element const* const entry : entries.first(std::min(entries.size(), engine::kLookAhead)))
      if (entry != nullptr) engine::prefetchSlots(*entry);
    for (std::size_t at = entries.size(); at > 0; --at) {
      Element* const target = entries[at - 1] == nullptr ? nullptr : fStep.target(*entries[at - 1]);
      if (target == nullptr) continue;
      engine::prefetchSlots(*target);
      fElements.push_back(target);
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

Elements closureOf(Element const& aStart, Step const& aStep, Element const* aUntil) {
  Visited listed;
  listed.allowFollow();
  Open open(aStep);
  // Targets are listed before the first of them is followed, so that nearer ones come before those further
  // off.
  auto const expand = [&](Element const& aElement) {
    auto const targets = open.expand(aElement);
    return std::none_of(targets.rbegin(), targets.rend(),
                        [&](Element* aTarget) { return listed.insert(*aTarget) && aTarget == aUntil; });
  };
  bool goOn = expand(aStart);
  while (goOn && !open.empty()) {
    Element& next = open.next();
    if (&next != &aStart && listed.follow(next)) goOn = expand(next);
  }
  return listed.take();
}

}  // namespace umlmm::queries
