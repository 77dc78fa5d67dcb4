#pragma once

#include <algorithm>
#include <boost/multi_index/identity.hpp>
#include <boost/multi_index/ordered_index.hpp>
#include <boost/multi_index/random_access_index.hpp>
#include <boost/multi_index_container.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
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
#include "kelm/kernel/containers/iterator/LiveIterators.h"
#include "kelm/kernel/containers/sources.h"

namespace Kelm {
namespace MultiIndexImplInternal {

/// Order of the values in the ordered indices.
template <class T>
struct Less {
  bool operator()(T const& aLeft, T const& aRight) const { return SequenceTraits<T>::less(aLeft, aRight); }
};

/// The insertion-ordered sequence with two sorted views of the same elements: removal by value goes through
/// the one, membership and the refusal of duplicates through the other. A refused duplicate is no failure:
/// the sequence stays as it is. Not counted: whoever makes one owns it. The deviant takes no part.
///
/// A change that fails leaves everything as it was. Elements don't move in memory: an iterator stays valid
/// until its own element goes, through `generic_rearrange` too, and raises from then on. One whose element
/// was replaced stands at the new value.
///
/// Access by index takes constant time, membership logarithmic, a change time for each value behind its
/// place.
template <class T, bool IsUnique, class KeyExtractor>
class MultiIndexImplForPrimitives : public Generic::SequenceIntf {
  using Ref = Generic::Ref;
  using Access = Generic::RefAccess<T>;
  using IteratorIntf = Generic::IteratorIntf;
  using IteratorPtr = Generic::IteratorPtr;
  using ByValue = boost::multi_index::ordered_non_unique<KeyExtractor, Less<T>>;
  using Membership =
      std::conditional_t<IsUnique, boost::multi_index::ordered_unique<KeyExtractor, Less<T>>, ByValue>;
  using ElementContainer = boost::multi_index_container<
      T, boost::multi_index::indexed_by<boost::multi_index::random_access<>, ByValue, Membership>>;
  using Position = typename ElementContainer::iterator;

 public:
  class Iterator;

  int incRef() const override { return 0; }
  int decRef() const override { return 0; }

