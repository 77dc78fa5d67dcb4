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
/// At least so many holes are walked over before they are closed.
constexpr std::uint32_t kLongestRun = 64;

}  // namespace

/// Where elements stand in a list that does not own them.
struct ElementList::Table {
  PointerTable fEntries;
  /// An element stands in the list twice: its place can't be told by a table, the list is scanned.
  bool fRepeats = false;
};

std::size_t ElementList::bytesFor(std::uint32_t aCapacity) noexcept {
  return sizeof(ElementList) + aCapacity * sizeof(Element*);
}

ElementList::ElementList(std::uint32_t aCapacity) noexcept : fCapacity(aCapacity) {}
ElementList::~ElementList() { delete fProxy; }

void ElementList::destroy(ElementList* aList) noexcept {
  if (aList == nullptr) return;
  std::size_t const size = bytesFor(aList->fCapacity);
  aList->~ElementList();
  Blocks::free(aList, size);
}

void ElementList::takeOver(ElementList& aOld) noexcept {
  aOld.closeFront();
  std::memcpy(items(), aOld.items(), aOld.fEnd * sizeof(Element*));
  fProxy = std::exchange(aOld.fProxy, nullptr);
  fTable = std::move(aOld.fTable);
  fLive = aOld.fLive;
  fEnd = aOld.fEnd;
  fFirstHole = aOld.fFirstHole;
  fStamp = aOld.fStamp;
  fDrift = aOld.fDrift;
  fSteps = aOld.fSteps + fEnd;
}

template <bool IsOwning>
HintedList<IsOwning>* HintedList<IsOwning>::allocate(Blocks& aBlocks, std::uint32_t aCapacity) {
  return new (aBlocks.allocate(bytesFor(aCapacity))) HintedList(aCapacity);
}

template <bool IsOwning>
void HintedList<IsOwning>::makeRoom(HintedList*& aList, Blocks& aBlocks, std::uint32_t aCount) {
  if (aList == nullptr) {
    aList = allocate(aBlocks, std::max(kFirstCapacity, aCount));
  } else if (aList->fBegin > std::max(aList->fCapacity / 4, aCount)) {
    aList->closeFront();
  } else {
    HintedList* const list = allocate(aBlocks, std::max(2 * aList->fCapacity + 1, aList->fEnd + aCount));
    list->takeOver(*aList);
    destroy(std::exchange(aList, list));
  }
}
template <bool IsOwning>

void HintedList<IsOwning>::append(HintedList*& aList, Blocks& aBlocks, Element* aElement) {
  reserve(aList, aBlocks, 1);
  aList->put(aList->fEnd, aElement);
}
template <bool IsOwning>

void HintedList<IsOwning>::insert(HintedList*& aList, Blocks& aBlocks, std::uint32_t aPosition,
                                  Element* aElement) {
  reserve(aList, aBlocks, 1);
  if (aPosition == aList->fLive) return aList->put(aList->fEnd, aElement);
  aList->closeHoles();
  aList->put(aList->fBegin + aPosition, aElement);
}

// Makes way for the element and puts it there; there are no holes behind the entry.
template <bool IsOwning>
void HintedList<IsOwning>::put(std::uint32_t aEntry, Element* aElement) noexcept {
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
  setHint(aElement, aEntry);
}
template <bool IsOwning>

std::uint32_t HintedList<IsOwning>::find(Element const* aElement) noexcept {
  if (!IsOwning && !hasHints()) return scan(aElement);
  if (fDrift > kMaxDrift) renewHints();
  return searchAround(aElement, hintOf(aElement));
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
template <bool IsOwning>

ElementList::Element* HintedList<IsOwning>::before(Element const* aElement) noexcept {
  std::uint32_t entry = find(aElement);
  for (std::uint32_t const first = entry; entry > fBegin; --entry) {
    if (items()[entry - 1] != nullptr) return items()[entry - 1];
    std::uint64_t const run = first - entry;
    if (run < kLongestRun || run * run < fEnd - fBegin) continue;
    // Many were erased before it. Closing holes goes over the whole list, so the longer that is, the longer
    // are the runs of holes that are walked.
    closeHoles();
    renewHints();
    entry = find(aElement) + 1;
  }
  return nullptr;
}
template <bool IsOwning>

void HintedList<IsOwning>::restore(Element const* aPrevious, Element* aElement) noexcept {
  auto const place = [&] { return aPrevious == nullptr ? fBegin : find(aPrevious) + 1; };
  std::uint32_t entry = place();
  if (aPrevious == nullptr && fBegin > 0) {
    entry = --fBegin;
  } else if (entry == fEnd ? fEnd == fCapacity : items()[entry] != nullptr) {
    closeHoles();
    closeFront();
    return put(place(), aElement);
  } else if (entry == fEnd) {
    return put(entry, aElement);
  }
  items()[entry] = aElement;
  ++fLive;
  ++fStamp;
  setHint(aElement, entry);
}
template <bool IsOwning>

void HintedList<IsOwning>::eraseEntry(std::uint32_t aEntry) noexcept {
  Element*& entry = items()[aEntry];
  if (!IsOwning && fTable != nullptr) fTable->fEntries.take(entry);
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
    renewHints();
  }
}
template <bool IsOwning>

