#pragma once

#include <array>
#include <cstdint>
#include <iterator>

#include "kelm/Generic.h"
#include "kelm/kernel/containers/sequence/Ref.h"

namespace Kelm {

/// One pass over the values of a sequence: `for (T value : sequence.values())`. Holds a count on the sequence
/// and fetches the values in blocks; a change of the sequence in between raises at the next block.
template <class T>
class SequenceValues {
 public:
  SequenceValues(Generic::SequenceIntf const* aSequence, Deviant aDeviant)
      : fSequence(aSequence), fDeviant(aDeviant) {
    fSequence->incRef();
  }
  SequenceValues(SequenceValues const&) = delete;
  SequenceValues& operator=(SequenceValues const&) = delete;
  ~SequenceValues() { fSequence->decRef(); }

  class Cursor {
   public:
    using value_type = T;
    using difference_type = std::ptrdiff_t;

    explicit Cursor(SequenceValues& aValues) noexcept : fValues(&aValues) {}
    decltype(auto) operator*() const { return Generic::RefAccess<T>::get(fValues->fBlock[fValues->fAt]); }
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
    fStamp = 0;
    fetch();
    return Cursor(*this);
  }
  std::default_sentinel_t end() const noexcept { return {}; }

 private:
  static constexpr int kBlock = 32;

  void advance() {
    if (++fAt == fFilled && fFilled == kBlock) fetch();
  }
  void fetch() {
    fAt = fFilled = 0;
    fFilled = fSequence->readBlock(fDeviant, fIndex, kBlock, fBlock.data(), fStamp);
    fIndex += fFilled;
  }

  Generic::SequenceIntf const* fSequence;
  Deviant fDeviant;
  std::uint64_t fStamp = 0;
  int fIndex = 0;
  int fAt = 0;
  int fFilled = 0;
  std::array<Generic::Ref, kBlock> fBlock;
};

}  // namespace Kelm
