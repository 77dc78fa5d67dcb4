#include "kelm/ElementList.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "kelm/Generic.h"
#include "kelm/ModelElementIntf.h"
#include "kelm/PointerTable.h"

namespace Kelm {

namespace {

constexpr std::uint32_t kFirstCapacity = 3;
/// Lists that don't own their elements are scanned up to this length.
constexpr std::uint32_t kScanned = 32;
/// A search goes this far from a hint before all hints are renewed.
constexpr std::uint32_t kMaxDrift = 256;
/// So many holes are walked over before they are closed.
constexpr std::uint32_t kLongestRun = 64;

}  // namespace

/// The hints of a list that does not own its elements.
struct ElementList::Hints {
  PointerTable fEntries;
  /// An element stands in the list twice: its place can't be told by a table, the list is scanned.
  bool fRepeats = false;
};

std::size_t ElementList::bytesFor(std::uint32_t aCapacity) noexcept {
  return sizeof(ElementList) + aCapacity * sizeof(Element*);
}

ElementList::ElementList(std::uint32_t aCapacity) noexcept : fCapacity(aCapacity) {}
ElementList::~ElementList() { delete fProxy; }

ElementList* ElementList::allocate(Blocks& aBlocks, std::uint32_t aCapacity) {
  return new (aBlocks.allocate(bytesFor(aCapacity))) ElementList(aCapacity);
}

void ElementList::destroy(ElementList* aList) noexcept {
  if (aList == nullptr) return;
  std::size_t const size = bytesFor(aList->fCapacity);
  aList->~ElementList();
  Blocks::free(aList, size);
}

ElementList* ElementList::grown(ElementList* aList, Blocks& aBlocks, std::uint32_t aCapacity) {
  ElementList* const list = allocate(aBlocks, aCapacity);
  aList->closeFront();
  std::memcpy(list->items(), aList->items(), aList->fEnd * sizeof(Element*));
  list->fProxy = std::exchange(aList->fProxy, nullptr);
  list->fHints = std::move(aList->fHints);
  list->fLive = aList->fLive;
  list->fEnd = aList->fEnd;
  list->fFirstHole = aList->fFirstHole;
  list->fStamp = aList->fStamp;
  list->fDrift = aList->fDrift;
  list->fSteps = aList->fSteps + list->fEnd;
  destroy(aList);
  return list;
}

void ElementList::makeRoom(ElementList*& aList, Blocks& aBlocks, std::uint32_t aCount) {
  if (aList == nullptr)
    aList = allocate(aBlocks, std::max(kFirstCapacity, aCount));
  else if (aList->fBegin > std::max(aList->fCapacity / 4, aCount))
    aList->closeFront();
  else
    aList = grown(aList, aBlocks, std::max(2 * aList->fCapacity + 1, aList->fEnd + aCount));
}

void ElementList::append(ElementList*& aList, Blocks& aBlocks, Element* aElement, bool aOwning) {
  reserve(aList, aBlocks, 1);
  aList->put(aList->fEnd, aElement, aOwning);
}

void ElementList::insert(ElementList*& aList, Blocks& aBlocks, std::uint32_t aPosition, Element* aElement,
                         bool aOwning) {
  reserve(aList, aBlocks, 1);
  if (aPosition == aList->fLive) return aList->put(aList->fEnd, aElement, aOwning);
  aList->closeHoles();
  aList->put(aList->fBegin + aPosition, aElement, aOwning);
}

// Makes way for the element and puts it there; there are no holes behind the entry.
void ElementList::put(std::uint32_t aEntry, Element* aElement, bool aOwning) noexcept {
  Element** const place = items() + aEntry;
  if (aEntry < fEnd) {
    std::memmove(place + 1, place, (fEnd - aEntry) * sizeof(Element*));
    fSteps += fEnd - aEntry;
    ++fDrift;
  }
  *place = aElement;
  ++fEnd;
  ++fLive;
  ++fStamp;
  setHint(aElement, aEntry, aOwning);
}

std::uint32_t ElementList::find(Element const* aElement, bool aOwning) noexcept {
  if (!aOwning && !hasHints()) return scan(aElement);
  if (fDrift > kMaxDrift) renewHints(aOwning);
  return searchAround(aElement, hintOf(aElement, aOwning));
}

std::uint32_t ElementList::scan(Element const* aElement) const noexcept {
  auto const* const found = std::find(begin(), end(), aElement);
  fSteps += static_cast<std::uint32_t>(found - begin()) + 1;
  return found == end() ? kNotFound : static_cast<std::uint32_t>(found - items());
}

std::uint32_t ElementList::searchAround(Element const* aElement, std::int64_t aHint) const noexcept {
  std::int64_t const first = fBegin;
  std::int64_t const end = fEnd;
  std::uint32_t found = kNotFound;
  std::int64_t distance = 0;
  auto const stands = [&](std::int64_t aEntry) {
    if (aEntry < first || aEntry >= end || items()[aEntry] != aElement) return false;
    found = static_cast<std::uint32_t>(aEntry);
    return true;
  };
  // A hint from elsewhere may be any number.
  if (aHint + fDrift < first || aHint - fDrift >= end) return kNotFound;
  while (distance <= fDrift && !stands(aHint - distance) && !stands(aHint + distance)) ++distance;
  fSteps += static_cast<std::uint32_t>(distance) + 1;
  return found;
}

ElementList::Element* ElementList::before(Element const* aElement, bool aOwning) noexcept {
  std::uint32_t entry = find(aElement, aOwning);
  for (std::uint32_t const first = entry; entry > fBegin; --entry) {
    if (items()[entry - 1] != nullptr) return items()[entry - 1];
    if (first - entry < kLongestRun) continue;
    // Many were erased before it: a run of holes is walked once.
    closeHoles();
    renewHints(aOwning);
    entry = find(aElement, aOwning) + 1;
  }
  return nullptr;
}

void ElementList::restore(Element const* aPrevious, Element* aElement, bool aOwning) noexcept {
  auto const place = [&] { return aPrevious == nullptr ? fBegin : find(aPrevious, aOwning) + 1; };
  std::uint32_t entry = place();
  if (aPrevious == nullptr && fBegin > 0) {
    entry = --fBegin;
  } else if (entry == fEnd ? fEnd == fCapacity : items()[entry] != nullptr) {
    closeHoles();
    closeFront();
    return put(place(), aElement, aOwning);
  } else if (entry == fEnd) {
    return put(entry, aElement, aOwning);
  }
  items()[entry] = aElement;
  ++fLive;
  ++fStamp;
  setHint(aElement, entry, aOwning);
}

void ElementList::eraseEntry(std::uint32_t aEntry, bool aOwning) noexcept {
  Element*& entry = items()[aEntry];
  if (!aOwning && fHints != nullptr) fHints->fEntries.take(entry);
  entry = nullptr;
  --fLive;
  ++fStamp;
  if (fLive == 0) return clear();
  if (aEntry + 1 == fEnd) {
    while (items()[fEnd - 1] == nullptr) --fEnd;
  } else if (aEntry == fBegin) {
    while (items()[fBegin] == nullptr) ++fBegin;
  } else {
    fFirstHole = std::min(fFirstHole, aEntry);
    if (holes() * 4 < fEnd - fBegin) return;
    closeHoles();
    renewHints(aOwning);
  }
}

bool ElementList::erase(Element const* aElement, bool aOwning) noexcept {
  std::uint32_t const entry = find(aElement, aOwning);
  if (entry == kNotFound) return false;
  eraseEntry(entry, aOwning);
  return true;
}

ElementList::Element* ElementList::at(std::uint32_t aPosition) {
  if (fBegin + aPosition >= fFirstHole) closeHoles();
  return begin()[aPosition];
}

std::span<ElementList::Element* const> ElementList::dense() noexcept {
  closeHoles();
  return {begin(), fLive};
}

std::uint32_t ElementList::positionOf(Element const* aElement, bool aOwning) {
  std::uint32_t entry = find(aElement, aOwning);
  if (entry == kNotFound) return kNotFound;
  if (entry > fFirstHole) {
    std::uint32_t const stamp = fStamp;
    closeHoles();
    if (stamp != fStamp) entry = find(aElement, aOwning);
  }
  return entry - fBegin;
}

void ElementList::rearrange(std::span<int const> aFrom, std::span<int const> aTo, bool aOwning) {
  closeHoles();
  std::vector<Element*> moving;
  moving.reserve(aFrom.size());
  for (int const from : aFrom) moving.push_back(begin()[from]);
  bool shifted = false;
  for (std::size_t i = 0; i < aTo.size(); ++i) {
    std::uint32_t const entry = fBegin + static_cast<std::uint32_t>(aTo[i]);
    items()[entry] = moving[i];
    // Mostly one moves far and many make way: these keep their hints, and their memory is left alone.
    if (std::abs(aTo[i] - aFrom[i]) == 1)
      shifted = true;
    else if (aOwning)
      setHint(moving[i], entry, true);
    else if (fHints != nullptr)
      fHints->fEntries.assign(moving[i], entry);
  }
  if (shifted) ++fDrift;
  fSteps += static_cast<std::uint32_t>(aTo.size());
  ++fStamp;
}

void ElementList::reorder(std::span<Element* const> aOrder, bool aOwning) noexcept {
  closeHoles();
  std::copy(aOrder.begin(), aOrder.end(), items() + fBegin);
  renewHints(aOwning);
  ++fStamp;
}

void ElementList::clear() noexcept {
  fLive = fBegin = fEnd = fDrift = 0;
  fFirstHole = kNotFound;
  fHints.reset();
  ++fStamp;
}

// Entries move by at most the number of holes; hints stay as they are.
void ElementList::closeHoles() noexcept {
  std::uint32_t remaining = holes();
  if (remaining == 0) {
    fFirstHole = kNotFound;
    return;
  }
  fDrift += remaining;
  Element** write = std::find(items() + std::max(fBegin, fFirstHole), items() + fEnd, nullptr);
  Element** read = write + 1;
  fSteps += static_cast<std::uint32_t>(items() + fEnd - write);
  for (; remaining > 0; --remaining) {
    // The search for the next hole is saved behind the last one.
    Element** const next = remaining == 1 ? items() + fEnd : std::find(read, items() + fEnd, nullptr);
    std::memmove(write, read, static_cast<std::size_t>(next - read) * sizeof(Element*));
    write += next - read;
    read = next + 1;
  }
  fEnd = static_cast<std::uint32_t>(write - items());
  fFirstHole = kNotFound;
  ++fStamp;
}

void ElementList::closeFront() noexcept {
  if (fBegin == 0) return;
  std::memmove(items(), begin(), (fEnd - fBegin) * sizeof(Element*));
  fSteps += fEnd - fBegin;
  fDrift += fBegin;
  // The first hole may have been trimmed off with the front.
  if (fFirstHole != kNotFound) fFirstHole -= std::min(fFirstHole, fBegin);
  fEnd -= fBegin;
  fBegin = 0;
  ++fStamp;
}

void ElementList::renewHints(bool aOwning) noexcept {
  constexpr std::uint32_t kAhead = 16;
  if (!aOwning && fHints == nullptr) return;
  for (std::uint32_t entry = fBegin; entry < fEnd; ++entry) {
    Element* const element = items()[entry];
    if (element == nullptr) continue;
    if (!aOwning) {
      fHints->fEntries.assign(element, entry);
    } else {
      if (entry + kAhead < fEnd) __builtin_prefetch(items()[entry + kAhead], 1);
      ElementState::hint(*element) = static_cast<std::int32_t>(entry);
    }
  }
  fSteps += fEnd - fBegin;
  fDrift = 0;
}

// A list without a table is right, only slower: so a table that finds no memory is none.
bool ElementList::hasHints() noexcept try {
  if (fHints != nullptr) return !fHints->fRepeats;
  if (fEnd - fBegin <= kScanned) return false;
  auto hints = std::make_unique<Hints>();
  hints->fEntries.reserve(fLive);
  for (std::uint32_t entry = fBegin; entry < fEnd; ++entry)
    if (items()[entry] != nullptr && !hints->fEntries.insert(items()[entry], entry)) hints->fRepeats = true;
  fSteps += fEnd - fBegin;
  fDrift = 0;
  fHints = std::move(hints);
  return !fHints->fRepeats;
} catch (std::bad_alloc const&) {
  return false;
}

std::int64_t ElementList::hintOf(Element const* aElement, bool aOwning) const noexcept {
  if (aOwning) return ElementState::hint(const_cast<Element&>(*aElement));
  std::uint32_t const entry = fHints->fEntries.find(aElement);
  return entry == PointerTable::kNotFound ? INT64_MAX / 2 : entry;
}

void ElementList::setHint(Element* aElement, std::uint32_t aEntry, bool aOwning) noexcept try {
  if (aOwning)
    ElementState::hint(*aElement) = static_cast<std::int32_t>(aEntry);
  else if (fHints != nullptr && !fHints->fRepeats && !fHints->fEntries.insert(aElement, aEntry))
    fHints->fRepeats = true;
} catch (std::bad_alloc const&) {
  fHints.reset();
}

}  // namespace Kelm
