#include "copying/Copier.h"

#include <algorithm>

#include "engine/Change.h"
#include "engine/Referrers.h"
#include "engine/ValueSequence.h"
#include "engine/links.h"
#include "engine/words.h"

namespace umlmm::copying {

namespace {

using engine::Change;
using engine::ElementList;
using engine::FeatureIndex;
using engine::Storage;
using Values = Kelm::Generic::SequenceIntf;

/// What a reference is on the far side: null without a far end, and for a part's view of its owner.
Feature const* farEnd(Element const& aOwner, Feature const& aRoot) noexcept {
  FeatureIndex const opposite = engine::seenOn(aOwner, aRoot).fOpposite;
  if (opposite == engine::kNoFeature) return nullptr;
  Feature const& far = engine::feature(opposite);
  return far.fStorage == Storage::Container ? nullptr : &far;
}

/// Whether the feature takes one more value, and no other one has to give way for it.
bool hasRoom(Element const& aOwner, Feature const& aRoot) noexcept {
  Feature const& seen = engine::seenOn(aOwner, aRoot);
  return seen.fUpper < 0 || engine::countOf(aOwner, aRoot) < static_cast<std::uint32_t>(seen.fUpper);
}

/// Whether a far end, and all that is linked with it, takes the copy beside what it holds.
bool takesCopy(Element const& aOwner, Feature const& aRoot, Element const& aValue) {
  Feature const* const far = farEnd(aOwner, aRoot);
  if (far != nullptr && !hasRoom(aValue, *far)) return false;
  auto const takes = [](Element const& aElement, Feature const& aFeature, Element const& aOther) {
    return std::ranges::all_of(aFeature.fSupersets, [&](FeatureIndex aIndex) {
      Feature const& wide = engine::feature(aIndex);
      if (!engine::hasSlot(aElement, aIndex) || engine::holds(aElement, wide, aOther)) return true;
      return takesCopy(aElement, wide, aOther);
    });
  };
  return takes(aOwner, aRoot, aValue) && (far == nullptr || takes(aValue, *far, aOwner));
}

void copySequence(Element const& aElement, Feature const& aRoot, Values const* aValues, Element& aCopy) {
  if (aValues == nullptr) return;
  engine::assignValues(aCopy, aRoot, aCopy.model()->baseDeviant(), aValues, aElement.model()->baseDeviant());
}

/// Calls `aVisit(root, value)` with all that an element refers to and does not own.
template <class Visit>
void forEachReference(Element const& aElement, Visit aVisit) {
  Kelm::ClassTable const& table = *aElement.classTable();
  engine::forEachWord((table.fReferenceWords | table.fListWords) & ~table.fContentWords, [&](unsigned aWord) {
    Feature const& root = engine::feature(table.fFeatureOfWord[aWord]);
    engine::forEachIn(aElement, aWord, [&](Element& aValue) { aVisit(root, aValue); });
  });
  engine::forEachAdded(aElement, [&](Feature const& aAdded, std::uint64_t aWord) {
    if (aAdded.isReference() && !engine::ownsParts(aAdded))
      engine::forEachIn(aAdded, aWord, [&](Element& aValue) { aVisit(aAdded, aValue); });
  });
}

}  // namespace

Element& Copier::create(Element const& aElement) {
  Element& copy = Change::create(engine::metaclassOf(aElement), fModel);
  fPairs.emplace_back(&aElement, &copy);
  fCopies.emplace(&aElement, &copy);
  return copy;
}

Element& Copier::add(Element const& aElement) {
  std::size_t next = fPairs.size();
  Element& copy = create(aElement);
  // A part goes to its owner at once, so that the top level stays short.
  for (; next < fPairs.size(); ++next) {
    auto const [original, made] = fPairs[next];
    if (engine::hadContents(*original)) copyParts(*original, *made);
  }
  return copy;
}

void Copier::copyParts(Element const& aElement, Element& aCopy) {
  Kelm::ClassTable const& table = *aElement.classTable();
  engine::forEachWord(table.fContentWords, [&](unsigned aWord) {
    Feature const& root = engine::feature(table.fFeatureOfWord[aWord]);
    engine::forEachIn(aElement, aWord, [&](Element& aPart) { copyPart(aPart, root, aCopy); });
  });
  engine::forEachAdded(aElement, [&](Feature const& aAdded, std::uint64_t aWord) {
    if (engine::ownsParts(aAdded))
      engine::forEachIn(aAdded, aWord, [&](Element& aPart) { copyPart(aPart, aAdded, aCopy); });
  });
}

void Copier::copyPart(Element const& aPart, Feature const& aRoot, Element& aOwner) {
  Element& copy = create(aPart);
  Change::reserve(aOwner, aRoot, copy);
  Change::insert(aOwner, aRoot, copy, engine::kAtEnd);
}

void Copier::finish() {
  for (auto const& [original, copy] : fPairs) copyValues(*original, *copy);
  for (auto const& [original, copy] : fPairs) copyReferences(*original, *copy);
  for (auto const& [original, copy] : fPairs)
    if (original->hasReferrers()) copyReferrersOrder(*original, *copy);
}

void Copier::copyReferrersOrder(Element const& aElement, Element& aCopy) const {
  std::vector<engine::Reference> order;
  for (auto const& [owner, feature] : engine::Referrers::of(aElement))
    if (Element* const copy = copyOf(*owner)) order.push_back({copy, feature});
  auto const isSame = [](engine::Reference aLeft, engine::Reference aRight) {
    return aLeft.fOwner == aRight.fOwner && aLeft.fFeature == aRight.fFeature;
  };
  if (!std::ranges::equal(engine::Referrers::of(aCopy), order, isSame))
    Change::arrangeReferrers(aCopy, order);
}

Copier::Slots const& Copier::slotsOf(Element const& aElement) {
  int const index = engine::metaclassOf(aElement);
  auto const [found, isNew] = fSlots.try_emplace(index);
  Slots& slots = found->second;
  if (!isNew) return slots;
  for (std::uint16_t const general : engine::metaclass(index).fAncestors) {
    engine::Metaclass const& owner = engine::metaclass(general);
    for (unsigned i = 0; i < owner.fFeatureCount; ++i) {
      Feature const& root = engine::feature(static_cast<FeatureIndex>(owner.fFirstFeature + i));
      if (root.fRootRecord != &root || engine::isAdded(root.fIndex)) continue;
      if (!engine::hasSlot(aElement, root.fIndex)) continue;
      // A computed feature has a bit for whether its default still stands.
      if (root.fStorage == Storage::Flag || root.fStorage == Storage::Enumeration ||
          root.fStorage == Storage::Computed)
        slots.fFlags.push_back(&root);
      else if (root.fStorage == Storage::Integer)
        slots.fIntegers.push_back(&root);
      else if (root.fStorage == Storage::String)
        slots.fTexts.push_back(&root);
      else if (root.fStorage == Storage::PrimitiveList)
        slots.fSequences.push_back(&root);
    }
  }
  return slots;
}

void Copier::copyValues(Element const& aElement, Element& aCopy) {
  Slots const& slots = slotsOf(aElement);
  if (aElement.flags() != aCopy.flags()) {
    for (Feature const* const root : slots.fFlags) {
      // With a presence bit; the next flag's bit comes along where there is none, and is copied as well.
      unsigned const width = (root->fStorage == Storage::Enumeration ? engine::kEnumerationBits : 1) + 1;
      std::uint32_t const bits = engine::flagBits(aElement, root->fIndex, width);
      if (bits != engine::flagBits(aCopy, root->fIndex, width))
        Change::setFlags(aCopy, root->fIndex, width, bits);
    }
  }
  for (Feature const* const root : slots.fIntegers) {
    std::uint32_t const value = engine::integerSlot(aElement, root->fIndex);
    if (value != engine::integerSlot(aCopy, root->fIndex)) Change::setInteger(aCopy, root->fIndex, value);
  }
  for (Feature const* const root : slots.fSequences)
    copySequence(aElement, *root, engine::pointerSlot<Values>(aElement, root->fIndex), aCopy);
  for (Feature const* const root : slots.fTexts)
    if (auto const* const text = engine::pointerSlot<Kelm::StringObject>(aElement, root->fIndex))
      Change::setText(aCopy, *root, text);
  engine::forEachAdded(aElement, [&](Feature const& aAdded, std::uint64_t aWord) {
    if (aAdded.fStorage == Storage::PrimitiveList)
      copySequence(aElement, aAdded, reinterpret_cast<Values*>(aWord), aCopy);
    else if (aAdded.fStorage == Storage::String)
      Change::setText(aCopy, aAdded, reinterpret_cast<Kelm::StringObject*>(aWord));
    else if (!aAdded.isReference())
      Change::setInteger(aCopy, aAdded.fIndex, static_cast<std::uint32_t>(aWord));
  });
}

void Copier::copyReferences(Element const& aElement, Element& aCopy) {
  // By feature, as both ends of a link among the copies come when their turn is.
  bool hasJoined = false;
  forEachReference(aElement, [&](Feature const& aRoot, Element& aValue) {
    hasJoined |= copyReference(aRoot, aValue, aCopy);
  });
  if (!hasJoined) return;
  // Linking has entered values into supersets before their turn: the order is made anew.
  std::unordered_map<Feature const*, std::vector<Element*>> lists;
  forEachReference(aElement, [&](Feature const& aRoot, Element& aValue) {
    if (aRoot.fStorage == Storage::List) lists[&aRoot].push_back(&aValue);
  });
  for (auto const& [root, originals] : lists) copyOrder(*root, originals, aCopy);
}

bool Copier::copyReference(Feature const& aRoot, Element& aValue, Element& aCopy) {
  Element* const inside = copyOf(aValue);
  Feature const* const far = inside == nullptr ? farEnd(aCopy, aRoot) : nullptr;
  if (far != nullptr) {
    bool const isRequired = engine::seenOn(aCopy, aRoot).fLower > 0;
    if (!isRequired || engine::holds(aCopy, aRoot, aValue) || !takesCopy(aCopy, aRoot, aValue)) return false;
    engine::link(aCopy, aRoot, aValue);
    return true;
  }
  Element& value = inside == nullptr ? aValue : *inside;
  Change::reserve(aCopy, aRoot, value);
  Change::insert(aCopy, aRoot, value, engine::kAtEnd);
  return false;
}

void Copier::copyOrder(Feature const& aRoot, std::vector<Element*> const& aOriginals, Element& aCopy) const {
  std::vector<Element*> order;
  for (Element* const original : aOriginals) {
    Element* const inside = copyOf(*original);
    Element* const value = inside == nullptr ? original : inside;
    if (inside != nullptr || engine::holds(aCopy, aRoot, *value)) order.push_back(value);
  }
  auto* const list = engine::pointerSlot<ElementList>(aCopy, aRoot.fIndex);
  if (list == nullptr || std::ranges::equal(list->dense(), order)) return;
  Change::arrange(aCopy, aRoot, order);
}

}  // namespace umlmm::copying
