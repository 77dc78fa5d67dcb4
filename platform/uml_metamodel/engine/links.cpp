#include "engine/links.h"

#include <algorithm>
#include <unordered_set>

#include "engine/Referrers.h"
#include "engine/failures.h"

namespace umlmm::engine {

namespace {

constexpr char kSource[] = "uml_metamodel/engine/links";

/// Where a container view leads: the stored containment that holds the element.
bool isView(Feature const& aRoot) noexcept { return aRoot.fStorage == Storage::Container; }

bool isOwnersFeature(Element const& aElement, Element const& aOwner, Feature const& aContainment) noexcept {
  return aElement.container() == &aOwner && aElement.containerFeature() == indexOf(aContainment);
}

/// A bound whose value was taken away is unset: its default does not come back.
void forgetDefault(Element& aOwner, Feature const& aRoot) {
  if (aRoot.fForgetsDefaultOf != kNoFeature) Change::setFlags(aOwner, aRoot.fForgetsDefaultOf, 1, 0);
}

/// Takes the value out of the owner's slot; a part goes to its model's top level.
void drop(Element& aOwner, Feature const& aRoot, Element& aValue) {
  if (ownsParts(aRoot)) forgetDefault(aOwner, aRoot);
  Change::erase(aOwner, aRoot, aValue);
}

/// The features that must hold the value as well, as far as the element has them.
template <class Action>
void forEachHere(Element const& aElement, std::span<FeatureIndex const> aFeatures, Action aAction) {
  for (FeatureIndex const index : aFeatures) {
    Feature const& other = feature(index);
    if (isView(other) ? isA(aElement, other.fOwner) : hasSlot(aElement, index)) aAction(other);
  }
}

/// A single-valued subset of the client or supplier of a dependency takes its old value out of the set, too.
bool clearsSupersets(Feature const& aRoot) noexcept {
  if (aRoot.fUpper != 1 || aRoot.fSupersets.empty()) return false;
  Feature const& wide = feature(aRoot.fSupersets.front());
  return wide.fStorage == Storage::List && !wide.fComposite;
}

/// What the far end of a root feature is on the value's side: the opposite of the row that the owner sees.
Feature const* farEnd(Element const& aOwner, Feature const& aRoot) noexcept {
  FeatureIndex const opposite = seenOn(aOwner, aRoot).fOpposite;
  return opposite == kNoFeature ? nullptr : &feature(opposite);
}

/// Takes the value out of the subsets of a feature; answers whether one of them had it.
bool unlinkSubsets(Element& aElement, Feature const& aFeature, Element& aValue) {
  bool hadOne = false;
  forEachHere(aElement, aFeature.fSubsets, [&](Feature const& aNarrow) {
    if (!holds(aElement, aNarrow, aValue)) return;
    hadOne = true;
    unlink(aElement, aNarrow, aValue);
  });
  return hadOne;
}

/// Whether a list, as the owner's metaclass sees it, has no room for one more when `aReplaced` leaves. Other
/// single values give way.
bool isFull(Element const& aOwner, Feature const& aRoot, Feature const& aSeen, Element const* aReplaced) {
  if (aSeen.fUpper < 0 || aRoot.fStorage != Storage::List) return false;
  bool const isReplacing = aReplaced != nullptr && holds(aOwner, aRoot, *aReplaced);
  return countOf(aOwner, aRoot) - (isReplacing ? 1U : 0U) >= static_cast<std::uint32_t>(aSeen.fUpper);
}

/// The supersets take the value as well: each must be able to, with its own far end and supersets.
void checkSupersets(Element const& aElement, Feature const& aFeature, Element const& aValue) {
  forEachHere(aElement, aFeature.fSupersets, [&](Feature const& aWide) {
    if (!holds(aElement, aWide, aValue)) checkLink(aElement, aWide, aValue);
  });
}

/// `aSeen`: what the feature is on the owner's metaclass. Inline, as every link that is made comes by.
[[gnu::always_inline]] inline void checkFitAs(Element const& aOwner, Feature const& aRoot,
                                              Feature const& aSeen, Element const& aValue) {
  if (aValue.model() != aOwner.model()) failures::raiseOtherModel(kSource, aSeen, aValue);
  if (!isA(aValue, aSeen.fType)) failures::raiseWrongType(kSource, aSeen, aValue);
  bool const contains = aRoot.isContainment();
  Element const& inner = contains ? aValue : aOwner;
  Element const& outer = contains ? aOwner : aValue;
  if ((contains || isView(aRoot)) && (inner.marks() & Element::HasContents || &inner == &outer)) {
    for (Element const* step = &outer; step != nullptr; step = step->container())
      if (step == &inner) failures::raiseOwnsItself(kSource, aSeen, inner);
  }
  if (!aRoot.fSupersets.empty()) [[unlikely]]
    checkSupersets(aOwner, aRoot, aValue);
  if (aSeen.fOpposite == kNoFeature) return;
  Feature const& far = feature(aSeen.fOpposite);
  Feature const& farSeen = seenOn(aValue, far);
  if (&farSeen != &far && !isA(aOwner, farSeen.fType)) failures::raiseWrongType(kSource, farSeen, aOwner);
  if (isFull(aValue, far, farSeen, nullptr)) failures::raiseNoRoom(kSource, farSeen);
  if (!far.fSupersets.empty()) [[unlikely]]
    checkSupersets(aValue, far, aOwner);
}

void linkSupersets(Element& aElement, Feature const& aFeature, Element& aValue) {
  forEachHere(aElement, aFeature.fSupersets, [&](Feature const& aWide) { link(aElement, aWide, aValue); });
}

/// Whether making the link is one step after which nothing can fail, once there is room for it.
bool isSimple(Feature const& aRoot, Feature const* aFar) noexcept {
  return aRoot.fSupersets.empty() && (aFar == nullptr || aFar->fSupersets.empty());
}

/// Whether no other feature holds what this one does.
bool standsAlone(Feature const& aRoot) noexcept { return aRoot.fSupersets.empty() && aRoot.fSubsets.empty(); }

/// Makes room at both ends, and at the top level for the parts that give way or move.
void reserveLink(Element& aOwner, Feature const& aRoot, Feature const* aFar, Element& aValue) {
  if (ownsParts(aRoot)) aOwner.model()->reserveRoots(2);
  Change::reserve(aOwner, aRoot, aValue);
  if (aFar != nullptr && !isView(*aFar)) Change::reserve(aValue, *aFar, aOwner);
}

/// Both ends of the link, without the supersets.
void linkEnds(Element& aOwner, Feature const& aRoot, Feature const* aFar, Element& aValue,
              std::uint32_t aPosition) {
  reserveLink(aOwner, aRoot, aFar, aValue);
  if (aRoot.fStorage == Storage::Reference)
    if (Element* const old = single(aOwner, aRoot)) unlink(aOwner, aRoot, *old);
  if (aFar != nullptr && !isView(*aFar) && aFar->fUpper == 1)
    if (Element* const partner = single(aValue, *aFar)) unlink(*partner, aRoot, aValue);
  if (ownsParts(aRoot) && aValue.container() != nullptr) leaveContainer(aValue);
  Change::insert(aOwner, aRoot, aValue, aPosition);
  if (aFar != nullptr && !isView(*aFar)) Change::insert(aValue, *aFar, aOwner, kAtEnd);
}

/// Whether taking the value out of the feature may make it an element of the top level.
bool mayRelease(Feature const& aRoot, Feature const* aFar, Element const& aOwner,
                Element const& aValue) noexcept {
  if (((aOwner.marks() | aValue.marks()) & Element::Dying) != 0) return false;
  return aRoot.fComposite || !aRoot.fSubsets.empty() || (aFar != nullptr && !aFar->fSubsets.empty());
}

}  // namespace

Element* containerThrough(Element const& aElement, Feature const& aView) noexcept {
  Element* const container = aElement.container();
  if (container == nullptr || aElement.containerFeature() != aView.fContainment) return nullptr;
  return isA(*container, aView.fType) ? container : nullptr;
}

Element* single(Element const& aOwner, Feature const& aRoot) noexcept {
  if (isView(aRoot)) return containerThrough(aOwner, aRoot);
  if (aRoot.fStorage == Storage::Reference) return pointerSlot<Element>(aOwner, indexOf(aRoot));
  auto* const list = pointerSlot<ElementList>(aOwner, indexOf(aRoot));
  return ElementList::size(list) == 0 ? nullptr : list->at(0);
}

bool holds(Element const& aOwner, Feature const& aRoot, Element const& aValue) {
  if (aRoot.fStorage != Storage::List) return single(aOwner, aRoot) == &aValue;
  auto* const list = pointerSlot<ReferenceList>(aOwner, indexOf(aRoot));
  if (ElementList::size(list) == 0) return false;
  if (ownsParts(aRoot)) return isOwnersFeature(aValue, aOwner, aRoot);
  // The value knows its side of a pair, which may be the shorter one.
  if (aRoot.fOpposite != kNoFeature) {
    Feature const& far = feature(aRoot.fOpposite);
    if (!isA(aValue, far.fOwner)) return false;
    if (far.fStorage != Storage::List) return single(aValue, far) == &aOwner;
    auto* const back = pointerSlot<ReferenceList>(aValue, aRoot.fOpposite);
    if (ElementList::size(back) < ElementList::size(list)) return back != nullptr && back->contains(&aOwner);
  }
  return list->contains(&aValue);
}

std::uint32_t countOf(Element const& aOwner, Feature const& aRoot) noexcept {
  if (aRoot.fStorage == Storage::List)
    return ElementList::size(pointerSlot<ElementList>(aOwner, indexOf(aRoot)));
  return single(aOwner, aRoot) != nullptr ? 1 : 0;
}

void collect(Element const& aOwner, Feature const& aRoot, std::vector<Element*>& aOut) {
  if (aRoot.fStorage != Storage::List) {
    if (Element* const value = single(aOwner, aRoot)) aOut.push_back(value);
    return;
  }
  if (auto* const list = pointerSlot<ElementList>(aOwner, indexOf(aRoot))) {
    auto const values = list->dense();
    aOut.insert(aOut.end(), values.begin(), values.end());
  }
}

void checkLink(Element const& aOwner, Feature const& aRoot, Element const& aValue, Element const* aReplaced) {
  Feature const& seen = seenOn(aOwner, aRoot);
  checkFitAs(aOwner, aRoot, seen, aValue);
  if (isFull(aOwner, aRoot, seen, aReplaced)) failures::raiseNoRoom(kSource, seen);
}

[[gnu::noinline]] void checkFit(Element const& aOwner, Feature const& aRoot, Element const& aValue) {
  checkFitAs(aOwner, aRoot, seenOn(aOwner, aRoot), aValue);
}

void checkRoom(Element const& aOwner, Feature const& aRoot, std::span<Element* const> aValues) {
  forEachHere(aOwner, aRoot.fSupersets, [&](Feature const& aWide) {
    Feature const& seen = seenOn(aOwner, aWide);
    if (seen.fUpper > 0) {
      auto const isNew = [&](Element const* aValue) { return !holds(aOwner, aWide, *aValue); };
      auto const coming = static_cast<std::size_t>(std::count_if(aValues.begin(), aValues.end(), isNew));
      if (countOf(aOwner, aWide) + coming > static_cast<std::size_t>(seen.fUpper))
        failures::raiseTooMany(kSource, seen);
    }
    checkRoom(aOwner, aWide, aValues);
  });
}

void link(Element& aOwner, Feature const& aRoot, Element& aValue, std::uint32_t aPosition) {
  if (isView(aRoot)) {
    // The part's side of a containment: the container's list is what is stored.
    Feature const& containment = feature(
        feature(aRoot.fOpposite).fStorage == Storage::Computed ? aRoot.fContainment : aRoot.fOpposite);
    link(aValue, containment, aOwner);
    return;
  }
  if (holds(aOwner, aRoot, aValue)) return;
  Feature const* const far = farEnd(aOwner, aRoot);
  if (isSimple(aRoot, far) && !Change::isObserved(aOwner)) [[likely]]
    return linkEnds(aOwner, aRoot, far, aValue, aPosition);
  Change change(*aOwner.model());
  // A stored subset of a containment: the part enters the whole first, which may take it from another owner.
  linkSupersets(aOwner, aRoot, aValue);
  linkEnds(aOwner, aRoot, far, aValue, aPosition);
  if (far != nullptr) linkSupersets(aValue, *far, aOwner);
  change.commit();
}

namespace {

/// Whether a link is one entry at its owner, with nothing to be taken away for it and nothing to be held
/// beside it.
bool isOneEntry(Element const& aOwner, Feature const& aRoot, Feature const& aSeen,
                Element const& aValue) noexcept {
  if (!aRoot.fSupersets.empty() || Change::isObserved(aOwner)) return false;
  if (aRoot.fStorage == Storage::Reference)
    return aSeen.fOpposite == kNoFeature && !aRoot.fComposite && single(aOwner, aRoot) == nullptr;
  if (aRoot.fStorage != Storage::List || !ownsParts(aRoot) || aSeen.fUpper > 0) return false;
  // One that owns nothing is in no circle.
  if (aValue.container() != nullptr || (aValue.marks() & Element::HasContents) != 0 || &aValue == &aOwner)
    return false;
  if (aSeen.fOpposite == kNoFeature) return true;
  Feature const& far = feature(aSeen.fOpposite);
  return isView(far) && far.fSupersets.empty() && far.fNarrowings.empty();
}

}  // namespace

void add(Element& aOwner, Feature const& aRoot, Element& aValue) {
  Feature const& seen = seenOn(aOwner, aRoot);
  if (aValue.model() == aOwner.model() && isA(aValue, seen.fType) && isOneEntry(aOwner, aRoot, seen, aValue))
      [[likely]] {
    Change::reserve(aOwner, aRoot, aValue);
    return Change::insert(aOwner, aRoot, aValue, kAtEnd);
  }
  if (holds(aOwner, aRoot, aValue)) return;
  Element* const old = seen.isMany() ? nullptr : single(aOwner, aRoot);
  checkLink(aOwner, aRoot, aValue, old);
  replace(aOwner, aRoot, old, &aValue);
}

bool linkAtOnce(Element& aOwner, Feature const& aRoot, std::span<Element* const> aValues) {
  Feature const* const far = farEnd(aOwner, aRoot);
  if (!isSimple(aRoot, far) || (far != nullptr && !isView(*far)) || seenOn(aOwner, aRoot).fUpper >= 0)
    return false;
  if (Change::isNoted(aOwner)) return false;
  bool const isPart = ownsParts(aRoot);
  for (Element* const value : aValues) {
    if (holds(aOwner, aRoot, *value)) continue;
    if (isPart && value->container() != nullptr) return false;
    checkFit(aOwner, aRoot, *value);
  }
  // Room for all: nothing fails from here on.
  if (isPart) aOwner.model()->reserveRoots(2);
  Change::reserveList(aOwner, aRoot, static_cast<std::uint32_t>(aValues.size()));
  if (!isPart && aRoot.fOpposite == kNoFeature)
    for (Element* const value : aValues) Referrers::reserve(*value);
  for (Element* const value : aValues)
    if (!holds(aOwner, aRoot, *value)) linkEnds(aOwner, aRoot, far, *value, kAtEnd);
  return true;
}

void unlink(Element& aOwner, Feature const& aRoot, Element& aValue) {
  if (Change::isObserved(aOwner)) [[unlikely]]
    return Change::together(aOwner, [&] { unlink(aOwner, aRoot, aValue); });
  if (isView(aRoot)) {
    if (containerThrough(aOwner, aRoot) == &aValue) leaveContainer(aOwner);
    return;
  }
  if (!holds(aOwner, aRoot, aValue)) return;
  Feature const* const far = farEnd(aOwner, aRoot);
  // Room first: taking out can't fail from here on.
  if (mayRelease(aRoot, far, aOwner, aValue)) aOwner.model()->reserveRoots(1);
  if (standsAlone(aRoot) && (far == nullptr || standsAlone(*far))) [[likely]] {
    drop(aOwner, aRoot, aValue);
    if (far != nullptr && !isView(*far)) drop(aValue, *far, aOwner);
    return;
  }
  bool hadSubsets = unlinkSubsets(aOwner, aRoot, aValue);
  if (far != nullptr) hadSubsets |= unlinkSubsets(aValue, *far, aOwner);
  if (hadSubsets && !holds(aOwner, aRoot, aValue)) return;  // a subset's removal took it along
  drop(aOwner, aRoot, aValue);
  if (far != nullptr && !isView(*far)) drop(aValue, *far, aOwner);
  if (clearsSupersets(aRoot))
    forEachHere(aOwner, aRoot.fSupersets, [&](Feature const& aWide) { unlink(aOwner, aWide, aValue); });
  if (far != nullptr && clearsSupersets(*far))
    forEachHere(aValue, far->fSupersets, [&](Feature const& aWide) { unlink(aValue, aWide, aOwner); });
}

void replace(Element& aOwner, Feature const& aRoot, Element* aOld, Element* aValue) {
  if (aOld == nullptr) return aValue == nullptr ? void() : link(aOwner, aRoot, *aValue);
  if (aValue == nullptr) return unlink(aOwner, aRoot, *aOld);
  Feature const* const far = isView(aRoot) ? nullptr : farEnd(aOwner, aRoot);
  if (!isView(aRoot) && isSimple(aRoot, far) && !Change::isObserved(aOwner)) [[likely]] {
    reserveLink(aOwner, aRoot, far, *aValue);
    unlink(aOwner, aRoot, *aOld);
    return link(aOwner, aRoot, *aValue);
  }
  Change change(*aOwner.model());
  unlink(aOwner, aRoot, *aOld);
  link(aOwner, aRoot, *aValue);
  change.commit();
}

void leaveContainer(Element& aElement) {
  if (aElement.container() != nullptr)
    unlink(*aElement.container(), feature(aElement.containerFeature()), aElement);
}

void arrangeValues(Element& aOwner, Feature const& aRoot, std::span<Element* const> aValues) {
  auto* const list = pointerSlot<ElementList>(aOwner, indexOf(aRoot));
  if (list == nullptr || aValues.size() < 2) return;
  auto const all = list->dense();
  std::vector<Element*> order(all.begin(), all.end());
  std::unordered_set<Element*> const arranged(aValues.begin(), aValues.end());
  auto next = aValues.begin();
  for (Element*& place : order)
    if (arranged.contains(place)) place = *next++;
  Change::arrange(aOwner, aRoot, order);
}

}  // namespace umlmm::engine
