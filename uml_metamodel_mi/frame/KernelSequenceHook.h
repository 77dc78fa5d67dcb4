#pragma once

#include <cstddef>
#include <cstdint>

#include "kelm/Generic.h"
#include "tarn/tarn.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/VeskValue.h"

namespace Kelm::mi {

/// Lets the host walk and search the kernel's sequences. A kind of sequence adds how its elements cross.
/// Every question goes to the sequence in the variant of the instance, so a live one refuses what it refuses
/// elsewhere.
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
  bool splice(vesk::VeskInterface* aSequence, std::size_t aFirst, std::size_t aRemoved,
              vesk::VeskValue const* aValues, std::size_t aCount) const final;

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

}  // namespace Kelm::mi
