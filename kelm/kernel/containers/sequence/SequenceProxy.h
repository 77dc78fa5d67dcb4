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
/// count the proxy. Each member is marked for export, as a mark on the class does not reach inline members.
class UMLMM_API GenericReferenceCountingSequenceProxy : public SequenceProxy {
  using Ref = Generic::Ref;
  using IteratorIntf = Generic::IteratorIntf;
  using IteratorPtr = Generic::IteratorPtr;

 public:
  /// Takes over `aTarget`; never null.
  explicit GenericReferenceCountingSequenceProxy(Generic::SequenceIntf* aTarget) noexcept
      : fTarget(aTarget) {}
  UMLMM_API ~GenericReferenceCountingSequenceProxy() override { delete fTarget; }

  UMLMM_API Ref generic_at(Deviant const& aDeviant, int aIndex) const override {
    return target().generic_at(aDeviant, aIndex);
  }
  UMLMM_API Ref generic_front(Deviant const& aDeviant) const override {
    return target().generic_front(aDeviant);
  }
  UMLMM_API Ref generic_back(Deviant const& aDeviant) const override {
    return target().generic_back(aDeviant);
  }
  UMLMM_API IteratorPtr generic_begin(Deviant const& aDeviant) const override {
    return owned(target().generic_begin(aDeviant));
  }
  UMLMM_API IteratorPtr generic_end(Deviant const& aDeviant) const override {
    return owned(target().generic_end(aDeviant));
  }
  UMLMM_API void generic_clear(Deviant const& aDeviant) override { target().generic_clear(aDeviant); }
  UMLMM_API int generic_size(Deviant const& aDeviant) const override {
    return target().generic_size(aDeviant);
  }
  UMLMM_API void generic_insert(Deviant const& aDeviant, int aIndex, Ref aValue) override {
    target().generic_insert(aDeviant, aIndex, std::move(aValue));
  }
  UMLMM_API IteratorPtr generic_insert(Deviant const& aDeviant, IteratorIntf const* aPosition,
                                       Ref aValue) override {
    return owned(target().generic_insert(aDeviant, aPosition, std::move(aValue)));
  }
  UMLMM_API IteratorPtr generic_erase(Deviant const& aDeviant, IteratorIntf const* aPosition) override {
    return owned(target().generic_erase(aDeviant, aPosition));
  }
  UMLMM_API IteratorPtr generic_erase(Deviant const& aDeviant, IteratorIntf const* aFirst,
                                      IteratorIntf const* aLast) override {
    return owned(target().generic_erase(aDeviant, aFirst, aLast));
  }
  UMLMM_API void generic_erase(Deviant const& aDeviant, int aIndex) override {
    target().generic_erase(aDeviant, aIndex);
  }
  UMLMM_API void generic_pop_back(Deviant const& aDeviant) override { target().generic_pop_back(aDeviant); }
  UMLMM_API void generic_pop_front(Deviant const& aDeviant) override { target().generic_pop_front(aDeviant); }
  UMLMM_API void generic_push_back(Deviant const& aDeviant, Ref aValue) override {
    target().generic_push_back(aDeviant, std::move(aValue));
  }
  UMLMM_API void generic_push_front(Deviant const& aDeviant, Ref aValue) override {
    target().generic_push_front(aDeviant, std::move(aValue));
  }
  UMLMM_API void generic_replace(Deviant const& aDeviant, int aIndex, Ref aValue) override {
    target().generic_replace(aDeviant, aIndex, std::move(aValue));
  }
  UMLMM_API bool generic_contains(Deviant const& aDeviant, Ref aValue) const override {
    return target().generic_contains(aDeviant, std::move(aValue));
  }
  UMLMM_API char const* generic_getVeskName(bool aImmutable, bool aImmutableElements,
                                            char const* aName) const override {
    return target().generic_getVeskName(aImmutable, aImmutableElements, aName);
  }
  UMLMM_API int generic_removeAll(Deviant const& aDeviant, Ref aValue) override {
    return target().generic_removeAll(aDeviant, std::move(aValue));
  }
  std::uint64_t stamp(Deviant const& aDeviant) const override { return target().stamp(aDeviant); }
  int readBlock(Deviant const& aDeviant, int aIndex, int aCount, Generic::Loan* aOut) const override {
    return target().readBlock(aDeviant, aIndex, aCount, aOut);
  }
  int indexOf(Deviant const& aDeviant, Ref const& aValue, int aFrom) const override {
    return target().indexOf(aDeviant, aValue, aFrom);
  }
  void generic_rearrange(Deviant const& aDeviant, std::span<int const> aFrom,
                         std::span<int const> aTo) override {
    target().generic_rearrange(aDeviant, aFrom, aTo);
  }
  bool isUnique() const override { return target().isUnique(); }
  bool splice(Deviant const& aDeviant, int aFirst, int aRemoved, std::vector<Ref> const& aValues) override {
    return target().splice(aDeviant, aFirst, aRemoved, aValues);
  }
  std::type_info const& valueType() const override { return target().valueType(); }

 protected:
  /// Stands in front of the other implementation from now on; iterators of the old one stay with it.
  void swapTarget(std::unique_ptr<Generic::SequenceIntf>& aOther) noexcept {
    Generic::SequenceIntf* const old = fTarget;
    fTarget = aOther.release();
    aOther.reset(old);
  }
  /// One whose implementation is made when it is first needed, by `makeTarget`.
  GenericReferenceCountingSequenceProxy() noexcept = default;
  virtual std::unique_ptr<Generic::SequenceIntf> makeTarget() const { return nullptr; }
  bool hasTarget() const noexcept { return fTarget != nullptr; }

  Generic::SequenceIntf& target() const {
    if (fTarget == nullptr) [[unlikely]]
      fTarget = makeTarget().release();
    return *fTarget;
  }
  /// The iterator with a count on this proxy, so that it cannot outlive what it walks.
  IteratorPtr owned(IteratorPtr aIterator) const {
    keepOwner(aIterator.get(), this);
    return aIterator;
  }

 private:
  mutable Generic::SequenceIntf* fTarget = nullptr;
};

}  // namespace Kelm
