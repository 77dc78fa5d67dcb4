#include <algorithm>
#include <unordered_map>

#include "engine/ElementRef.h"
#include "engine/computed.h"
#include "operations/AncestorGraph.h"
#include "operations/UnionLeaves.h"
#include "operations/queries.h"

/// The members that classifiers inherit. Each class and data type keeps back what its owned members redefine.
namespace umlmm::queries {

namespace {

using Node = AncestorGraph::Node;

UnionLeaves sRedefined(ids::RedefinableElement::RedefinedElement);

void addRedefined(Element const& aElement, Elements& aOut) {
  if (!isA(aElement, ids::metaclass::RedefinableElement)) return;
  for (engine::FeatureIndex const index : sRedefined.of(engine::metaclassOf(aElement)))
    for (Element* const redefined : values::elements(aElement, index)) aOut.push_back(redefined);
}

/// What the owned members of a classifier redefine, if its metaclass keeps that back.
Elements keptBackBy(Element const& aClassifier) {
  Elements redefined;
  if (!isA(aClassifier, ids::metaclass::Class) && !isA(aClassifier, ids::metaclass::DataType))
    return redefined;
  Elements const owned = ownedMembers(aClassifier);
  for (std::size_t at = 0; at < owned.size(); ++at) {
    engine::prefetch(owned, at);
    addRedefined(*owned[at], redefined);
  }
  return redefined;
}

/// What each classifier of a graph keeps back, found when first asked.
class KeptBack {
 public:
  explicit KeptBack(AncestorGraph const& aGraph) : fGraph(aGraph), fLists(aGraph.size()) {}

  Elements const& by(Node aNode) {
    auto& list = fLists[aNode];
    if (!list) list = keptBackBy(fGraph.classifier(aNode));
    return *list;
  }
  bool isAny() {
    for (Node node = 0; node < fGraph.size(); ++node)
      if (!by(node).empty()) return true;
    return false;
  }

 private:
  AncestorGraph const& fGraph;
  std::vector<std::optional<Elements>> fLists;
};

/// Members without the inherited ones, with those of each union member handed over in turn; null stands for
/// the inherited ones in their place.
template <class Visit>
void forEachMemberList(Element const& aClassifier, Visit aVisit) {
  Elements values;
  for (engine::FeatureIndex const index :
       unionMembers(engine::metaclassOf(aClassifier), ids::Namespace::Member)) {
    if (index == ids::Classifier::InheritedMember) {
      aVisit(nullptr);
      continue;
    }
    values.clear();
    engine::valuesOf(aClassifier, engine::feature(index), values);
    aVisit(&values);
  }
}

/// Goes up from the start and takes members where they are found: each classifier is read once. Only where no
/// classifier is reached in two ways or nothing is kept back, as else what passes depends on the way.
class UpwardWalk {
 public:
  UpwardWalk(AncestorGraph const& aGraph, KeptBack& aKeptBack)
      : fGraph(aGraph), fKeptBack(aKeptBack), fIsEntered(aGraph.size()) {}

  Elements run() {
    enterParents(AncestorGraph::kStart);
    while (!fOpen.empty()) {
      Frame& top = fOpen.back();
      auto const& parents = fGraph.parents(top.fNode);
      if (top.fNextParent < parents.size()) {
        enter(parents[top.fNextParent++]);
        continue;
      }
      Frame const done = std::move(top);
      fOpen.pop_back();
      hold(done.fNode, -1);
      for (Elements const& later : done.fLater) take(later);
    }
    return fFound.take();
  }

 private:
  struct Frame {
    Node fNode;
    std::size_t fNextParent;
    /// Members that come behind the inherited ones.
    std::vector<Elements> fLater;
  };

  void enter(Node aNode) {
    if (fIsEntered[aNode]) return;
    fIsEntered[aNode] = true;
    bool isBehind = false;
    std::vector<Elements> later;
    forEachMemberList(fGraph.classifier(aNode), [&](Elements const* aList) {
      if (aList == nullptr) {
        isBehind = true;
      } else if (!isBehind) {
        take(*aList);
      } else if (!aList->empty()) {
        later.push_back(*aList);
      }
    });
    enterParents(aNode, std::move(later));
  }

  void enterParents(Node aNode, std::vector<Elements> aLater = {}) {
    hold(aNode, 1);
    fOpen.push_back({aNode, 0, std::move(aLater)});
  }

