#include "engine/ElementRef.h"
#include "queries/queries.h"

namespace umlmm::queries {

Reading nearestOwner(Reading aElement, int aMetaclass) noexcept {
  Reading owner = aElement.owner();
  while (owner && !owner.isA(aMetaclass)) owner = owner.owner();
  return owner;
}

Elements allOwnedElements(Reading aElement) {
  // The parts of one element stand together in the result; what is open is a part of it that was not followed
  // yet.
  struct Block {
    std::size_t fNext;
    std::size_t fEnd;
  };
  Elements all;
  std::vector<Block> open;
  aElement.collectParts(all);
  open.push_back({0, all.size()});
  while (!open.empty()) {
    if (open.back().fNext == open.back().fEnd) {
      open.pop_back();
      continue;
    }
    engine::prefetch(all, open.back().fNext);
    Reading const next = aElement.on(*all[open.back().fNext++]);
    std::size_t const start = all.size();
    next.collectParts(all);
    if (all.size() != start) open.push_back({start, all.size()});
  }
  return all;
}

bool mustBeOwned(Reading aElement) noexcept { return !aElement.isA(ids::metaclass::Package); }

Elements allOwningPackages(Reading aElement) {
  Elements packages;
  Reading owner = nearestOwner(aElement, ids::metaclass::Package);
  for (; owner; owner = nearestOwner(owner, ids::metaclass::Package)) packages.push_back(owner.element());
  return packages;
}

}  // namespace umlmm::queries
