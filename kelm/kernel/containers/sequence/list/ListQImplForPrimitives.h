#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <span>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "kelm/Asserter.h"
#include "kelm/Generic.h"
#include "kelm/kernel/containers/Ref.h"
#include "kelm/kernel/containers/cow/COWWrapper.h"
#include "kelm/kernel/containers/iterator/LiveIterators.h"
#include "kelm/kernel/containers/sources.h"

namespace Kelm {

namespace ListQImplInternal {

/// The vector-backed sequence, stored copy-on-write. Duplicates are allowed. Not counted: whoever makes one
/// owns it. The deviant takes no part.
///
/// A change that fails leaves contents, sharing and positions as they were: everything that can fail (copying
/// the value, making the result's iterator, detaching, growing) comes before the first step that shows, and
/// values whose moves may throw are changed in a copy.
///
/// Iterators are offsets that changes move along with their elements. One whose element was removed, or that
/// belongs to another sequence, raises; one whose element was replaced, or moved by `generic_rearrange`,
/// stands at the value that is there now. `begin` and `end` detach shared data, so they may copy it all and
/// fail.
///
/// `removeAll` takes time for each value behind each that goes; search and membership are linear.
template <class T>
class ListQImplForPrimitives : public Generic::SequenceIntf {
  using Ref = Generic::Ref;
  using Access = Generic::RefAccess<T>;
  using IteratorIntf = Generic::IteratorIntf;
  using IteratorPtr = Generic::IteratorPtr;
  using Values = std::vector<T>;
  using Data = Performance::COWWrapperContainerSequential<Values>;

 public:
  class Iterator;

  ListQImplForPrimitives() = default;
  explicit ListQImplForPrimitives(Values aValues) { fData.detachWithRoom(0) = std::move(aValues); }
  /// A sequence with the same values, which are shared until one of the two is written.
  ListQImplForPrimitives(ListQImplForPrimitives const& aOther) : SequenceIntf(), fData(aOther.fData) {}

  int incRef() const override { return 0; }
  int decRef() const override { return 0; }

