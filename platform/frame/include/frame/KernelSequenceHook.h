#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "kelm/Generic.h"
#include "kelm/kernel/containers/Ref.h"
#include "tarn/tarn.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/VeskValue.h"

namespace Kelm::mi {

/// Lets the host walk and search the kernel's sequences; what each operation promises stands with
/// vesk::SequenceHook and Kelm::Generic::SequenceIntf. A kind of sequence adds how its elements cross. Every
/// question goes to the sequence in the variant of the instance, so a live one refuses what it refuses
/// elsewhere. Hooks hold nothing of a sequence: one serves all instances of its class.
class KernelSequenceHook : public vesk::SequenceHook {
 public:
  std::size_t size(vesk::VeskInterface* aSequence) const final;
  std::size_t readBlock(vesk::VeskInterface* aSequence, std::size_t aFirst, std::size_t aCount,
                        vesk::VeskValue* aValues, std::uint64_t& aStamp) const final;
  std::size_t find(vesk::VeskInterface* aSequence, vesk::VeskValue aValue, std::size_t aFirst,
                   std::size_t aLast) const final;
  void rearrange(vesk::VeskInterface* aSequence, std::span<int const> aFrom,
                 std::span<int const> aTo) const final;
  void assign(vesk::VeskInterface* aSequence, vesk::VeskInterface* aValues) const final;
  bool isUnique(vesk::VeskInterface* aSequence) const final;
  bool isLive(vesk::VeskInterface* aSequence) const final;
  vesk::VeskValue shownObject(vesk::VeskInterface* aSequence) const final;
  bool splice(vesk::VeskInterface* aSequence, std::size_t aFirst, std::size_t aRemoved,
              vesk::VeskValue const* aValues, std::size_t aCount) const final;
  bool append(vesk::VeskInterface* aSequence, vesk::VeskValue aValue) const final;

 protected:
  /// Boxes at most a block of lent values; when one fails, none is given. Must let no foreign code run before
  /// it is done with all loans.
  virtual void box(Generic::Loan const* aLoans, std::size_t aCount, vesk::VeskValue* aValues) const = 0;
  /// Index of the first element from `aFirst` on that is the same as `aValue` to a script, or -1.
  virtual int search(Generic::SequenceIntf const& aSequence, Deviant const& aDeviant, vesk::VeskValue aValue,
                     int aFirst) const = 0;
  /// What the sequence holds for a value of a script; raises for one that is no element.
  virtual Generic::Ref element(vesk::VeskValue aValue) const = 0;
};

/// Boxes one value after another; gives them back when a later one fails. For values that travel as arrays.
template <class Box>
void boxEach(std::size_t aCount, vesk::VeskValue* aValues, Box const& aBox) {
  std::size_t done = 0;
  try {
    for (; done < aCount; ++done) aValues[done] = aBox(done);
  } catch (...) {
    while (done > 0) tarnDestroyArray(aValues[--done].array());
    throw;
  }
}

/// The hook of a kind of sequences. `Elements` tells how its elements, of type `Elements::Value`, cross:
///
/// - `name()`, their data type or class;
/// - `box(value)`, and `unbox(script's value)`, which raises for what is no element;
/// - `find(sequence, deviant, script's value, first)`, as `search` above;
/// - `boxAtOnce(loans, count, values)`, a way of its own with a block; false when it did nothing;
/// - `kIsCodeFree`, whether boxing one runs no foreign code.
template <class Elements>
class SequenceHookOf final : public KernelSequenceHook {
  using T = typename Elements::Value;
  using Access = Generic::RefAccess<T>;

 public:
  explicit SequenceHookOf(Elements aElements) noexcept : fElements(aElements) {}
  char const* elementType() const override { return fElements.name(); }
  Elements const& elements() const noexcept { return fElements; }

 protected:
  void box(Generic::Loan const* aLoans, std::size_t aCount, vesk::VeskValue* aValues) const override {
    if (fElements.boxAtOnce(aLoans, aCount, aValues)) return;
    if constexpr (Elements::kIsCodeFree) {
      boxEach(aCount, aValues, [&](std::size_t aAt) { return fElements.box(Access::get(aLoans[aAt])); });
    } else {
      // Making an instance may run anything, so all values are held before the first is boxed.
      std::array<T, kBlock> held;
      for (std::size_t i = 0; i < aCount; ++i) held[i] = Access::get(aLoans[i]);
      boxEach(aCount, aValues, [&](std::size_t aAt) { return fElements.box(held[aAt]); });
    }
  }
  int search(Generic::SequenceIntf const& aSequence, Deviant const& aDeviant, vesk::VeskValue aValue,
             int aFirst) const override {
    return fElements.find(aSequence, aDeviant, aValue, aFirst);
  }
  Generic::Ref element(vesk::VeskValue aValue) const override {
    return Access::make(fElements.unbox(aValue));
  }

 private:
  Elements fElements;
};

}  // namespace Kelm::mi
