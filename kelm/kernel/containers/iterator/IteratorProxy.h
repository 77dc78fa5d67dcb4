#pragma once

#include <cstddef>
#include <cstdint>

#include "kelm/Asserter.h"
#include "kelm/Generic.h"
#include "kelm/kernel/containers/SmallBlocks.h"
#include "kelm/kernel/containers/sources.h"

namespace Kelm {

/// Base of all iterators: counted from 0, deleted with the last count, and safe to keep. An iterator holds a
/// count on the sequence that gave it, if that is a counted one. Counts are plain: it stays on the thread of
/// its sequence.
class UMLMM_API IteratorProxy : public Generic::IteratorIntf {
  static constexpr std::size_t kSmall = 80;
  using Blocks = detail::BlocksFor<kSmall>;

 public:
  static void* operator new(std::size_t aSize) {
    return aSize <= kSmall ? Blocks::take() : ::operator new(aSize);
  }
  static void operator delete(void* aMemory, std::size_t aSize) noexcept {
    if (aSize <= kSmall) return Blocks::give(aMemory);
    ::operator delete(aMemory);
  }

  int incRef() const override {
    if (fRefCount < 0) raiseFailure(words::kInternalAssertion, sources::kSequenceProxy);
    return ++fRefCount;
  }
  int decRef() const override {
    int const count = --fRefCount;
    if (count < 0) raiseFailure(words::kInternalAssertion, sources::kSequenceProxy);
    if (count == 0) delete this;
    return count;
  }
  int numRef() const override { return fRefCount; }
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override {
    auto const& own = tagPair<IteratorProxy, VisitationDomain>();
    if (aClassInfo.fType == own.fType && aClassInfo.fDomain == own.fDomain) {
      return const_cast<IteratorProxy*>(this);
    }
    return IteratorIntf::cast(aClassInfo);
  }

  /// Keeps `aSequence`, which must be a counted one, alive as long as this iterator and its clones. The first
  /// owner stays.
  void setOwner(Generic::SequenceIntf const* aSequence) {
    if (fOwner != nullptr) return;
    aSequence->incRef();
    fOwner = aSequence;
  }
  Generic::SequenceIntf const* owner() const noexcept { return fOwner; }

 protected:
  IteratorProxy() noexcept = default;
  /// For `clone`: the same owner with a count of its own, and no handle.
  IteratorProxy(IteratorProxy const& aOther) : IteratorIntf() {
    if (aOther.fOwner != nullptr) setOwner(aOther.fOwner);
  }
  // A count that breaks here has no one to report to: the process ends.
  ~IteratorProxy() override {
    if (fOwner != nullptr) fOwner->decRef();
  }

  mutable std::int32_t fRefCount = 0;
  Generic::SequenceIntf const* fOwner = nullptr;
};

/// Gives the fresh iterator a count on the sequence, if that is a counted one at present.
inline void keepOwner(Generic::IteratorIntf const* aIterator, Generic::SequenceIntf const* aSequence) {
  if (aSequence->numRef() <= 0) return;
  if (auto* const iterator = queryInterface<IteratorProxy>(aIterator)) iterator->setOwner(aSequence);
}

}  // namespace Kelm