  Ref generic_at(Deviant const&, int aIndex) const override {
    return Access::make(fData.read().at(checkedIndex(aIndex, size())));
  }
  Ref generic_front(Deviant const&) const override {
    checkNotEmpty();
    return Access::make(fData.read().front());
  }
  Ref generic_back(Deviant const&) const override {
    checkNotEmpty();
    return Access::make(fData.read().back());
  }
  IteratorPtr generic_begin(Deviant const&) const override { return edge(false); }
  IteratorPtr generic_end(Deviant const&) const override { return edge(true); }
  void generic_clear(Deviant const&) override {
    std::size_t const count = size();
    fData.detachWithRoom(0).clear();
    ++fStamp;
    noteErased(0, count);
  }
  int generic_size(Deviant const&) const override { return static_cast<int>(size()); }
  bool generic_empty(Deviant const&) const override { return fData.empty(); }
  void generic_insert(Deviant const&, int aIndex, Ref aValue) override {
    insertAt(checkedIndex(aIndex, size() + 1), Access::get(aValue));
  }
  IteratorPtr generic_insert(Deviant const&, IteratorIntf const* aPosition, Ref aValue) override {
    std::size_t const offset = offsetOf(aPosition);
    auto result = std::make_unique<Iterator>(*this);
    insertAt(offset, Access::get(aValue));
    return moved(std::move(result), offset);
  }
  IteratorPtr generic_erase(Deviant const&, IteratorIntf const* aPosition) override {
    std::size_t const offset = offsetOf(aPosition);
    checkBefore(offset, size());
    auto result = std::make_unique<Iterator>(*this);
    eraseRange(offset, offset + 1);
    return moved(std::move(result), offset);
  }
  IteratorPtr generic_erase(Deviant const&, IteratorIntf const* aFirst, IteratorIntf const* aLast) override {
    std::size_t const first = offsetOf(aFirst);
    std::size_t const last = offsetOf(aLast);
    checkBefore(first, last + 1);
    auto result = std::make_unique<Iterator>(*this);
    eraseRange(first, last);
    return moved(std::move(result), first);
  }
  void generic_erase(Deviant const&, int aIndex) override {
    std::size_t const index = checkedIndex(aIndex, size());
    eraseRange(index, index + 1);
  }
  void generic_pop_back(Deviant const&) override {
    checkNotEmpty();
    eraseRange(size() - 1, size());
  }
  void generic_pop_front(Deviant const&) override {
    checkNotEmpty();
    eraseRange(0, 1);
  }
  void generic_push_back(Deviant const&, Ref aValue) override { insertAt(size(), Access::get(aValue)); }
  void generic_push_front(Deviant const&, Ref aValue) override { insertAt(0, Access::get(aValue)); }
  void generic_replace(Deviant const&, int aIndex, Ref aValue) override {
    std::size_t const index = checkedIndex(aIndex, size());
    T value = Access::get(aValue);
    change(0, [&](Values& aValues) { aValues[index] = std::move(value); });
  }
  bool generic_contains(Deviant const&, Ref aValue) const override {
    T const value = Access::get(aValue);
    return find(value, 0) != size();
  }
  char const* generic_getVeskName(bool, bool, char const* aName) const override { return aName; }
  int generic_removeAll(Deviant const& aDeviant, Ref aValue) override;
  std::uint64_t stamp(Deviant const&) const override { return fStamp; }
  int readBlock(Deviant const&, int aIndex, int aCount, Generic::Loan* aOut) const override {
    Values const& values = fData.read();
    int const count = blockLength(aIndex, aCount, values.size());
    for (int i = 0; i < count; ++i)
      aOut[i] = Access::lend(values[static_cast<std::size_t>(aIndex) + static_cast<std::size_t>(i)]);
    return count;
  }
  bool splice(Deviant const&, int aFirst, int aRemoved, std::vector<Ref> const& aValues) override {
    std::size_t const first = checkedIndex(aFirst, size() + 1);
    std::size_t const last = first + checkedIndex(aRemoved, size() - first + 1);
    Values values;
    values.reserve(aValues.size());
    for (Ref const& value : aValues) values.push_back(Access::get(value));
    change(values.size(), [&](Values& aOwn) {
      auto const place = aOwn.erase(at(aOwn, first), at(aOwn, last));
      aOwn.insert(place, std::make_move_iterator(values.begin()), std::make_move_iterator(values.end()));
    });
    noteErased(first, last);
    noteInserted(first, values.size());
    return true;
  }

  void generic_rearrange(Deviant const&, std::span<int const> aFrom, std::span<int const> aTo) override {
    checkPlaces(aFrom, size());
    checkPlaces(aTo, size());
    if (aTo.empty()) return;
    Values moved;
    moved.reserve(aFrom.size());
    for (int const place : aFrom) moved.push_back(fData.read()[static_cast<std::size_t>(place)]);
    change(0, [&](Values& aValues) {
      for (std::size_t i = 0; i < aTo.size(); ++i)
        aValues[static_cast<std::size_t>(aTo[i])] = std::move(moved[i]);
    });
  }

  std::type_info const& valueType() const override { return typeid(T); }

  /// How many lists share the data, the shared empty data counting itself too.
  int shareCount() const noexcept { return fData.shareCount(); }

 private:
  static constexpr bool kMovesSafely =
      std::is_nothrow_move_constructible_v<T> && std::is_nothrow_move_assignable_v<T>;

  std::size_t size() const noexcept { return fData.size(); }

  /// Offset of the first equal value from `aFrom` on, or the size.
  std::size_t find(T const& aValue, std::size_t aFrom) const {
    Values const& values = fData.read();
    auto const equal = [&](T const& aElement) { return SequenceTraits<T>::equal(aElement, aValue); };
    auto const first = values.begin() + static_cast<std::ptrdiff_t>(aFrom);
    return static_cast<std::size_t>(std::find_if(first, values.end(), equal) - values.begin());
  }

