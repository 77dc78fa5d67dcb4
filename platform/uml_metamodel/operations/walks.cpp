#include "operations/walks.h"

namespace umlmm::queries {

std::vector<Element*> closureOf(Element const& aStart, Step const& aStep, Element const* aUntil) {
  struct Frame {
    Element* const* fNext;
    Element* const* fEnd;
  };
  Visited listed;
  listed.allowFollow();
  std::vector<Frame> open;
  // Targets are listed before the first of them is followed, so that nearer ones come before those further
  // off.
  auto const expand = [&](Element const& aElement) {
    auto const entries = values::entries(aElement, aStep.fList);
    for (Element* const entry : entries) {
      Element* const target = entry == nullptr ? nullptr : aStep.target(*entry);
      if (target != nullptr && listed.insert(*target) && target == aUntil) return false;
    }
    if (!entries.empty()) open.push_back({entries.data(), entries.data() + entries.size()});
    return true;
  };
  bool goOn = expand(aStart);
  while (goOn && !open.empty()) {
    Frame& top = open.back();
    if (top.fNext == top.fEnd) {
      open.pop_back();
      continue;
    }
    Element const* const entry = *top.fNext++;
    Element* const next = entry == nullptr ? nullptr : aStep.target(*entry);
    if (next != nullptr && next != &aStart && listed.follow(*next)) goOn = expand(*next);
  }
  return listed.take();
}

}  // namespace umlmm::queries