  Ref generic_at(Deviant const&, int aIndex) const override {
    return Access::make(fElements[checkedIndex(aIndex, fElements.size())]);
  }
  Ref generic_front(Deviant const&) const override {
    checkNotEmpty();
    return Access::make(fElements.front());
  }
  Ref generic_back(Deviant const&) const override {
    checkNotEmpty();
    return Access::make(fElements.back());
  }
  IteratorPtr generic_begin(Deviant const&) const override { return iterator(fElements.begin()); }
  IteratorPtr generic_end(Deviant const&) const override { return iterator(fElements.end()); }
  void generic_clear(Deviant const&) override {
    endIterators([&](Position const& aPosition) { return aPosition != fElements.end(); });
    fElements.clear();
    ++fStamp;
  }
  int generic_size(Deviant const&) const override { return static_cast<int>(fElements.size()); }
  bool generic_empty(Deviant const&) const override { return fElements.empty(); }
  void generic_insert(Deviant const&, int aIndex, Ref aValue) override {
    insertBefore(at(checkedIndex(aIndex, fElements.size() + 1)), aValue);
  }
  IteratorPtr generic_insert(Deviant const&, IteratorIntf const* aPosition, Ref aValue) override {
    auto result = iterator(positionOf(aPosition));
    result->place(insertBefore(result->fPosition, aValue));
    return result;
  }
  IteratorPtr generic_erase(Deviant const&, IteratorIntf const* aPosition) override {
    auto result = iterator(positionOf(aPosition));
    checkBefore(result->fPosition, fElements.end());
    result->place(eraseAt(Position(result->fPosition)));
    return result;
  }
  IteratorPtr generic_erase(Deviant const&, IteratorIntf const* aFirst, IteratorIntf const* aLast) override {
    Position const first = positionOf(aFirst);
    auto result = iterator(positionOf(aLast));
    Position const last = result->fPosition;
    if (last < first) raiseOutOfBounds();
    endIterators([&](Position const& aPosition) { return !(aPosition < first) && aPosition < last; });
    fElements.erase(first, last);
    ++fStamp;
    return result;
  }
  void generic_erase(Deviant const&, int aIndex) override {
    eraseAt(at(checkedIndex(aIndex, fElements.size())));
  }
  void generic_pop_back(Deviant const&) override {
    checkNotEmpty();
    eraseAt(std::prev(fElements.end()));
  }
  void generic_pop_front(Deviant const&) override {
    checkNotEmpty();
    eraseAt(fElements.begin());
  }
  void generic_push_back(Deviant const&, Ref aValue) override { insertBefore(fElements.end(), aValue); }
  void generic_push_front(Deviant const&, Ref aValue) override { insertBefore(fElements.begin(), aValue); }
  void generic_replace(Deviant const&, int aIndex, Ref aValue) override {
    Position const position = at(checkedIndex(aIndex, fElements.size()));
    if (fElements.replace(position, Access::get(aValue))) ++fStamp;
  }
  bool generic_contains(Deviant const&, Ref aValue) const override {
    auto const& members = fElements.template get<2>();
    return members.find(Access::get(aValue)) != members.end();
  }
  char const* generic_getVeskName(bool aImmutable, bool, char const* aName) const override {
    if constexpr (NamedValue<T>) {
      using Names = detail::SequenceNames<T>;
      return aImmutable ? Names::kImmutable.data() : Names::kMutable.data();
    } else {
      return aName;
    }
  }
  int generic_removeAll(Deviant const&, Ref aValue) override;
  std::uint64_t stamp(Deviant const&) const override { return fStamp; }
  int readBlock(Deviant const&, int aIndex, int aCount, Generic::Loan* aOut) const override {
    int const count = blockLength(aIndex, aCount, fElements.size());
    auto const first = static_cast<std::size_t>(aIndex);
    for (std::size_t i = first; i < first + static_cast<std::size_t>(count); ++i) {
      // Each value lies in a block of its own: those of the next call are on their way by then.
      if (i + kLookAhead < fElements.size()) __builtin_prefetch(&fElements[i + kLookAhead]);
      aOut[i - first] = Access::lend(fElements[i]);
    }
    return count;
  }
  int indexOf(Deviant const& aDeviant, Ref const& aValue, int aFrom) const override;
  void generic_rearrange(Deviant const&, std::span<int const> aFrom, std::span<int const> aTo) override {
    checkPlaces(aFrom, fElements.size());
    checkPlaces(aTo, fElements.size());
    if (aTo.empty()) return;
    // The elements stay where they are in memory, and in the ordered views.
    std::vector<std::reference_wrapper<T const>> order(fElements.begin(), fElements.end());
    for (std::size_t i = 0; i < aTo.size(); ++i)
      order[static_cast<std::size_t>(aTo[i])] = fElements[static_cast<std::size_t>(aFrom[i])];
    fElements.rearrange(order.begin());
    ++fStamp;
  }
  bool isUnique() const override { return IsUnique; }
  /// Its time goes into what it calls, and there is one for each type: small beats fast.
  [[gnu::cold]] bool splice(Deviant const&, int aFirst, int aRemoved,
                            std::vector<Ref> const& aValues) override;
  std::type_info const& valueType() const override { return typeid(T); }

 private:
  static constexpr std::size_t kLookAhead = 32;

  [[noreturn]] static void raiseOutOfBounds() {
    raiseFailure(words::kIndexOutOfBounds, sources::kMultiIndex);
  }
  static std::size_t checkedIndex(int aIndex, std::size_t aLimit) {
    if (aIndex < 0) [[unlikely]]
      raiseFailure(words::kIndexNotPositive, sources::kMultiIndex);
    if (static_cast<std::size_t>(aIndex) >= aLimit) [[unlikely]]
      raiseOutOfBounds();
    return static_cast<std::size_t>(aIndex);
  }
  void checkNotEmpty() const {
    if (fElements.empty()) [[unlikely]]
      raiseFailure(words::kSequenceEmpty, sources::kMultiIndex);
  }
  static void checkBefore(Position const& aPosition, Position const& aLimit) {
    if (aPosition == aLimit) [[unlikely]]
      raiseOutOfBounds();
  }

