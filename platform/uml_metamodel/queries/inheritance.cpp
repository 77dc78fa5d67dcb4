#include <algorithm>
#include <unordered_set>

#include "engine/ElementRef.h"
#include "engine/Referrers.h"
#include "queries/AncestorGraph.h"
#include "queries/UnionLeaves.h"
#include "queries/queries.h"

/// The members that classifiers inherit. Each class and data type keeps back what its owned members redefine.
namespace umlmm::queries {

namespace {

using engine::FeatureIndex;
using Node = AncestorGraph::Node;

UnionLeaves sRedefined(ids::RedefinableElement::RedefinedElement);

void addRedefined(Reading aElement, Elements& aOut) {
  if (!aElement.isA(ids::metaclass::RedefinableElement)) return;
  for (FeatureIndex const index : sRedefined.of(aElement.metaclass()))
    for (Reading const redefined : aElement.list(index)) aOut.push_back(redefined.element());
}

bool redefines(engine::Reference const& aReference) {
  auto const redefinitions = sRedefined.of(engine::metaclassOf(*aReference.fOwner));
  return std::find(redefinitions.begin(), redefinitions.end(), aReference.fFeature) != redefinitions.end();
}

/// Whether a classifier does not pass on what its owned members redefine.
bool keepsBack(Reading aClassifier) noexcept {
  return aClassifier.isA(ids::metaclass::Class) || aClassifier.isA(ids::metaclass::DataType);
}

/// What the owned members of a classifier redefine, if its metaclass keeps that back.
Elements keptBackBy(Reading aClassifier) {
  Elements redefined;
  if (!keepsBack(aClassifier)) return redefined;
  Elements const owned = ownedMembers(aClassifier);
  for (std::size_t at = 0; at < owned.size(); ++at) {
    engine::prefetch(owned, at);
    addRedefined(aClassifier.on(*owned[at]), redefined);
  }
  return redefined;
}

/// Members without the inherited ones, with those of each union member handed over in turn; null stands for
/// the inherited ones in their place.
template <class Visit>
void forEachMemberList(Reading aClassifier, Visit aVisit) {
  Elements values;
  for (FeatureIndex const index : unionMembers(aClassifier.metaclass(), ids::Namespace::Member)) {
    if (index == ids::Classifier::InheritedMember) {
      aVisit(nullptr);
      continue;
    }
    values.clear();
    aClassifier.collectAny(index, values);
    aVisit(&values);
  }
}

/// The classifier that an element redefines for: the one that owns the element, if it keeps back what it
/// redefines.
Reading keeperOf(Reading aRedefining) noexcept {
  Reading const owner = namespaceOf(aRedefining);
  return owner && keepsBack(owner) ? owner : aRedefining.none();
}

/// Goes up from the start and takes members where they are found: each classifier is read once. Not for
/// members that some classifier of the graph keeps back where classifiers are reached in two ways, as then it
/// depends on the way what passes.
class UpwardWalk {
 public:
  explicit UpwardWalk(AncestorGraph const& aGraph) : fGraph(aGraph), fIsEntered(aGraph.size()) {}

  /// False where the walk is not for the graph.
  bool run() {
    enterParents(AncestorGraph::kStart, {});
    while (!fOpen.empty() && fIsRight) {
      Frame& top = fOpen.back();
      auto const& parents = fGraph.parents(top.fNode);
      if (top.fNextParent < parents.size()) {
        enter(parents[top.fNextParent++]);
        continue;
      }
      Frame const done = top;
      fOpen.pop_back();
      fKeepers.erase(fGraph.classifier(done.fNode).element());
      for (FeatureIndex const later : done.fLater) takeAll(fGraph.classifier(done.fNode), later);
    }
    return fIsRight;
  }

  Elements take() {
    if (!fMayRepeat) return std::move(fFound);
    Visited once;
    for (Element* const member : fFound) once.insert(*member);
    return once.take();
  }

 private:
  struct Frame {
    Node fNode;
    std::size_t fNextParent;
    /// Features whose members come behind the inherited ones.
    std::span<FeatureIndex const> fLater;
  };

  void enter(Node aNode) {
    if (fIsEntered[aNode]) return;
    fIsEntered[aNode] = true;
    Reading const classifier = fGraph.classifier(aNode);
    auto const lists = unionMembers(classifier.metaclass(), ids::Namespace::Member);
    auto const inherited = std::find(lists.begin(), lists.end(), ids::Classifier::InheritedMember);
    for (auto list = lists.begin(); list != inherited; ++list) takeAll(classifier, *list);
    enterParents(aNode, {std::min(inherited + 1, lists.end()), lists.end()});
  }

