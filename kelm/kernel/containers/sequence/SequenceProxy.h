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

/// A counted sequence: the last count deletes it. Implementations themselves are not counted.
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
  SequenceProxy() noexcept = default;
  explicit SequenceProxy(bool aIsGuarded) noexcept : fIsGuarded(aIsGuarded) {}

  /// For GenericReferenceCountingSequenceProxy; here it takes no room.
  bool const fIsGuarded = false;
  mutable std::int32_t fRefCount = 0;
};

/// Stands in front of an implementation, owns it, and hands everything on to it. A guarded one is a class
/// below, which is asked before each use: it may refuse, or make the implementation first. Each member is
/// marked for export, as a mark on the class does not reach inline members.
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
    return use(aDeviant, Use::Read).generic_at(aDeviant, aIndex);
  }
  UMLMM_API Ref generic_front(Deviant const& aDeviant) const override {
    return use(aDeviant, Use::Read).generic_front(aDeviant);
  }
  UMLMM_API Ref generic_back(Deviant const& aDeviant) const override {
    return use(aDeviant, Use::Read).generic_back(aDeviant);
  }
  UMLMM_API IteratorPtr generic_begin(Deviant const& aDeviant) const override {
    return owned(use(aDeviant, Use::Read).generic_begin(aDeviant));
  }
  UMLMM_API IteratorPtr generic_end(Deviant const& aDeviant) const override {
    return owned(use(aDeviant, Use::Read).generic_end(aDeviant));
  }
  UMLMM_API void generic_clear(Deviant const& aDeviant) override {
    use(aDeviant, Use::Change).generic_clear(aDeviant);
  }
  UMLMM_API int generic_size(Deviant const& aDeviant) const override {
    return use(aDeviant, Use::Read).generic_size(aDeviant);
  }
  UMLMM_API void generic_insert(Deviant const& aDeviant, int aIndex, Ref aValue) override {
    use(aDeviant, Use::Add).generic_insert(aDeviant, aIndex, std::move(aValue));
  }
  UMLMM_API IteratorPtr generic_insert(Deviant const& aDeviant, IteratorIntf const* aPosition,
                                       Ref aValue) override {
    return owned(use(aDeviant, Use::Add).generic_insert(aDeviant, aPosition, std::move(aValue)));
  }
  UMLMM_API IteratorPtr generic_erase(Deviant const& aDeviant, IteratorIntf const* aPosition) override {
    return owned(use(aDeviant, Use::Change).generic_erase(aDeviant, aPosition));
  }
  UMLMM_API IteratorPtr generic_erase(Deviant const& aDeviant, IteratorIntf const* aFirst,
                                      IteratorIntf const* aLast) override {
    return owned(use(aDeviant, Use::Change).generic_erase(aDeviant, aFirst, aLast));
  }
  UMLMM_API void generic_erase(Deviant const& aDeviant, int aIndex) override {
    use(aDeviant, Use::Change).generic_erase(aDeviant, aIndex);
  }
  UMLMM_API void generic_pop_back(Deviant const& aDeviant) override {
    use(aDeviant, Use::Change).generic_pop_back(aDeviant);
  }
  UMLMM_API void generic_pop_front(Deviant const& aDeviant) override {
    use(aDeviant, Use::Change).generic_pop_front(aDeviant);
  }
  UMLMM_API void generic_push_back(Deviant const& aDeviant, Ref aValue) override {
    use(aDeviant, Use::Add).generic_push_back(aDeviant, std::move(aValue));
  }
  UMLMM_API void generic_push_front(Deviant const& aDeviant, Ref aValue) override {
    use(aDeviant, Use::Add).generic_push_front(aDeviant, std::move(aValue));
  }
  UMLMM_API void generic_replace(Deviant const& aDeviant, int aIndex, Ref aValue) override {
    use(aDeviant, Use::Change).generic_replace(aDeviant, aIndex, std::move(aValue));
  }
  UMLMM_API bool generic_contains(Deviant const& aDeviant, Ref aValue) const override {
    return use(aDeviant, Use::Read).generic_contains(aDeviant, std::move(aValue));
  }
  UMLMM_API char const* generic_getVeskName(bool aImmutable, bool aImmutableElements,
                                            char const* aName) const override {
    return target().generic_getVeskName(aImmutable, aImmutableElements, aName);
  }
  UMLMM_API int generic_removeAll(Deviant const& aDeviant, Ref aValue) override {
    return use(aDeviant, Use::Change).generic_removeAll(aDeviant, std::move(aValue));
  }
  std::uint64_t stamp(Deviant const& aDeviant) const override {
    return use(aDeviant, Use::Read).stamp(aDeviant);
  }
  int readBlock(Deviant const& aDeviant, int aIndex, int aCount, Generic::Loan* aOut) const override {
    return use(aDeviant, Use::Read).readBlock(aDeviant, aIndex, aCount, aOut);
  }
  int indexOf(Deviant const& aDeviant, Ref const& aValue, int aFrom) const override {
    return use(aDeviant, Use::Read).indexOf(aDeviant, aValue, aFrom);
  }
  void generic_rearrange(Deviant const& aDeviant, std::span<int const> aFrom,
                         std::span<int const> aTo) override {
    use(aDeviant, Use::Change).generic_rearrange(aDeviant, aFrom, aTo);
  }
  bool isUnique() const override { return target().isUnique(); }
  bool splice(Deviant const& aDeviant, int aFirst, int aRemoved, std::vector<Ref> const& aValues) override {
    return use(aDeviant, Use::Change).splice(aDeviant, aFirst, aRemoved, aValues);
  }
  std::type_info const& valueType() const override { return target().valueType(); }

 protected:
  /// What a caller is about to do.
  enum class Use : std::uint8_t { Read, Change, Add };

  struct Guarded {};
  /// Without an implementation, `guard` makes one when it is first needed.
  GenericReferenceCountingSequenceProxy(Guarded, Generic::SequenceIntf* aTarget = nullptr) noexcept
      : SequenceProxy(true), fTarget(aTarget) {}

  /// Comes before each use of a guarded proxy's implementation; raises to refuse.
  virtual void guard(Deviant const&, Use) const {}
  /// Takes over what `guard` made.
  void setTarget(Generic::SequenceIntf* aTarget) const noexcept { fTarget = aTarget; }

  bool hasTarget() const noexcept { return fTarget != nullptr; }
  /// The implementation, past the guard but for one that is to be made yet.
  Generic::SequenceIntf& target() const {
    if (fTarget == nullptr) [[unlikely]]
      guard(Deviant(), Use::Read);
    return *fTarget;
  }
  /// The iterator with a count on this proxy, so that it cannot outlive what it walks.
  IteratorPtr owned(IteratorPtr aIterator) const {
    keepOwner(aIterator.get(), this);
    return aIterator;
  }

 private:
  Generic::SequenceIntf& use(Deviant const& aDeviant, Use aUse) const {
    if (fIsGuarded) guard(aDeviant, aUse);
    return *fTarget;
  }

  mutable Generic::SequenceIntf* fTarget;
};

}  // namespace Kelm
