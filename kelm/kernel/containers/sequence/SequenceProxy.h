#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "kelm/Asserter.h"
#include "kelm/Generic.h"
#include "kelm/kernel/containers/iterator/IteratorProxy.h"
#include "kelm/kernel/containers/sources.h"

namespace Kelm {

/// A counted sequence: it begins without a count, and the last one given back deletes it. Implementations
/// themselves are not counted. Counts are plain: the sequence stays on one thread at a time.
class UMLMM_API SequenceProxy : public Generic::SequenceIntf {
 public:
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

 protected:
  mutable std::int32_t fRefCount = 0;
};

/// Stands in front of an implementation, owns it, and hands everything on to it; iterators that it gives
/// count the proxy.
class UMLMM_API GenericReferenceCountingSequenceProxy : public SequenceProxy {
 public:
  /// Takes over `aTarget`; never null.
  explicit GenericReferenceCountingSequenceProxy(Generic::SequenceIntf* aTarget) noexcept
      : fTarget(aTarget) {}
  UMLMM_API ~GenericReferenceCountingSequenceProxy() override { delete fTarget; }

#include "kelm/kernel/containers/sequence/handedOn.inc"
  bool splice(Deviant const& aDeviant, int aFirst, int aRemoved,
              std::vector<Generic::Ref> const& aValues) override {
    return target().splice(aDeviant, aFirst, aRemoved, aValues);
  }

 protected:
  /// One whose implementation is made when it is first needed, by `makeTarget`.
  GenericReferenceCountingSequenceProxy() noexcept = default;
  virtual std::unique_ptr<Generic::SequenceIntf> makeTarget() const { return nullptr; }
  bool hasTarget() const noexcept { return fTarget != nullptr; }

  Generic::SequenceIntf& target() const {
    if (fTarget == nullptr) [[unlikely]]
      fTarget = makeTarget().release();
    return *fTarget;
  }

 private:
  Generic::SequenceIntf const* reading(Deviant const&) const { return &target(); }
  Generic::SequenceIntf* changing(Deviant const&) { return &target(); }
  Generic::SequenceIntf* adding(Deviant const&) { return &target(); }
  Generic::IteratorPtr owned(Generic::IteratorPtr aIterator) const {
    keepOwner(aIterator.get(), this);
    return aIterator;
  }

  mutable Generic::SequenceIntf* fTarget = nullptr;
};

}  // namespace Kelm
