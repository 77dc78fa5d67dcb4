#pragma once

#include <vector>

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

/// Calls `aVisit` with each element that the element contains, in the order of its features. Nothing comes
/// twice.
template <class Visit>
void forEachPart(Element const& aElement, Visit aVisit) {
  forEachWord(aElement.classTable()->fContentWords,
              [&](unsigned aWord) { forEachIn(aElement, aWord, [&](Element& aPart) { aVisit(aPart); }); });
}

inline void collectContents(Element const& aElement, std::vector<Element*>& aOut) {
  if (hadContents(aElement)) forEachPart(aElement, [&](Element& aPart) { aOut.push_back(&aPart); });
}

}  // namespace umlmm::engine