  void hold(Node aNode, int aChange) {
    for (Element* const redefined : fKeptBack.by(aNode)) fHeldBack[redefined] += aChange;
  }

  void take(Elements const& aMembers) {
    for (Element* const member : aMembers) {
      if (isPrivate(*member)) continue;
      if (!fHeldBack.empty())
        if (auto const held = fHeldBack.find(member); held != fHeldBack.end() && held->second > 0) continue;
      fFound.insert(*member);
    }
  }

  AncestorGraph const& fGraph;
  KeptBack& fKeptBack;
  std::vector<bool> fIsEntered;
  std::vector<Frame> fOpen;
  /// How many classifiers on the way back to the start redefine an element.
  std::unordered_map<Element const*, int> fHeldBack;
  Visited fFound;
};

/// Members of classifiers from above downwards, one list a classifier.
class DownwardWalk {
 public:
  DownwardWalk(AncestorGraph const& aGraph, KeptBack& aKeptBack)
      : fGraph(aGraph), fKeptBack(aKeptBack), fMembers(aGraph.size()) {}

  Elements run() {
    for (Node const node : fGraph.upperFirst()) {
      Elements inherited = inheritedBy(node);
      if (node == AncestorGraph::kStart) return inherited;
      Visited seen;
      auto const take = [&](Elements const& aList) {
        for (Element* const member : aList)
          if (seen.insert(*member)) fMembers[node].push_back(member);
      };
      forEachMemberList(fGraph.classifier(node),
                        [&](Elements const* aList) { take(aList == nullptr ? inherited : *aList); });
    }
    return {};
  }

 private:
  Elements inheritedBy(Node aNode) {
    Visited held;
    for (Element* const redefined : fKeptBack.by(aNode)) held.insert(*redefined);
    Visited seen;
    Elements inherited;
    for (Node const parent : fGraph.parents(aNode))
      for (Element* const member : fMembers[parent])
        if (!isPrivate(*member) && !held.contains(*member) && seen.insert(*member))
          inherited.push_back(member);
    return inherited;
  }

  AncestorGraph const& fGraph;
  KeptBack& fKeptBack;
  std::vector<Elements> fMembers;
};

}  // namespace

Elements redefinedElements(Element const& aElement) {
  Elements redefined;
  addRedefined(aElement, redefined);
  return redefined;
}

Elements inheritedMembers(Element const& aClassifier) {
  if (values::entries(aClassifier, ids::Classifier::Generalization).empty()) return {};
  AncestorGraph const graph(aClassifier);
  KeptBack keptBack(graph);
  if (graph.hasJoins() && keptBack.isAny()) return DownwardWalk(graph, keptBack).run();
  return UpwardWalk(graph, keptBack).run();
}

Elements inherit(Element const& aClassifier, Elements const& aCandidates) {
  Visited held;
  for (Element* const redefined : keptBackBy(aClassifier)) held.insert(*redefined);
  Visited seen;
  Elements passing;
  for (Element* const candidate : aCandidates)
    if (!held.contains(*candidate) && seen.insert(*candidate)) passing.push_back(candidate);
  return passing;
}

Elements inheritableMembers(Element const& aClassifier, Element const* aHeir) {
  if (aHeir == nullptr || aHeir == &aClassifier || !hasAncestor(*aHeir, aClassifier) ||
      hasAncestor(aClassifier, *aHeir))
    return {};
  // Every member is one of an ancestor of the heir, so only private ones are hidden from it.
  Elements inheritable = members(aClassifier);
  std::erase_if(inheritable, [](Element* aMember) { return isPrivate(*aMember); });
  return inheritable;
}

bool hasVisibilityOf(Element const& aClassifier, Element const* aMember) {
  if (aMember == nullptr) return false;
  if (!isPrivate(*aMember)) return true;
  // Nobody inherits a private member, so an ancestor has it otherwise or not at all.
  for (Element* const ancestor : allParents(aClassifier)) {
    bool hasMember = namespaceOf(*aMember) == ancestor;
    if (!hasMember)
      forEachMemberList(*ancestor, [&](Elements const* aList) {
        if (aList != nullptr) hasMember |= std::find(aList->begin(), aList->end(), aMember) != aList->end();
      });
    if (hasMember) return false;
  }
  return true;
}

}  // namespace umlmm::queries
