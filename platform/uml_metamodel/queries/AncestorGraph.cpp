#include "queries/AncestorGraph.h"

#include <algorithm>

namespace umlmm::queries {

AncestorGraph::AncestorGraph(Reading aClassifier) {
  collect(aClassifier);
  findCycles();
  dropCycles();
}

void AncestorGraph::collect(Reading aClassifier) {
  fPlaces.emplace(aClassifier.element(), kStart);
  fNodes.push_back({aClassifier, {}});
  for (Node node = 0; node < fNodes.size(); ++node) {
    Visited seen;
    kToGeneral.forEachTarget(fNodes[node].fClassifier, [&](Reading aParent) {
      if (!seen.insert(*aParent)) return;
      auto const [place, isNew] = fPlaces.emplace(aParent.element(), static_cast<Node>(fNodes.size()));
      if (isNew) fNodes.push_back({aParent, {}});
      fNodes[node].fParents.push_back(place->second);
    });
  }
}

/// Tarjan's strongly connected components, with a stack of its own. They come out upper ones first.
void AncestorGraph::findCycles() {
  constexpr std::uint32_t kUnseen = UINT32_MAX;
  struct Frame {
    Node fNode;
    std::size_t fNext;
  };
  std::vector<std::uint32_t> order(fNodes.size(), kUnseen);
  std::vector<std::uint32_t> lowest(fNodes.size());
  std::vector<bool> isPending(fNodes.size());
  std::vector<Node> pending;
  std::vector<Frame> open;
  std::uint32_t count = 0;
  std::uint32_t cycles = 0;
  auto const enter = [&](Node aNode) {
    order[aNode] = lowest[aNode] = count++;
    pending.push_back(aNode);
    isPending[aNode] = true;
    open.push_back({aNode, 0});
  };
  enter(kStart);
  while (!open.empty()) {
    Node const node = open.back().fNode;
    if (open.back().fNext < fNodes[node].fParents.size()) {
      Node const parent = fNodes[node].fParents[open.back().fNext++];
      if (order[parent] == kUnseen) {
        enter(parent);
      } else if (isPending[parent]) {
        lowest[node] = std::min(lowest[node], order[parent]);
      }
      continue;
    }
    open.pop_back();
    if (!open.empty()) lowest[open.back().fNode] = std::min(lowest[open.back().fNode], lowest[node]);
    if (lowest[node] != order[node]) continue;
    Node member;
    do {
      member = pending.back();
      pending.pop_back();
      isPending[member] = false;
      fNodes[member].fCycle = cycles;
      fUpperFirst.push_back(member);
    } while (member != node);
    ++cycles;
  }
}

void AncestorGraph::dropCycles() {
  std::vector<bool> isReached(fNodes.size());
  for (Record& record : fNodes) {
    std::erase_if(record.fParents, [&](Node aParent) { return fNodes[aParent].fCycle == record.fCycle; });
    for (Node const parent : record.fParents) {
      fHasJoins |= isReached[parent];
      isReached[parent] = true;
    }
  }
}

}  // namespace umlmm::queries
