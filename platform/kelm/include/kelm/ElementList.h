#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "kelm/blocks.h"
#include "kelm/fwd.h"
#include "lum/visibility.h"

namespace Kelm {

/// The elements of one many-valued feature, in stable order, in one block of memory.
///
/// An erase by element leaves a hole (null) that iteration skips, so that it costs the same in a long list as
/// in a short one; the holes are closed when a quarter are holes or when a position is asked for. Where an
/// element stands is remembered as a hint: in the element itself for the list that owns it, in a table beside
/// the list for other long lists. A lookup starts at the hint and goes outwards, as closing holes and
/// inserting in the middle shift entries by little; after many shifts the hints are renewed.
///
/// Lists own no counts: who holds what is the engine's affair. A null ElementList* is an empty list.
class UMLMM_API ElementList {
 public:
  using Element = NSInterface::ModelElementIntf;
  static constexpr std::uint32_t kNotFound = UINT32_MAX;

  /// `aBlocks`: of the elements' model. `aOwning`: the hints stand in the elements.
  static void append(ElementList*& aList, Blocks& aBlocks, Element* aElement, bool aOwning);
  /// Puts the element before position `aPosition` (0-based among the elements; at most size).
  static void insert(ElementList*& aList, Blocks& aBlocks, std::uint32_t aPosition, Element* aElement,
                     bool aOwning);
  /// Makes room for more elements, so that as many appends or inserts can't fail.
  static void reserve(ElementList*& aList, Blocks& aBlocks, std::uint32_t aCount) {
    if (aList == nullptr || aList->fCapacity - aList->fEnd < aCount) [[unlikely]]
      makeRoom(aList, aBlocks, aCount);
  }
  static void destroy(ElementList* aList) noexcept;
  static std::uint32_t size(ElementList const* aList) noexcept { return aList ? aList->fLive : 0; }

  std::uint32_t size() const noexcept { return fLive; }
  /// Entry number of the element (of its first occurrence, in lists that take one twice), or kNotFound.
  /// Entries are counted with the holes; the numbers hold until the next change or question for a position.
  std::uint32_t find(Element const* aElement, bool aOwning) noexcept;
  bool contains(Element const* aElement, bool aOwning) noexcept {
    return find(aElement, aOwning) != kNotFound;
  }
  /// The element before one of the list, or null before the first: where `restore` finds its place.
  Element* before(Element const* aElement, bool aOwning) noexcept;
  /// Puts an element back that was erased; needs no memory as long as nothing else came instead.
  void restore(Element const* aPrevious, Element* aElement, bool aOwning) noexcept;
  /// Removes the entry at an answer of `find`.
  void eraseEntry(std::uint32_t aEntry, bool aOwning) noexcept;
  bool erase(Element const* aElement, bool aOwning) noexcept;
  /// The element at a position; closes the holes.
  Element* at(std::uint32_t aPosition);
  /// Position of an answer of `find` among the elements; closes the holes.
  std::uint32_t positionOf(Element const* aElement, bool aOwning);
  /// The element at position `aFrom[i]` comes to `aTo[i]`; both name the same positions, each once.
  void rearrange(std::span<int const> aFrom, std::span<int const> aTo, bool aOwning);
  /// Puts the elements into the order given, which must hold each of them once.
  void reorder(std::span<Element* const> aOrder, bool aOwning) noexcept;
  /// Takes all out; memory and proxy stay.
  void clear() noexcept;

  /// All entries; null ones are holes.
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

 private:
  struct Hints;

  explicit ElementList(std::uint32_t aCapacity) noexcept;
  ~ElementList();
  static std::size_t bytesFor(std::uint32_t aCapacity) noexcept;
  static ElementList* allocate(Blocks& aBlocks, std::uint32_t aCapacity);
  static ElementList* grown(ElementList* aList, Blocks& aBlocks, std::uint32_t aCapacity);
  static void makeRoom(ElementList*& aList, Blocks& aBlocks, std::uint32_t aCount);
  void put(std::uint32_t aEntry, Element* aElement, bool aOwning) noexcept;
  void closeHoles() noexcept;
  void closeFront() noexcept;
  void renewHints(bool aOwning) noexcept;
  bool hasHints() noexcept;
  std::int64_t hintOf(Element const* aElement, bool aOwning) const noexcept;
  void setHint(Element* aElement, std::uint32_t aEntry, bool aOwning) noexcept;
  std::uint32_t scan(Element const* aElement) const noexcept;
  std::uint32_t searchAround(Element const* aElement, std::int64_t aHint) const noexcept;
  std::uint32_t holes() const noexcept { return fEnd - fBegin - fLive; }
  Element** items() noexcept { return reinterpret_cast<Element**>(this + 1); }
  Element* const* items() const noexcept { return reinterpret_cast<Element* const*>(this + 1); }

  std::unique_ptr<Hints> fHints;
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

}  // namespace Kelm