  Position at(std::size_t aIndex) const { return fElements.begin() + static_cast<std::ptrdiff_t>(aIndex); }
  std::unique_ptr<Iterator> iterator(Position const& aPosition) const {
    return std::make_unique<Iterator>(*this, aPosition);
  }
  /// Where the iterator stands; raises for a null one, one of another sequence, and one whose element has
  /// gone.
  Position positionOf(IteratorIntf const* aIterator) const {
    return Iterator::of(*this, aIterator).position();
  }
  /// Ends the iterators whose elements are about to go; all others stay where they are.
  template <class IsGoing>
  void endIterators(IsGoing aIsGoing) const {
    fIterators.forEach<Iterator>([&](Iterator& aIterator) {
      if (!aIterator.isGone() && aIsGoing(aIterator.fPosition)) aIterator.end();
    });
  }

  template <class Tell>
  void enter(std::vector<Ref> const& aValues, Tell const& aTell);
  /// The place of the new element, or of the equal one that kept it out.
  Position insertBefore(Position const& aPosition, Ref const& aValue) {
    auto const [position, inserted] = fElements.insert(aPosition, Access::get(aValue));
    if (inserted) ++fStamp;
    return position;
  }
  /// The place of what followed.
  Position eraseAt(Position const& aPosition) {
    endIterators([&](Position const& aOther) { return aOther == aPosition; });
    ++fStamp;
    return fElements.erase(aPosition);
  }

  ElementContainer fElements;
  mutable LiveIterators fIterators;
  /// Counts the changes.
  std::uint64_t fStamp = 1;
};

template <class T, bool IsUnique, class KeyExtractor>
class MultiIndexImplForPrimitives<T, IsUnique, KeyExtractor>::Iterator : public LiveIterator {
 public:
  Iterator(MultiIndexImplForPrimitives const& aSequence, Position const& aPosition)
      : LiveIterator(aSequence.fIterators), fSequence(aSequence), fPosition(aPosition) {}

  Ref current(Deviant const&) const override {
    checkBefore(position(), fSequence.fElements.end());
    return Access::make(*fPosition);
  }
  void next(Deviant const&) override {
    checkBefore(position(), fSequence.fElements.end());
    ++fPosition;
  }
  void previous(Deviant const&) override {
    checkBefore(position(), fSequence.fElements.begin());
    --fPosition;
  }
  IteratorPtr clone() const override { return IteratorPtr(new Iterator(*this)); }
  bool equal(IteratorIntf const* aOther) const override {
    if (aOther == nullptr || typeid(*aOther) != typeid(Iterator)) return false;
    auto const& other = static_cast<Iterator const&>(*aOther);
    return other.fPosition == fPosition && other.isGone() == isGone();
  }

 private:
  friend class MultiIndexImplForPrimitives;

  /// The iterator as one of the sequence; raises for a null one and for one of another sequence.
  static Iterator const& of(MultiIndexImplForPrimitives const& aSequence, IteratorIntf const* aIterator) {
    if (aIterator == nullptr) raiseNullReference(sources::kIterator);
    if (typeid(*aIterator) != typeid(Iterator)) raiseOutOfBounds();
    auto const& iterator = static_cast<Iterator const&>(*aIterator);
    if (&iterator.fSequence != &aSequence) raiseOutOfBounds();
    return iterator;
  }

  /// The position, known to be one of the sequence.
  Position const& position() const {
    if (isGone()) [[unlikely]]
      raiseOutOfBounds();
    return fPosition;
  }
  /// Puts the iterator at a position that is one of the sequence now.
  void place(Position const& aPosition) noexcept {
    fPosition = aPosition;
    revive();
  }

