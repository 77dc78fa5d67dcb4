#pragma once

#include <utility>

#include "kelm/DeviantRegistry.h"
#include "kelm/Generic.h"
#include "kelm/kernel/containers/Ref.h"
#include "kelm/kernel/containers/iterator/IteratorProxy.h"
#include "kelm/kernel/containers/sources.h"

namespace Kelm {

/// What all typed iterator handles share: one counted iterator, or null, and the deviant of the sequence that
/// made it. Copying clones the iterator, which takes memory, so that two handles never move each other. What
/// asks for the position raises the null-reference failure on a null handle.
class IteratorRef {
 public:
  IteratorRef() noexcept = default;
  /// Counts `aImpl`, which may be null, and moves it together with whoever else holds it.
  IteratorRef(Generic::IteratorIntf* aImpl, Deviant aDeviant) : fImpl(aImpl), fDeviant(aDeviant) {
    if (fImpl != nullptr) fImpl->incRef();
  }
  IteratorRef(Generic::IteratorPtr aImpl, Deviant aDeviant) : IteratorRef(aImpl.get(), aDeviant) {
    static_cast<void>(aImpl.release());
  }
  IteratorRef(IteratorRef const& aOther)
      : IteratorRef(aOther.fImpl == nullptr ? Generic::IteratorPtr() : aOther.fImpl->clone(),
                    aOther.fDeviant) {}
  IteratorRef(IteratorRef&& aOther) noexcept
      : fImpl(std::exchange(aOther.fImpl, nullptr)), fDeviant(aOther.fDeviant) {}
  IteratorRef& operator=(IteratorRef aOther) noexcept {
    std::swap(fImpl, aOther.fImpl);
    fDeviant = aOther.fDeviant;
    return *this;
  }
  // A count that breaks here has no one to report to: the process ends.
  ~IteratorRef() {
    if (fImpl != nullptr) fImpl->decRef();
  }

  Generic::IteratorIntf* get() const noexcept { return fImpl; }
  bool isNull() const noexcept { return fImpl == nullptr; }
  Deviant const& getDeviant() const noexcept { return fDeviant; }
  void setDeviant(Deviant const& aDeviant) noexcept { fDeviant = aDeviant; }

  /// Moves past the current value; raises at the end, and when the value has gone.
  void next() const { checked()->next(fDeviant); }
  /// Moves back by one value; raises at the beginning, and when the value has gone.
  void previous() const { checked()->previous(fDeviant); }

  /// The same position of the same sequence; deviants take no part. Raises for a null handle on the left; one
  /// on the right is equal to none.
  friend bool operator==(IteratorRef const& aLeft, IteratorRef const& aRight) {
    return aLeft.checked()->equal(aRight.fImpl);
  }

 protected:
  Generic::IteratorIntf* checked() const {
    if (fImpl == nullptr) [[unlikely]]
      raiseNullReference(sources::kIterator);
    return fImpl;
  }
  /// The id under which a host binds the iterator; its own only, as copies are iterators of their own.
  void* id(bool aIsImmutable) const {
    auto* const object = queryInterface<ReferenceCountingIntf>(checked());
    return DeviantRegistry::getId(object, fDeviant, aIsImmutable);
  }
  /// Makes `aHandle` adopt a count that the caller took.
  template <class Handle>
  static Handle adopted(Generic::IteratorIntf* aImpl, Deviant aDeviant) {
    Handle handle;
    handle.fImpl = aImpl;
    handle.fDeviant = aDeviant;
    return handle;
  }

  Generic::IteratorIntf* fImpl = nullptr;
  Deviant fDeviant;
};

/// Typed iterator over a sequence that the holder can't change.
template <class T>
class ImmutableIterator : public IteratorRef {
 public:
  using Value = T;
  using IteratorRef::IteratorRef;

  /// Takes over one count that the caller holds, and with it the iterator: no clone is made.
  static ImmutableIterator adopt(Generic::IteratorIntf* aImpl, Deviant aDeviant) {
    return adopted<ImmutableIterator>(aImpl, aDeviant);
  }
  /// The current value, copied; raises at the end and when the value has gone.
  T current() const { return Generic::RefAccess<T>::get(checked()->current(fDeviant)); }
  /// What a range-for over a sequence asks for. It allows changes on the way, and costs more than one over
  /// the sequence's `values()`.
  T operator*() const { return current(); }
  ImmutableIterator& operator++() {
    next();
    return *this;
  }
  /// The id under which a host binds the iterator; raises for a null handle.
  void* getId() const { return id(true); }
};

/// Typed iterator over a sequence that can be changed at it, by giving it to the sequence's `insert` and
/// `erase`. It moves along with its value when the sequence changes elsewhere.
template <class T>
class Iterator : public ImmutableIterator<T> {
 public:
  using ImmutableIterator<T>::ImmutableIterator;

  static Iterator adopt(Generic::IteratorIntf* aImpl, Deviant aDeviant) {
    return IteratorRef::adopted<Iterator>(aImpl, aDeviant);
  }
  void* getId() const { return this->id(false); }
};

}  // namespace Kelm
