#pragma once

#include <concepts>
#include <utility>

#include "kelm/Asserter.h"
#include "kelm/Generic.h"
#include "kelm/kernel/containers/Ref.h"
#include "kelm/kernel/containers/iterator/Iterator.h"
#include "kelm/kernel/containers/sequence/SequenceValues.h"
#include "kelm/kernel/containers/sources.h"

namespace Kelm {

/// What all typed sequence handles share: a counted sequence, or null, and the deviant in which it is seen.
/// Copies share the sequence, so a change through one is seen through all. Every operation on a null handle
/// raises the null-sequence failure. A handle stays on the thread of its sequence.
class SequenceRef {
 public:
  SequenceRef() noexcept = default;
  /// Counts `aImpl`, which may be null. Bare implementations are not counted and must outlive the handle.
  SequenceRef(Generic::SequenceIntf* aImpl, Deviant aDeviant) : fImpl(aImpl), fDeviant(aDeviant) {
    if (fImpl != nullptr) fImpl->incRef();
  }
  SequenceRef(SequenceRef const& aOther) : SequenceRef(aOther.fImpl, aOther.fDeviant) {}
  SequenceRef(SequenceRef&& aOther) noexcept
      : fImpl(std::exchange(aOther.fImpl, nullptr)), fDeviant(aOther.fDeviant) {}
  SequenceRef& operator=(SequenceRef aOther) noexcept {
    std::swap(fImpl, aOther.fImpl);
    fDeviant = aOther.fDeviant;
    return *this;
  }
  /// Names another sequence, or none for null, and keeps the deviant. No contents are read or changed.
  void assign(Generic::SequenceIntf* aImpl) {
    if (aImpl == fImpl) return;
    if (fImpl != nullptr) fImpl->decRef();
    fImpl = aImpl;
    if (fImpl != nullptr) fImpl->incRef();
  }
  // A count that breaks here has no one to report to: the process ends.
  ~SequenceRef() {
    if (fImpl != nullptr) fImpl->decRef();
  }

  Generic::SequenceIntf* get() const noexcept { return fImpl; }
  bool isNull() const noexcept { return fImpl == nullptr; }
  Deviant const& getDeviant() const noexcept { return fDeviant; }
  void setDeviant(Deviant const& aDeviant) noexcept { fDeviant = aDeviant; }

  /// The same sequence in the same deviant; contents take no part.
  friend bool operator==(SequenceRef const& aLeft, SequenceRef const& aRight) noexcept {
    return aLeft.fImpl == aRight.fImpl && aLeft.fDeviant == aRight.fDeviant;
  }

  /// The sequence of a non-null handle; raises the null-sequence failure otherwise.
  Generic::SequenceIntf* checked() const {
    if (fImpl == nullptr) [[unlikely]]
      raiseFailure(words::kNullSequence, sources::kSequenceRef);
    return fImpl;
  }

 protected:
  template <class Handle>
  static Handle adopted(Generic::SequenceIntf* aImpl, Deviant aDeviant) noexcept {
    Handle handle;
    handle.fImpl = aImpl;
    handle.fDeviant = aDeviant;
    return handle;
  }

  Generic::SequenceIntf* fImpl = nullptr;
  Deviant fDeviant;
};

/// Typed handle on a sequence that the holder can't change; others may. All indices count from 0; what they
/// and positions must be, and what fails how, is told at `Generic::SequenceIntf`.
///
/// A value read is a copy: a reference counts its element and sees it in the handle's variant, or, from a
/// free-standing sequence, in that in which it was put in.
template <class T>
class ImmutableSequence : public SequenceRef {
 public:
  using Value = T;
  using SequenceRef::SequenceRef;
  ImmutableSequence() noexcept = default;
  /// A sequence of references is one of references to anything they convert to; the same sequence, no copy.
  template <class From>
  requires(!std::same_as<From, T> && ReferenceClass<From> && ReferenceClass<T> &&
           std::convertible_to<From, T>) ImmutableSequence(ImmutableSequence<From> const& aOther)
      : SequenceRef(aOther) {}

  /// Takes over one count that the caller holds.
  static ImmutableSequence adopt(Generic::SequenceIntf* aImpl, Deviant aDeviant) noexcept {
    return adopted<ImmutableSequence>(aImpl, aDeviant);
  }

