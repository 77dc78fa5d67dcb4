#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>

#include "kelm/Asserter.h"
#include "kelm/Generic.h"
#include "kelm/kernel/containers/Ref.h"
#include "kelm/kernel/containers/sources.h"

namespace Kelm {

/// One pass over the values of a sequence: `for (T const& value : sequence.values())`. Holds a count on the
/// sequence and copies the values in blocks of 32. A change of the sequence on the way raises "sequence index
/// out of bounds" at the next block, if there is one: a pass that got through may have read values that are
/// gone.
template <class T>
class SequenceValues {
 public:
  SequenceValues(Generic::SequenceIntf const* aSequence, Deviant aDeviant)
      : fSequence(aSequence), fDeviant(aDeviant) {
    fSequence->incRef();
  }
  SequenceValues(SequenceValues const&) = delete;
  SequenceValues& operator=(SequenceValues const&) = delete;
  ~SequenceValues() {
    drop();
    fSequence->decRef();
  }

  class Cursor {
   public:
    using value_type = T;
    using difference_type = std::ptrdiff_t;

    explicit Cursor(SequenceValues& aValues) noexcept : fValues(&aValues) {}
    /// Good until the cursor moves on.
    T const& operator*() const noexcept { return fValues->block()[fValues->fAt]; }
    Cursor& operator++() {
      fValues->advance();
      return *this;
    }
    void operator++(int) { fValues->advance(); }
    bool operator==(std::default_sentinel_t) const noexcept { return fValues->fAt == fValues->fFilled; }

   private:
    SequenceValues* fValues;
  };

  /// Starts the pass, from the first value.
  Cursor begin() {
    fIndex = 0;
    fStamp = fSequence->stamp(fDeviant);
    fetch();
    return Cursor(*this);
  }
  std::default_sentinel_t end() const noexcept { return {}; }

 private:
  static constexpr int kBlock = 32;

  T* block() noexcept { return std::launder(reinterpret_cast<T*>(fBlock)); }
  void drop() noexcept {
    std::destroy_n(block(), fFilled);
    fAt = fFilled = 0;
  }
  void advance() {
    if (++fAt != fFilled || fFilled < kBlock) return;
    if (fStamp != fSequence->stamp(fDeviant)) raiseFailure(words::kIndexOutOfBounds, sources::kSequenceRef);
    fetch();
  }
  void fetch() {
    drop();
    std::array<Generic::Loan, kBlock> loans;
    int const read = fSequence->readBlock(fDeviant, fIndex, kBlock, loans.data());
    for (; fFilled < read; ++fFilled)
      ::new (fBlock + fFilled * sizeof(T))
          T(Generic::RefAccess<T>::get(loans[static_cast<std::size_t>(fFilled)]));
    fIndex += read;
  }

  Generic::SequenceIntf const* fSequence;
  Deviant fDeviant;
  std::uint64_t fStamp = 0;
  int fIndex = 0;
  int fAt = 0;
  int fFilled = 0;
  /// Room for a block of values, the first fFilled of which exist.
  alignas(T) std::byte fBlock[kBlock * sizeof(T)];
};

}  // namespace Kelm
