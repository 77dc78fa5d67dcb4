#pragma once

#include "engine/Feature.h"
#include "engine/Place.h"
#include "kelm/Generic.h"
#include "kelm/ModelElementIntf.h"
#include "kelm/String.h"

/// The one place through which every slot of an element is read; `Change.h` is where it is written. What is
/// read for scripts is checked here against the variant, and here other ways of storing variants would come
/// in.
namespace umlmm::engine {

using Element = Kelm::NSInterface::ModelElementIntf;
using Kelm::Deviant;
using Kelm::ElementList;
using Kelm::PartList;
using Kelm::ReferenceList;

/// Raises, telling what the element is or was, when it does not exist in the variant.
[[noreturn]] void raiseNotInVariant(Element const& aElement, Place aPlace);
inline void checkReadable(Element const& aElement, Deviant const& aDeviant, Place aPlace) {
  if (!aElement.existsIn(aDeviant)) [[unlikely]]
    raiseNotInVariant(aElement, aPlace);
}
/// The same for a change; also raises when the variant can't be written, unless such checks are off.
inline void checkWritable(Element const& aElement, Deviant const& aDeviant, Place aPlace) {
  aDeviant.assertWritable(&aElement);
  checkReadable(aElement, aDeviant, aPlace);
}

inline std::uint8_t slotOf(Element const& aElement, FeatureIndex aRoot) noexcept {
  return aElement.classTable()->fSlotOfFeature[aRoot];
}

/// The word of a feature that an extension has added: what the element has beside its slots, or what the
/// feature has on elements where it was never set.
[[gnu::cold]] std::uint64_t addedWord(Element const& aElement, FeatureIndex aRoot) noexcept;

/// The pointer word of a string, reference or list.
template <class T>
T* pointerSlot(Element const& aElement, FeatureIndex aRoot) noexcept {
  if (isAdded(aRoot)) [[unlikely]]
    return reinterpret_cast<T*>(addedWord(aElement, aRoot));
  return reinterpret_cast<T* const*>(aElement.slots())[slotOf(aElement, aRoot)];
}
inline std::uint32_t integerSlot(Element const& aElement, FeatureIndex aRoot) noexcept {
  if (isAdded(aRoot)) [[unlikely]]
    return static_cast<std::uint32_t>(addedWord(aElement, aRoot));
  return reinterpret_cast<std::uint32_t const*>(aElement.slots())[slotOf(aElement, aRoot)];
}
/// `aWidth` bits of the flag word from the slot's position on.
inline std::uint32_t flagBits(Element const& aElement, FeatureIndex aRoot, unsigned aWidth) noexcept {
  if (isAdded(aRoot)) [[unlikely]]
    return static_cast<std::uint32_t>(addedWord(aElement, aRoot));
  return aElement.flags() >> slotOf(aElement, aRoot) & ((1U << aWidth) - 1);
}

/// Whether the slot is the one that owns its parts; what holds the same parts beside it refers to them.
inline bool ownsParts(Feature const& aRoot) noexcept {
  return aRoot.fComposite && aRoot.fContainment == indexOf(aRoot);
}

/// Calls `aVisit` with the list of a feature, which is there, as the kind of list that it is.
template <class Visit>
decltype(auto) withList(Element const& aOwner, Feature const& aRoot, Visit aVisit) {
  if (ownsParts(aRoot)) return aVisit(*pointerSlot<PartList>(aOwner, indexOf(aRoot)));
  return aVisit(*pointerSlot<ReferenceList>(aOwner, indexOf(aRoot)));
}

using detail::kEnumerationBits;

inline int metaclassOf(Element const& aElement) noexcept { return aElement.classTable()->fMetaclass; }
inline bool isA(Element const& aElement, int aMetaclass) noexcept {
  if (aMetaclass >= Kelm::ClassTable::kGeneralsLimit) [[unlikely]]
    return conformsAdded(metaclassOf(aElement), aMetaclass);
  auto const bit = static_cast<unsigned>(aMetaclass);
  return (aElement.classTable()->fGenerals[bit / 64] >> (bit % 64) & 1) != 0;
}
/// Whether elements of the metaclass have the feature, and keep its value themselves.
inline bool hasSlot(Element const& aElement, FeatureIndex aRoot) noexcept {
  if (isAdded(aRoot)) [[unlikely]]
    return isA(aElement, feature(aRoot).fOwner);
  return slotOf(aElement, aRoot) != Kelm::ClassTable::kNoSlot;
}

/// The text by which failures call the element, or none.
inline FeatureIndex namingFeature(Element const& aElement) noexcept {
  return metaclass(metaclassOf(aElement)).fNaming;
}

/// What a root feature is on an element's metaclass: the most special redefinition of it there, or itself.
inline Feature const& seenOn(Element const& aElement, Feature const& aRoot) noexcept {
  Feature const* seen = &aRoot;
  for (FeatureIndex const index : aRoot.fNarrowings)
    if (isA(aElement, feature(index).fOwner)) seen = &feature(index);
  return *seen;
}

}  // namespace umlmm::engine