  T at(int aIndex) const { return Generic::RefAccess<T>::get(checked()->generic_at(fDeviant, aIndex)); }
  T front() const { return Generic::RefAccess<T>::get(checked()->generic_front(fDeviant)); }
  T back() const { return Generic::RefAccess<T>::get(checked()->generic_back(fDeviant)); }
  /// For a walk during which the sequence changes; `values` is faster otherwise.
  ImmutableIterator<T> begin() const { return {checked()->generic_begin(fDeviant), fDeviant}; }
  ImmutableIterator<T> end() const { return {checked()->generic_end(fDeviant), fDeviant}; }
  int size() const { return checked()->generic_size(fDeviant); }
  bool empty() const { return checked()->generic_empty(fDeviant); }
  bool contains(T const& aValue) const {
    Generic::SequenceIntf const* const sequence = checked();
    return sequence->generic_contains(fDeviant, Generic::RefAccess<T>::make(aValue));
  }
  /// All values for a range-for, fetched in blocks and without iterators. The sequence must not change
  /// meanwhile.
  SequenceValues<T> values() const { return SequenceValues<T>(checked(), fDeviant); }
};

/// Typed handle on a sequence that can be changed. A change that raises has changed nothing; a change of a
/// live sequence is one of its element, far ends and owners included.
template <class T>
class Sequence : public ImmutableSequence<T> {
  using Access = Generic::RefAccess<T>;

 public:
  using ImmutableSequence<T>::ImmutableSequence;

  static Sequence adopt(Generic::SequenceIntf* aImpl, Deviant aDeviant) noexcept {
    return SequenceRef::adopted<Sequence>(aImpl, aDeviant);
  }

  Iterator<T> begin() const { return {this->checked()->generic_begin(this->fDeviant), this->fDeviant}; }
  Iterator<T> end() const { return {this->checked()->generic_end(this->fDeviant), this->fDeviant}; }

  void clear() const { this->checked()->generic_clear(this->fDeviant); }
  void push_back(T const& aValue) const {
    Generic::SequenceIntf* const sequence = this->checked();
    sequence->generic_push_back(this->fDeviant, Access::make(aValue));
  }
  void push_front(T const& aValue) const {
    Generic::SequenceIntf* const sequence = this->checked();
    sequence->generic_push_front(this->fDeviant, Access::make(aValue));
  }
  void pop_back() const { this->checked()->generic_pop_back(this->fDeviant); }
  void pop_front() const { this->checked()->generic_pop_front(this->fDeviant); }
  /// Puts the value before the index; the size itself appends.
  void insert(int aIndex, T const& aValue) const {
    Generic::SequenceIntf* const sequence = this->checked();
    sequence->generic_insert(this->fDeviant, aIndex, Access::make(aValue));
  }
  /// Puts the value before the position; answers its place, or that of the equal value that kept it out.
  Iterator<T> insert(Iterator<T> const& aPosition, T const& aValue) const {
    Generic::SequenceIntf* const sequence = this->checked();
    return {sequence->generic_insert(this->fDeviant, aPosition.get(), Access::make(aValue)), this->fDeviant};
  }
  void erase(int aIndex) const { this->checked()->generic_erase(this->fDeviant, aIndex); }
  /// Answers the position of the value that followed; `aPosition` itself raises from now on.
  Iterator<T> erase(Iterator<T> const& aPosition) const {
    return {this->checked()->generic_erase(this->fDeviant, aPosition.get()), this->fDeviant};
  }
  /// From `aFirst` to before `aLast`, which must not stand before it.
  Iterator<T> erase(Iterator<T> const& aFirst, Iterator<T> const& aLast) const {
    return {this->checked()->generic_erase(this->fDeviant, aFirst.get(), aLast.get()), this->fDeviant};
  }
  /// Does nothing when the sequence is unique and holds the value at whatever index.
  void replace(int aIndex, T const& aValue) const {
    Generic::SequenceIntf* const sequence = this->checked();
    sequence->generic_replace(this->fDeviant, aIndex, Access::make(aValue));
  }
  /// Removes every equal value and answers how many.
  int removeAll(T const& aValue) const {
    Generic::SequenceIntf* const sequence = this->checked();
    return sequence->generic_removeAll(this->fDeviant, Access::make(aValue));
  }
};

}  // namespace Kelm