  [[noreturn]] static void raiseOutOfBounds() { raiseFailure(words::kIndexOutOfBounds, sources::kList); }
  static void checkBefore(std::size_t aOffset, std::size_t aLimit) {
    if (aOffset >= aLimit) [[unlikely]]
      raiseOutOfBounds();
  }
  static std::size_t checkedIndex(int aIndex, std::size_t aLimit) {
    if (aIndex < 0) [[unlikely]]
      raiseFailure(words::kIndexNotPositive, sources::kList);
    checkBefore(static_cast<std::size_t>(aIndex), aLimit);
    return static_cast<std::size_t>(aIndex);
  }
  void checkNotEmpty() const {
    if (fData.empty()) [[unlikely]]
      raiseFailure(words::kSequenceEmpty, sources::kList);
  }

  /// Where in the present data the iterator stands, from 0 to the size.
  std::size_t offsetOf(IteratorIntf const* aIterator) const {
    return Iterator::of(*this, aIterator).offset();
  }
  /// An iterator at the begin or end. As it allows writing, the data is detached.
  IteratorPtr edge(bool aAtEnd) const {
    auto result = std::make_unique<Iterator>(*this);
    Performance::COWDataAccessToken<Values> token;
    Values const& values = fData.publicDataRef(token);
    result->place(aAtEnd ? values.size() : 0);
    return result;
  }
  /// The iterator, put at an offset of the present data.
  static IteratorPtr moved(std::unique_ptr<Iterator> aIterator, std::size_t aOffset) noexcept {
    aIterator->place(aOffset);
    return aIterator;
  }

  /// Runs the change on detached data with room for `aExtra` more values.
  template <class Change>
  void change(std::size_t aExtra, Change const& aChange) {
    if constexpr (kMovesSafely) {
      aChange(fData.detachWithRoom(aExtra));
    } else {
      Data changed(fData);
      aChange(changed.detachWithRoom(aExtra));
      fData.swap(changed);
    }
    ++fStamp;
  }
  void insertAt(std::size_t aOffset, T const& aValue) {
    T value = aValue;
    change(1, [&](Values& aValues) { aValues.insert(at(aValues, aOffset), std::move(value)); });
    noteInserted(aOffset, 1);
  }
  void eraseRange(std::size_t aFirst, std::size_t aLast) {
    change(0, [&](Values& aValues) { aValues.erase(at(aValues, aFirst), at(aValues, aLast)); });
    noteErased(aFirst, aLast);
  }
  void noteInserted(std::size_t aOffset, std::size_t aCount) const noexcept {
    fIterators.forEach<Iterator>([&](Iterator& aIterator) {
      if (aIterator.fOffset >= aOffset) aIterator.fOffset += aCount;
    });
  }
  void noteErased(std::size_t aFirst, std::size_t aLast) const noexcept {
    fIterators.forEach<Iterator>([&](Iterator& aIterator) {
      if (aIterator.fOffset >= aLast)
        aIterator.fOffset -= aLast - aFirst;
      else if (aIterator.fOffset >= aFirst)
        aIterator.end();
    });
  }
  static typename Values::iterator at(Values& aValues, std::size_t aOffset) {
    return aValues.begin() + static_cast<std::ptrdiff_t>(aOffset);
  }
  int removeEach(Deviant const& aDeviant, T const& aValue);

  mutable Data fData;
  mutable LiveIterators fIterators;
  /// Counts the changes of the contents.
  std::uint64_t fStamp = 1;
};

template <class T>
class ListQImplForPrimitives<T>::Iterator : public LiveIterator {
 public:
  explicit Iterator(ListQImplForPrimitives const& aSequence) noexcept
      : LiveIterator(aSequence.fIterators), fSequence(aSequence) {}

