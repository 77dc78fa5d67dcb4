#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "queries/queries.h"

namespace umlmm::queries {

/// A classifier with everything above it, without the generalizations that lie on a cycle: two classifiers of
/// one cycle give each other nothing. It is a picture of the model as it was when made, in time that grows
/// with classifiers and generalizations, and counts no element.
class AncestorGraph {
 public:
  using Node = std::uint32_t;

  explicit AncestorGraph(Reading aClassifier);

  /// The classifier itself.
  static constexpr Node kStart = 0;

  std::size_t size() const noexcept { return fNodes.size(); }
  /// Also for classifiers that lie on cycles.
  bool contains(Reading aClassifier) const { return fPlaces.contains(aClassifier.element()); }
  Reading classifier(Node aNode) const noexcept { return fNodes[aNode].fClassifier; }
  /// Parents in order, each once.
  std::vector<Node> const& parents(Node aNode) const noexcept { return fNodes[aNode].fParents; }
  /// All nodes, those above a node before it.
  std::vector<Node> const& upperFirst() const noexcept { return fUpperFirst; }
  /// Whether some classifier can be reached in more than one way.
  bool hasJoins() const noexcept { return fHasJoins; }

 private:
  struct Record {
    Reading fClassifier;
    std::vector<Node> fParents;
    std::uint32_t fCycle = 0;
  };

  void collect(Reading aClassifier);
  void findCycles();
  void dropCycles();

  std::unordered_map<Element const*, Node> fPlaces;
  std::vector<Record> fNodes;
  std::vector<Node> fUpperFirst;
  bool fHasJoins = false;
};

}  // namespace umlmm::queries
