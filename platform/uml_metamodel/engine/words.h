#pragma once

#include <vector>

#include "engine/Aside.h"
#include "engine/slots.h"

/// Walks over the slots of an element by the masks of its class, for what is done to all features alike.
/// Words stand in the order of the meta-property list.
namespace umlmm::engine {

/// Calls `aVisit` with the number of each word in a mask.
template <class Visit>
void forEachWord(std::uint64_t aMask, Visit aVisit) {
  for (; aMask != 0; aMask &= aMask - 1) aVisit(static_cast<unsigned>(__builtin_ctzll(aMask)));
}

inline void* wordAt(Element const& aElement, unsigned aWord) noexcept {
  return reinterpret_cast<void* const*>(aElement.slots())[aWord];
}

/// Calls `aVisit` with each element that a word for a reference or a list holds. The list must not change
/// meanwhile.
template <class Visit>
void forEachIn(Element const& aElement, unsigned aWord, Visit aVisit) {
  void* const held = wordAt(aElement, aWord);
  if (held == nullptr) return;
  if ((aElement.classTable()->fListWords >> aWord & 1) == 0) return aVisit(*static_cast<Element*>(held));
  for (Element* const entry : *static_cast<ElementList const*>(held))
    if (entry != nullptr) aVisit(*entry);
}

/// False for elements that never contained anything: most of a model.
inline bool hadContents(Element const& aElement) noexcept {
  return (aElement.marks() & Element::HasContents) != 0;
}

/// Calls `aVisit(feature, word)` with each feature that extensions have added and the element has a word for.
template <class Visit>
void forEachAdded(Element const& aElement, Visit aVisit) {
  if (Aside* const aside = Asides::find(aElement)) [[unlikely]]
    for (auto& [index, word] : aside->fWords) aVisit(feature(index), word);
}
/// The same as `forEachIn`, for such a word.
template <class Visit>
void forEachIn(Feature const& aAdded, std::uint64_t aWord, Visit aVisit) {
  if (aWord == 0) return;
  if (aAdded.fStorage == Storage::Reference) return aVisit(*reinterpret_cast<Element*>(aWord));
  if (aAdded.fStorage != Storage::List) return;
  for (Element* const entry : *reinterpret_cast<ElementList const*>(aWord))
    if (entry != nullptr) aVisit(*entry);
}

/// Calls `aVisit` with each element that the element contains, in the order of its features. Nothing comes
/// twice.
template <class Visit>
void forEachPart(Element const& aElement, Visit aVisit) {
  forEachWord(aElement.classTable()->fContentWords,
              [&](unsigned aWord) { forEachIn(aElement, aWord, [&](Element& aPart) { aVisit(aPart); }); });
  forEachAdded(aElement, [&](Feature const& aAdded, std::uint64_t aWord) {
    if (ownsParts(aAdded)) forEachIn(aAdded, aWord, [&](Element& aPart) { aVisit(aPart); });
  });
}

inline void collectContents(Element const& aElement, std::vector<Element*>& aOut) {
  if (hadContents(aElement)) forEachPart(aElement, [&](Element& aPart) { aOut.push_back(&aPart); });
}

}  // namespace umlmm::engine