  Ref current(Deviant const&) const override {
    checkBefore(offset(), fSequence.size());
    return Access::make(fSequence.fData.read()[fOffset]);
  }
  void next(Deviant const&) override {
    checkBefore(offset(), fSequence.size());
    ++fOffset;
  }
  void previous(Deviant const&) override {
    if (offset() == 0) [[unlikely]]
      raiseOutOfBounds();
    --fOffset;
  }
  IteratorPtr clone() const override { return IteratorPtr(new Iterator(*this)); }
  bool equal(IteratorIntf const* aOther) const override {
    if (aOther == nullptr || typeid(*aOther) != typeid(Iterator)) return false;
    auto const& other = static_cast<Iterator const&>(*aOther);
    return &other.fSequence == &fSequence && other.fOffset == fOffset && other.isGone() == isGone();
  }

 private:
  friend class ListQImplForPrimitives;

  /// The iterator as one of the sequence; raises for a null one and for one of another sequence.
  static Iterator const& of(ListQImplForPrimitives const& aSequence, IteratorIntf const* aIterator) {
    if (aIterator == nullptr) raiseNullReference(sources::kIterator);
    if (typeid(*aIterator) != typeid(Iterator)) raiseOutOfBounds();
    auto const& iterator = static_cast<Iterator const&>(*aIterator);
    if (&iterator.fSequence != &aSequence) raiseOutOfBounds();
    return iterator;
  }

  /// The position in the present data, from 0 to the size.
  std::size_t offset() const {
    if (isGone()) [[unlikely]]
      raiseOutOfBounds();
    return fOffset;
  }
  void place(std::size_t aOffset) noexcept {
    fOffset = aOffset;
    revive();
  }

  ListQImplForPrimitives const& fSequence;
  std::size_t fOffset = 0;
};

template <class T>
int ListQImplForPrimitives<T>::generic_removeAll(Deviant const& aDeviant, Ref aValue) {
  T const value = Access::get(aValue);
  if constexpr (kMovesSafely) {
    // The first erase takes what memory is needed before it changes anything; later ones get the iterators
    // that it gave back.
    return removeEach(aDeviant, value);
  } else {
    Data before(fData);
    std::vector<std::pair<std::size_t, bool>> places;
    fIterators.forEach<Iterator>(
        [&](Iterator const& aIterator) { places.emplace_back(aIterator.fOffset, aIterator.isGone()); });
    try {
      return removeEach(aDeviant, value);
    } catch (...) {
      fData.swap(before);
      auto place = places.begin();
      fIterators.forEach<Iterator>([&](Iterator& aIterator) {
        aIterator.place(place->first);
        if (place++->second) aIterator.end();
      });
      throw;
    }
  }
}

/// Erases through the virtual operation, so that a derived class's takes part.
template <class T>
int ListQImplForPrimitives<T>::removeEach(Deviant const& aDeviant, T const& aValue) {
  int count = 0;
  for (std::size_t offset = 0;; ++count) {
    offset = find(aValue, offset);
    if (offset == size()) return count;
    IteratorPtr const found = moved(std::make_unique<Iterator>(*this), offset);
    IteratorPtr const following = generic_erase(aDeviant, found.get());
    offset = offsetOf(following.get());
  }
}

}  // namespace ListQImplInternal

template <class T, class Kind>
class ListQImplBase;

template <class T>
class ListQImplBase<T, TRUE_TYPE> : public ListQImplInternal::ListQImplForPrimitives<T> {
 public:
  using ListQImplInternal::ListQImplForPrimitives<T>::ListQImplForPrimitives;
};

/// The list that is made: see ListQImplForPrimitives.
template <class T>
class ListQImpl : public ListQImplBase<T, TRUE_TYPE> {
 public:
  using ListQImplBase<T, TRUE_TYPE>::ListQImplBase;
};

}  // namespace Kelm
