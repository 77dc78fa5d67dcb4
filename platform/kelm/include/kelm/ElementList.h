#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "kelm/blocks.h"
#include "kelm/fwd.h"
#include "lum/visibility.h"

namespace Kelm {

/// The elements of one many-valued feature, in stable order, in one block of memory: what can be read of them
/// without knowing who they belong to. A list is either a `PartList` or a `ReferenceList`.
///
/// An erase by element leaves a hole (null) that iteration skips, so that it costs the same in a long list as
/// in a short one; the holes are closed when a quarter are holes or when a position is asked for.
///
/// Lists own no counts: who holds what is the engine's affair. A null pointer is an empty list.
class UMLMM_API ElementList {
 public:
  using Element = NSInterface::ModelElementIntf;
  static constexpr std::uint32_t kNotFound = UINT32_MAX;

  /// Gives the memory back, and the proxy with it; null is allowed.
  static void destroy(ElementList* aList) noexcept;
  static std::uint32_t size(ElementList const* aList) noexcept { return aList ? aList->fLive : 0; }

  std::uint32_t size() const noexcept { return fLive; }
  /// The element at a position, from 0, which must be there. Closes the holes if one stands before it: linear
  /// after erases, constant otherwise.
  Element* at(std::uint32_t aPosition);
  /// Takes all out; memory and proxy stay.
  void clear() noexcept;

  /// All entries; null ones are holes. Valid until the next change or question for a position: an erase may
  /// close holes too, which moves what stands behind them towards the front.
  Element* const* begin() const noexcept { return items() + fBegin; }
  Element* const* end() const noexcept { return items() + fEnd; }
  /// The elements without holes, valid until the next change.
  std::span<Element* const> dense() noexcept;
  /// Counts what moves entries, closing of holes included, for iterators.
  std::uint32_t stamp() const noexcept { return fStamp; }

  /// Entries looked at or moved so far, for the check of costs.
  std::uint32_t steps() const noexcept { return fSteps; }

  /// The live sequence that shows the list, once somebody asked for it; deleted with the list.
  Generic::SequenceIntf* fProxy = nullptr;

 protected:
  struct Table;

  explicit ElementList(std::uint32_t aCapacity) noexcept;
  ~ElementList();
  static std::size_t bytesFor(std::uint32_t aCapacity) noexcept;
  void takeOver(ElementList& aOld) noexcept;
  void closeHoles() noexcept;
  void closeFront() noexcept;
  std::uint32_t scan(Element const* aElement) const noexcept;
  std::uint32_t searchAround(Element const* aElement, std::int64_t aHint) const noexcept;
  std::uint32_t holes() const noexcept { return fEnd - fBegin - fLive; }
  Element** items() noexcept { return reinterpret_cast<Element**>(this + 1); }
  Element* const* items() const noexcept { return reinterpret_cast<Element* const*>(this + 1); }

  /// Hints of a list that refers.
  std::unique_ptr<Table> fTable;
  std::uint32_t fCapacity;
  /// No hole lies before it.
  std::uint32_t fFirstHole = kNotFound;
  std::uint32_t fStamp = 0;
  /// Upper bound of how far an entry can stand from its hint.
  std::uint32_t fDrift = 0;
  std::uint32_t fLive = 0;
  mutable std::uint32_t fSteps = 0;
  // What every walk reads lies beside the first entries.
  /// Entries before it are holes that were trimmed off, so that a list can be emptied from the front.
  std::uint32_t fBegin = 0;
  std::uint32_t fEnd = 0;
};

/// A list that can be searched and changed. Where an element stands is remembered as a hint: in the element
/// itself for the one list that owns it, in a table beside other long lists. A lookup starts at the hint and
/// goes outwards, as closing holes and inserting in the middle shift entries by little; after many shifts the
/// hints are renewed.
template <bool IsOwning>
class UMLMM_API HintedList final : public ElementList {
 public:
  /// `aBlocks`: of the elements' model.
  static void append(HintedList*& aList, Blocks& aBlocks, Element* aElement);
  /// Puts the element before position `aPosition` (0-based among the elements; at most size).
  static void insert(HintedList*& aList, Blocks& aBlocks, std::uint32_t aPosition, Element* aElement);
  /// Makes room for more elements, so that as many appends or inserts can't fail.
  static void reserve(HintedList*& aList, Blocks& aBlocks, std::uint32_t aCount) {
    if (aList == nullptr || aList->fCapacity - aList->fEnd < aCount) [[unlikely]]
      makeRoom(aList, aBlocks, aCount);
  }

  /// Entry number of the element (of its first occurrence, in lists that take one twice), or kNotFound.
  /// Entries are counted with the holes; the numbers hold until the next change or question for a position.
  std::uint32_t find(Element const* aElement) noexcept;
  bool contains(Element const* aElement) noexcept { return find(aElement) != kNotFound; }
  /// Position of an element, or kNotFound; closes the holes.
  std::uint32_t positionOf(Element const* aElement) noexcept;
  /// Removes the entry at an answer of `find`.
  void eraseEntry(std::uint32_t aEntry) noexcept;
  bool erase(Element const* aElement) noexcept;
  /// The element before one of the list, or null before the first: where `restore` finds its place.
  Element* before(Element const* aElement) noexcept;
  /// Puts an element back that was erased; needs no memory as long as nothing else came instead.
  void restore(Element const* aPrevious, Element* aElement) noexcept;
  /// The element at position `aFrom[i]` comes to `aTo[i]`; both name the same positions, each once.
  void rearrange(std::span<int const> aFrom, std::span<int const> aTo);
  /// Puts the elements into the order given, which must hold each of them once.
  void reorder(std::span<Element* const> aOrder) noexcept;

 private:
  using ElementList::ElementList;

  static HintedList* allocate(Blocks& aBlocks, std::uint32_t aCapacity);
  static void makeRoom(HintedList*& aList, Blocks& aBlocks, std::uint32_t aCount);
  void put(std::uint32_t aEntry, Element* aElement) noexcept;
  void renewHints() noexcept;
  bool hasHints() noexcept;
  std::int64_t hintOf(Element const* aElement) const noexcept;
  void setHint(Element* aElement, std::uint32_t aEntry) noexcept;
};

extern template class HintedList<true>;
extern template class HintedList<false>;

/// Owns its elements: each is in one such list at most.
using PartList = HintedList<true>;
/// Refers to its elements.
using ReferenceList = HintedList<false>;

}  // namespace Kelm