  void enterParents(Node aNode, std::span<FeatureIndex const> aLater) {
    Reading const classifier = fGraph.classifier(aNode);
    if (keepsBack(classifier)) fKeepers.insert(classifier.element());
    fOpen.push_back({aNode, 0, aLater});
  }

  void takeAll(Reading aClassifier, FeatureIndex aList) {
    auto const& list = engine::feature(aList);
    if (list.fStorage != engine::Storage::List) return takeEach(aClassifier, aClassifier.values(aList), list);
    takeEach(aClassifier, aClassifier.entries(list.fRoot), list);
  }

  void takeEach(Reading aClassifier, std::span<Element* const> aMembers, engine::Feature const& aList) {
    // An element has one container, so only other lists can repeat a member.
    fMayRepeat |= !aList.fComposite && !aMembers.empty();
    for (std::size_t at = 0; at < aMembers.size(); ++at) {
      engine::prefetch(aMembers, at);
      Reading const member = aClassifier.on(aMembers[at]);
      if (!member || isPrivate(member)) continue;
      if (!member.isReferred() || !isKeptBack(member)) fFound.push_back(member.element());
    }
  }

  /// Whether a classifier on the way back to the start redefines the member.
  bool isKeptBack(Reading aMember) {
    bool isKept = false;
    for (engine::Reference const& reference : aMember.referrers()) {
      if (!redefines(reference)) continue;
      Reading const keeper = keeperOf(aMember.on(*reference.fOwner));
      if (!keeper) continue;
      if (fGraph.hasJoins()) fIsRight &= !fGraph.contains(keeper);
      isKept |= fKeepers.contains(keeper.element());
    }
    return isKept;
  }

  AncestorGraph const& fGraph;
  std::vector<bool> fIsEntered;
  std::vector<Frame> fOpen;
  /// Those of the classifiers on the way back to the start that keep something back.
  std::unordered_set<Element const*> fKeepers;
  Elements fFound;
  bool fMayRepeat = false;
  bool fIsRight = true;
};

/// Members of classifiers from above downwards, one list a classifier.
class DownwardWalk {
 public:
  explicit DownwardWalk(AncestorGraph const& aGraph) : fGraph(aGraph), fMembers(aGraph.size()) {}

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
    Reading const heir = fGraph.classifier(aNode);
    Visited held;
    for (Element* const redefined : keptBackBy(heir)) held.insert(*redefined);
    Visited seen;
    Elements inherited;
    for (Node const parent : fGraph.parents(aNode))
      for (Element* const member : fMembers[parent])
        if (!isPrivate(heir.on(*member)) && !held.contains(*member) && seen.insert(*member))
          inherited.push_back(member);
    return inherited;
  }

  AncestorGraph const& fGraph;
  std::vector<Elements> fMembers;
};

}  // namespace

Elements inheritedMembers(Reading aClassifier) {
  if (aClassifier.entries(ids::Classifier::Generalization).empty()) return {};
  AncestorGraph const graph(aClassifier);
  UpwardWalk upward(graph);
  return upward.run() ? upward.take() : DownwardWalk(graph).run();
}

Elements inherit(Reading aClassifier, Elements const& aCandidates) {
  Visited held;
  for (Element* const redefined : keptBackBy(aClassifier)) held.insert(*redefined);
  Visited seen;
  Elements passing;
  for (Element* const candidate : aCandidates)
    if (!held.contains(*candidate) && seen.insert(*candidate)) passing.push_back(candidate);
  return passing;
}

Elements inheritableMembers(Reading aClassifier, Reading aHeir) {
  if (!aHeir || aHeir == aClassifier || !hasAncestor(aHeir, aClassifier) || hasAncestor(aClassifier, aHeir))
    return {};
  // Every member is one of an ancestor of the heir, so only private ones are hidden from it.
  Elements inheritable = members(aClassifier);
  std::erase_if(inheritable, [&](Element* aMember) { return isPrivate(aClassifier.on(*aMember)); });
  return inheritable;
}

bool hasVisibilityOf(Reading aClassifier, Reading aMember) {
  if (!aMember) return false;
  if (!isPrivate(aMember)) return true;
  // Nobody inherits a private member, so an ancestor has it otherwise or not at all.
  for (Element* const ancestor : allParents(aClassifier)) {
    bool hasMember = namespaceOf(aMember).element() == ancestor;
    if (!hasMember)
      forEachMemberList(aClassifier.on(*ancestor), [&](Elements const* aList) {
        if (aList != nullptr)
          hasMember |= std::find(aList->begin(), aList->end(), aMember.element()) != aList->end();
      });
    if (hasMember) return false;
  }
  return true;
}

}  // namespace umlmm::queries