  MultiIndexImplForPrimitives const& fSequence;
  Position fPosition;
};

template <class T, bool IsUnique, class KeyExtractor>
int MultiIndexImplForPrimitives<T, IsUnique, KeyExtractor>::generic_removeAll(Deviant const&, Ref aValue) {
  T const value = Access::get(aValue);
  auto& sorted = fElements.template get<1>();
  auto const [first, last] = sorted.equal_range(value);
  if (first == last) return 0;
  endIterators([&](Position const& aPosition) {
    return aPosition != fElements.end() && SequenceTraits<T>::equal(*aPosition, value);
  });
  ++fStamp;
  if (std::next(first) == last) {
    sorted.erase(first);
    return 1;
  }
  // One pass over the sequence closes all gaps.
  std::size_t const before = fElements.size();
  fElements.remove_if([&](T const& aElement) { return SequenceTraits<T>::equal(aElement, value); });
  return static_cast<int>(before - fElements.size());
}

/// Enters values at the end, all or none, and tells of each where it stands and whether it is new.
template <class T, bool IsUnique, class KeyExtractor>
template <class Tell>
void MultiIndexImplForPrimitives<T, IsUnique, KeyExtractor>::enter(std::vector<Ref> const& aValues,
                                                                   Tell const& aTell) {
  std::size_t const size = fElements.size();
  try {
    for (Ref const& value : aValues) {
      auto const [position, inserted] = fElements.push_back(Access::get(value));
      aTell(position, inserted);
    }
  } catch (...) {
    fElements.erase(at(size), fElements.end());
    throw;
  }
  ++fStamp;
}

/// New values are entered at the end, which alone can fail, and moved to their place when all are in. A value
/// that a unique sequence holds among those that go stays in place of the new one.
template <class T, bool IsUnique, class KeyExtractor>
bool MultiIndexImplForPrimitives<T, IsUnique, KeyExtractor>::splice(Deviant const&, int aFirst, int aRemoved,
                                                                    std::vector<Ref> const& aValues) {
  std::size_t const size = fElements.size();
  std::size_t const first = checkedIndex(aFirst, size + 1);
  std::size_t const last = first + checkedIndex(aRemoved, size - first + 1);
  if (first == size) {
    enter(aValues, [](Position const&, bool) {});
    return true;
  }
  std::vector<bool> stays(last - first);
  std::vector<std::reference_wrapper<T const>> order;
  order.reserve(size + aValues.size());
  auto const add = [&](std::size_t aFrom, std::size_t aTo) {
    for (std::size_t i = aFrom; i < aTo; ++i) order.push_back(std::cref(fElements[i]));
  };
  add(0, first);
  enter(aValues, [&](Position const& aPosition, bool aIsNew) {
    auto const index = static_cast<std::size_t>(aPosition - fElements.begin());
    bool const wasGoing = !aIsNew && index >= first && index < last && !stays[index - first];
    if (wasGoing) stays[index - first] = true;
    if (aIsNew || wasGoing) order.push_back(std::cref(*aPosition));
  });
  add(last, size);
  std::size_t const kept = order.size();
  for (std::size_t i = first; i < last; ++i)
    if (!stays[i - first]) add(i, i + 1);
  fElements.rearrange(order.begin());
  Position const going = at(kept);
  endIterators([&](Position const& aOther) { return !(aOther < going) && aOther < fElements.end(); });
  fElements.erase(going, fElements.end());
  return true;
}

/// The first of the equal values in the order of the sequence, of which the sorted view knows nothing. When
/// they are many, a walk over the sequence finds the next one sooner.
template <class T, bool IsUnique, class KeyExtractor>
int MultiIndexImplForPrimitives<T, IsUnique, KeyExtractor>::indexOf(Deviant const& aDeviant,
                                                                    Ref const& aValue, int aFrom) const {
  constexpr int kMany = 64;
  auto const& sorted = fElements.template get<2>();
  auto [equal, last] = sorted.equal_range(Access::get(aValue));
  std::ptrdiff_t found = -1;
  for (int seen = 0; equal != last; ++equal) {
    if (++seen > kMany) return SequenceIntf::indexOf(aDeviant, aValue, aFrom);
    std::ptrdiff_t const index = fElements.template project<0>(equal) - fElements.begin();
    if (index >= aFrom && (found < 0 || index < found)) found = index;
  }
  return static_cast<int>(found);
}

}  // namespace MultiIndexImplInternal

template <class T, bool IsUnique, class KeyExtractor, class Kind>
class MultiIndexImplBase;

template <class T, bool IsUnique, class KeyExtractor>
class MultiIndexImplBase<T, IsUnique, KeyExtractor, TRUE_TYPE>
    : public MultiIndexImplInternal::MultiIndexImplForPrimitives<T, IsUnique, KeyExtractor> {};

/// The multi-index sequence that is made: see MultiIndexImplForPrimitives.
template <class T, bool IsUnique, class KeyExtractor>
class MultiIndexImpl : public MultiIndexImplBase<T, IsUnique, KeyExtractor, TRUE_TYPE> {};

}  // namespace Kelm
