#pragma once

#include <algorithm>
#include <boost/multi_index/identity.hpp>
#include <boost/multi_index/ordered_index.hpp>
#include <boost/multi_index/random_access_index.hpp>
#include <boost/multi_index_container.hpp>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "kelm/Asserter.h"
#include "kelm/Generic.h"
#include "kelm/kernel/containers/iterator/IteratorProxy.h"
#include "kelm/kernel/containers/sequence/Ref.h"
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
/// until its own element goes, and raises from then on.
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
    result->place(eraseAt(result->fPosition));
    return result;
  }
  IteratorPtr generic_erase(Deviant const&, IteratorIntf const* aFirst, IteratorIntf const* aLast) override {
    Position const first = positionOf(aFirst);
    auto result = iterator(positionOf(aLast));
    if (result->fPosition < first) raiseOutOfBounds();
    fElements.erase(first, result->fPosition);
    ++fStamp;
    result->place(result->fPosition);
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
  /// The index of an element, looked for from `aHint` outwards; raises when it has gone. Compares addresses
  /// only: the element's memory may be free.
  std::ptrdiff_t find(Position const& aPosition, std::ptrdiff_t aHint) const;

  /// The place of the new element, or of the equal one that kept it out.
  Position insertBefore(Position const& aPosition, Ref const& aValue) {
    auto const [position, inserted] = fElements.insert(aPosition, Access::get(aValue));
    if (inserted) ++fStamp;
    return position;
  }
  /// The place of what followed.
  Position eraseAt(Position const& aPosition) {
    ++fStamp;
    return fElements.erase(aPosition);
  }

  ElementContainer fElements;
  /// Counts the changes.
  std::uint64_t fStamp = 1;
};

template <class T, bool IsUnique, class KeyExtractor>
class MultiIndexImplForPrimitives<T, IsUnique, KeyExtractor>::Iterator : public IteratorProxy {
 public:
  Iterator(MultiIndexImplForPrimitives const& aSequence, Position const& aPosition)
      : fSequence(aSequence), fPosition(aPosition) {
    place(aPosition);
  }

  Ref current(Deviant const&) const override {
    checkBefore(position(), fSequence.fElements.end());
    return Access::make(*fPosition);
  }
  void next(Deviant const&) override {
    checkBefore(position(), fSequence.fElements.end());
    ++fPosition;
    ++fIndex;
  }
  void previous(Deviant const&) override {
    checkBefore(position(), fSequence.fElements.begin());
    --fPosition;
    --fIndex;
  }
  IteratorPtr clone() const override { return IteratorPtr(new Iterator(*this)); }
  bool equal(IteratorIntf const* aOther) const override {
    return aOther != nullptr && typeid(*aOther) == typeid(Iterator) &&
           static_cast<Iterator const*>(aOther)->fPosition == fPosition;
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
    if (fStamp != fSequence.fStamp) [[unlikely]] {
      fIndex = fSequence.find(fPosition, fIndex);
      fStamp = fSequence.fStamp;
    }
    return fPosition;
  }
  /// Puts the iterator at a position that is one of the sequence now.
  void place(Position const& aPosition) noexcept {
    fPosition = aPosition;
    fIndex = aPosition - fSequence.fElements.begin();
    fStamp = fSequence.fStamp;
  }

  MultiIndexImplForPrimitives const& fSequence;
  Position fPosition;
  /// Index of the position when the stamp was taken.
  mutable std::ptrdiff_t fIndex = 0;
};

template <class T, bool IsUnique, class KeyExtractor>
std::ptrdiff_t MultiIndexImplForPrimitives<T, IsUnique, KeyExtractor>::find(Position const& aPosition,
                                                                            std::ptrdiff_t aHint) const {
  auto const size = static_cast<std::ptrdiff_t>(fElements.size());
  if (aPosition == fElements.end()) return size;
  std::ptrdiff_t below = std::min(aHint, size - 1);
  std::ptrdiff_t above = below + 1;
  while (below >= 0 || above < size) {
    if (below >= 0 && fElements.begin() + below == aPosition) return below;
    if (above < size && fElements.begin() + above == aPosition) return above;
    --below;
    ++above;
  }
  raiseOutOfBounds();
}

template <class T, bool IsUnique, class KeyExtractor>
int MultiIndexImplForPrimitives<T, IsUnique, KeyExtractor>::generic_removeAll(Deviant const&, Ref aValue) {
  T const value = Access::get(aValue);
  auto& sorted = fElements.template get<1>();
  auto const [first, last] = sorted.equal_range(value);
  if (first == last) return 0;
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
