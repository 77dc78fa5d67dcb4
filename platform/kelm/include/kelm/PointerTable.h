#pragma once

#include <bit>
#include <cstdint>
#include <utility>
#include <vector>

namespace Kelm {

/// A table from pointers to small numbers: open addressing without gaps, so that erasing leaves no traces. At
/// most half full, so each question takes constant time. `reserve` with any number comes before all but
/// `insert`; null is no pointer of it.
class PointerTable {
 public:
  static constexpr std::uint32_t kNotFound = UINT32_MAX;

  /// Makes room for `aCount` pointers; as many inserts can't fail then. Nothing has changed if it raises.
  void reserve(std::uint32_t aCount) {
    std::size_t const wanted = std::bit_ceil(std::size_t{aCount} * 2 + 2);
    if (wanted <= fSlots.size()) return;
    std::vector<Slot> const old = std::exchange(fSlots, std::vector<Slot>(wanted));
    fShift = 64 - std::countr_zero(wanted);
    for (Slot const& slot : old)
      if (slot.fPointer != nullptr) fSlots[place(slot.fPointer)] = slot;
  }

  /// Answers false and changes nothing if the pointer is known.
  bool insert(void const* aPointer, std::uint32_t aNumber) {
    reserve(fCount + 1);
    Slot& slot = fSlots[place(aPointer)];
    if (slot.fPointer != nullptr) return false;
    slot = {aPointer, aNumber};
    ++fCount;
    return true;
  }

  /// Changes the number of a known pointer.
  void assign(void const* aPointer, std::uint32_t aNumber) noexcept {
    Slot& slot = fSlots[place(aPointer)];
    if (slot.fPointer != nullptr) slot.fNumber = aNumber;
  }

  std::uint32_t find(void const* aPointer) const noexcept {
    Slot const& slot = fSlots[place(aPointer)];
    return slot.fPointer == nullptr ? kNotFound : slot.fNumber;
  }

  /// Erases the pointer and answers its number, if it is known.
  std::uint32_t take(void const* aPointer) noexcept {
    std::size_t hole = place(aPointer);
    if (fSlots[hole].fPointer == nullptr) return kNotFound;
    std::uint32_t const number = fSlots[hole].fNumber;
    --fCount;
    // Slots behind the hole move up unless that would put them before their home.
    for (std::size_t next = after(hole); fSlots[next].fPointer != nullptr; next = after(next)) {
      std::size_t const fromHome = (next - home(fSlots[next].fPointer)) & mask();
      if (fromHome < ((next - hole) & mask())) continue;
      fSlots[hole] = fSlots[next];
      hole = next;
    }
    fSlots[hole] = {};
    return number;
  }

 private:
  struct Slot {
    void const* fPointer = nullptr;
    std::uint32_t fNumber = 0;
  };

  std::size_t mask() const noexcept { return fSlots.size() - 1; }
  std::size_t after(std::size_t aSlot) const noexcept { return (aSlot + 1) & mask(); }
  std::size_t home(void const* aPointer) const noexcept {
    return (reinterpret_cast<std::uintptr_t>(aPointer) * 0x9E3779B97F4A7C15u) >> fShift;
  }
  /// The slot of the pointer, or the free one where it would go.
  std::size_t place(void const* aPointer) const noexcept {
    std::size_t slot = home(aPointer);
    while (fSlots[slot].fPointer != nullptr && fSlots[slot].fPointer != aPointer) slot = after(slot);
    return slot;
  }

  std::vector<Slot> fSlots;
  std::uint32_t fCount = 0;
  int fShift = 0;
};

}  // namespace Kelm