bool HintedList<IsOwning>::erase(Element const* aElement) noexcept {
  std::uint32_t const entry = find(aElement);
  if (entry == kNotFound) return false;
  eraseEntry(entry);
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
template <bool IsOwning>

std::uint32_t HintedList<IsOwning>::positionOf(Element const* aElement) noexcept {
  std::uint32_t entry = find(aElement);
  if (entry == kNotFound) return kNotFound;
  if (entry > fFirstHole) {
    std::uint32_t const stamp = fStamp;
    closeHoles();
    if (stamp != fStamp) entry = find(aElement);
  }
  return entry - fBegin;
}
template <bool IsOwning>

void HintedList<IsOwning>::rearrange(std::span<int const> aFrom, std::span<int const> aTo) {
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
    else if (IsOwning)
      setHint(moving[i], entry);
    else if (fTable != nullptr)
      fTable->fEntries.assign(moving[i], entry);
  }
  if (shifted) ++fDrift;
  fSteps += static_cast<std::uint32_t>(aTo.size());
  ++fStamp;
}
template <bool IsOwning>

void HintedList<IsOwning>::reorder(std::span<Element* const> aOrder) noexcept {
  closeHoles();
  std::copy(aOrder.begin(), aOrder.end(), items() + fBegin);
  renewHints();
  ++fStamp;
}

void ElementList::clear() noexcept {
  fLive = fBegin = fEnd = fDrift = 0;
  fFirstHole = kNotFound;
  fTable.reset();
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
template <bool IsOwning>

void HintedList<IsOwning>::renewHints() noexcept {
  constexpr std::uint32_t kAhead = 16;
  if (!IsOwning && fTable == nullptr) return;
  for (std::uint32_t entry = fBegin; entry < fEnd; ++entry) {
    Element* const element = items()[entry];
    if (element == nullptr) continue;
    if (!IsOwning) {
      fTable->fEntries.assign(element, entry);
    } else {
      if (entry + kAhead < fEnd) __builtin_prefetch(items()[entry + kAhead], 1);
      ElementState::hint(*element) = static_cast<std::int32_t>(entry);
    }
  }
  fSteps += fEnd - fBegin;
  fDrift = 0;
}

// A list without a table is right, only slower: so a table that finds no memory is none.
template <bool IsOwning>
bool HintedList<IsOwning>::hasHints() noexcept try {
  if (fTable != nullptr) return !fTable->fRepeats;
  if (fEnd - fBegin <= kScanned) return false;
  auto table = std::make_unique<Table>();
  table->fEntries.reserve(fLive);
  for (std::uint32_t entry = fBegin; entry < fEnd; ++entry)
    if (items()[entry] != nullptr && !table->fEntries.insert(items()[entry], entry)) table->fRepeats = true;
  fSteps += fEnd - fBegin;
  fDrift = 0;
  fTable = std::move(table);
  return !fTable->fRepeats;
} catch (std::bad_alloc const&) {
  return false;
}
template <bool IsOwning>

std::int64_t HintedList<IsOwning>::hintOf(Element const* aElement) const noexcept {
  if (IsOwning) return ElementState::hint(const_cast<Element&>(*aElement));
  std::uint32_t const entry = fTable->fEntries.find(aElement);
  return entry == PointerTable::kNotFound ? INT64_MAX / 2 : entry;
}
template <bool IsOwning>

void HintedList<IsOwning>::setHint(Element* aElement, std::uint32_t aEntry) noexcept try {
  if (IsOwning)
    ElementState::hint(*aElement) = static_cast<std::int32_t>(aEntry);
  else if (fTable != nullptr && !fTable->fRepeats && !fTable->fEntries.insert(aElement, aEntry))
    fTable->fRepeats = true;
} catch (std::bad_alloc const&) {
  fTable.reset();
}

template class HintedList<true>;
template class HintedList<false>;

}  // namespace Kelm
