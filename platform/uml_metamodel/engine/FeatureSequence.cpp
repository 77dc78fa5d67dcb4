#include "engine/FeatureSequence.h"

#include <algorithm>
#include <utility>

#include "engine/Change.h"
#include "engine/ElementRef.h"
#include "engine/failures.h"
#include "engine/featureAccess.h"
#include "engine/links.h"
#include "kelm/kernel/containers/Ref.h"
#include "kelm/kernel/containers/iterator/IteratorProxy.h"
#include "kelm/kernel/containers/sources.h"

namespace umlmm::engine {

namespace {

constexpr char kSource[] = "uml_metamodel/engine/FeatureSequence";

using Kelm::Generic::IteratorIntf;
using Kelm::Generic::IteratorPtr;
using Kelm::Generic::Ref;
using ObjectAccess = Kelm::Generic::RefAccess<Kelm::Object>;

[[noreturn]] void raiseOutOfBounds(int aLine = std::source_location::current().line()) {
  Kelm::raiseFailure(Kelm::words::kIndexOutOfBounds, kSource, aLine);
}
[[noreturn]] void raiseEmpty(int aLine = std::source_location::current().line()) {
  Kelm::raiseFailure(Kelm::words::kSequenceEmpty, kSource, aLine);
}

}  // namespace

Element* elementOf(Kelm::ImmutableObject const& aObject) {
  return static_cast<Element*>(Kelm::queryInterface<Kelm::NSInterface::ClassObjectIntf>(aObject.get()));
}

Element* elementOf(Kelm::Generic::Loan const& aValue) { return elementOf(ObjectAccess::get(aValue)); }

/// Stands at an element by its address, which is looked up again when the sequence has changed. The iterator
/// holds a count on the element, so that no other one can be made at that address.
class FeatureSequence::Iterator final : public Kelm::IteratorProxy {
 public:
  Iterator(FeatureSequence const& aSequence, Deviant const& aDeviant, std::uint32_t aPosition)
      : fSequence(aSequence),
        fStamp(aSequence.changes(aDeviant)),
        fPosition(aPosition),
        fCurrent(aSequence.counted(aDeviant, aPosition)) {
    Kelm::keepOwner(this, &aSequence);
  }
  ~Iterator() override { letGo(); }

  Ref current(Deviant const& aDeviant) const override {
    checkReadable(fSequence.element(), aDeviant, kSource);
    refresh(aDeviant);
    if (fCurrent == nullptr) raiseOutOfBounds();
    return refTo(*fCurrent, aDeviant);
  }
  void next(Deviant const& aDeviant) override {
    checkReadable(fSequence.element(), aDeviant, kSource);
    refresh(aDeviant);
    if (fCurrent == nullptr) raiseOutOfBounds();
    moveTo(aDeviant, fPosition + 1);
  }
  void previous(Deviant const& aDeviant) override {
    checkReadable(fSequence.element(), aDeviant, kSource);
    refresh(aDeviant);
    if (fPosition == 0) raiseOutOfBounds();
    moveTo(aDeviant, fPosition - 1);
  }
  IteratorPtr clone() const override { return IteratorPtr(new Iterator(*this)); }
  bool equal(IteratorIntf const* aOther) const override {
    if (aOther == nullptr || typeid(*aOther) != typeid(*this)) return false;
    auto const& other = static_cast<Iterator const&>(*aOther);
    return &fSequence == &other.fSequence && fCurrent == other.fCurrent;
  }

  FeatureSequence const& sequence() const noexcept { return fSequence; }
  std::uint32_t position(Deviant const& aDeviant) const {
    refresh(aDeviant);
    return fPosition;
  }

 private:
  Iterator(Iterator const& aOther)
      : IteratorProxy(aOther),
        fSequence(aOther.fSequence),
        fStamp(aOther.fStamp),
        fPosition(aOther.fPosition),
        fCurrent(aOther.fCurrent) {
    if (fCurrent != nullptr) fCurrent->incRef();
  }

  void moveTo(Deviant const& aDeviant, std::uint32_t aPosition) {
    letGo();
    fPosition = aPosition;
    fCurrent = fSequence.counted(aDeviant, aPosition);
  }
  void letGo() noexcept {
    if (fCurrent != nullptr) std::exchange(fCurrent, nullptr)->decRef();
  }

  void refresh(Deviant const& aDeviant) const {
    std::uint64_t const stamp = fSequence.changes(aDeviant);
    if (stamp == fStamp) [[likely]]
      return;
    std::uint32_t const size = fSequence.size(aDeviant);
    if (fCurrent == nullptr) {
      fPosition = size;
    } else {
      lookUp(aDeviant, size);
    }
    fStamp = stamp;
  }

  void lookUp(Deviant const& aDeviant, std::uint32_t aSize) const {
    std::uint32_t below = std::min(fPosition, aSize);
    std::uint32_t above = below;
    while (below > 0 || above < aSize) {
      if (above < aSize) {
        if (fSequence.at(aDeviant, above) == fCurrent) return void(fPosition = above);
        ++above;
      }
      if (below > 0 && fSequence.at(aDeviant, --below) == fCurrent) return void(fPosition = below);
    }
    raiseOutOfBounds();
  }

  FeatureSequence const& fSequence;
  /// The state of the sequence when the position was last known good.
  mutable std::uint64_t fStamp;
  mutable std::uint32_t fPosition;
  Element* fCurrent;
};

std::uint32_t FeatureSequence::checkedPosition(Deviant const& aDeviant, int aIndex, std::uint32_t aLimit,
                                               int aLine) const {
  checkReadable(fElement, aDeviant, {kSource, aLine});
  if (aIndex < 0) Kelm::raiseFailure(Kelm::words::kIndexNotPositive, kSource, aLine);
  if (static_cast<std::uint32_t>(aIndex) >= aLimit) raiseOutOfBounds(aLine);
  return static_cast<std::uint32_t>(aIndex);
}

std::uint32_t FeatureSequence::positionOf(Deviant const& aDeviant, IteratorIntf const* aIterator) const {
  if (aIterator == nullptr) Kelm::raiseNullReference(Kelm::sources::kIterator);
  if (typeid(*aIterator) != typeid(Iterator)) raiseOutOfBounds();
  auto const& iterator = static_cast<Iterator const&>(*aIterator);
  if (&iterator.sequence() != this) raiseOutOfBounds();
  return iterator.position(aDeviant);
}

Element* FeatureSequence::counted(Deviant const& aDeviant, std::uint32_t aPosition) const {
  if (aPosition >= size(aDeviant)) return nullptr;
  Element* const element = at(aDeviant, aPosition);
  element->incRef();
  return element;
}

IteratorPtr FeatureSequence::iteratorAt(Deviant const& aDeviant, std::uint32_t aPosition) const {
  return IteratorPtr(new Iterator(*this, aDeviant, aPosition));
}

void FeatureSequence::checkChange(Deviant const& aDeviant, int aLine) const {
  checkWritable(fElement, aDeviant, {kSource, aLine});
  if (fFeature.fReadOnly) failures::raiseReadOnly({kSource, aLine}, fFeature);
}

Element& FeatureSequence::add(Deviant const& aDeviant, std::uint32_t aPosition, Ref const& aValue) {
  checkChange(aDeviant);
  Element* const value = elementOf(aValue);
  if (value == nullptr) failures::raiseNotAValue(kSource, fFeature);
  if (!contains(aDeviant, *value)) {
    check(*value, nullptr);
    insert(aDeviant, aPosition, *value);
  }
  return *value;
}

Ref FeatureSequence::generic_at(Deviant const& aDeviant, int aIndex) const {
  checkReadable(fElement, aDeviant, kSource);
  return refTo(*at(aDeviant, checkedPosition(aDeviant, aIndex, size(aDeviant))), aDeviant);
}

Ref FeatureSequence::generic_front(Deviant const& aDeviant) const {
  checkReadable(fElement, aDeviant, kSource);
  if (size(aDeviant) == 0) raiseEmpty();
  return refTo(*at(aDeviant, 0), aDeviant);
}

Ref FeatureSequence::generic_back(Deviant const& aDeviant) const {
  checkReadable(fElement, aDeviant, kSource);
  if (size(aDeviant) == 0) raiseEmpty();
  return refTo(*at(aDeviant, size(aDeviant) - 1), aDeviant);
}

IteratorPtr FeatureSequence::generic_begin(Deviant const& aDeviant) const {
  checkReadable(fElement, aDeviant, kSource);
  return iteratorAt(aDeviant, 0);
}

IteratorPtr FeatureSequence::generic_end(Deviant const& aDeviant) const {
  checkReadable(fElement, aDeviant, kSource);
  return iteratorAt(aDeviant, size(aDeviant));
}

void FeatureSequence::generic_clear(Deviant const& aDeviant) {
  checkChange(aDeviant);
  assign(aDeviant, {});
}

int FeatureSequence::generic_size(Deviant const& aDeviant) const {
  checkReadable(fElement, aDeviant, kSource);
  return static_cast<int>(size(aDeviant));
}

void FeatureSequence::generic_insert(Deviant const& aDeviant, int aIndex, Ref aValue) {
  checkChange(aDeviant);
  add(aDeviant, checkedPosition(aDeviant, aIndex, size(aDeviant) + 1), aValue);
}

IteratorPtr FeatureSequence::generic_insert(Deviant const& aDeviant, IteratorIntf const* aPosition,
                                            Ref aValue) {
  checkChange(aDeviant);
  Change change(*fElement.model());
  std::uint32_t const position = positionOf(aDeviant, aPosition);
  Element const& value = add(aDeviant, position, aValue);
  bool const isThere = position < size(aDeviant) && at(aDeviant, position) == &value;
  auto result = iteratorAt(aDeviant, isThere ? position : find(aDeviant, value));
  change.commit();
  return result;
}

IteratorPtr FeatureSequence::generic_erase(Deviant const& aDeviant, IteratorIntf const* aPosition) {
  checkChange(aDeviant);
  std::uint32_t const position = positionOf(aDeviant, aPosition);
  if (position >= size(aDeviant)) raiseOutOfBounds();
  Change change(*fElement.model());
  erase(aDeviant, *at(aDeviant, position));
  auto result = iteratorAt(aDeviant, position);
  change.commit();
  return result;
}

IteratorPtr FeatureSequence::generic_erase(Deviant const& aDeviant, IteratorIntf const* aFirst,
                                           IteratorIntf const* aLast) {
  checkChange(aDeviant);
  std::uint32_t const first = positionOf(aDeviant, aFirst);
  std::uint32_t const last = positionOf(aDeviant, aLast);
  if (last < first) raiseOutOfBounds();
  std::vector<Element*> going;
  for (std::uint32_t position = first; position < last; ++position) going.push_back(at(aDeviant, position));
  Change change(*fElement.model());
  for (Element* const value : going) erase(aDeviant, *value);
  auto result = iteratorAt(aDeviant, first);
  change.commit();
  return result;
}

void FeatureSequence::generic_erase(Deviant const& aDeviant, int aIndex) {
  checkChange(aDeviant);
  erase(aDeviant, *at(aDeviant, checkedPosition(aDeviant, aIndex, size(aDeviant))));
}

void FeatureSequence::generic_pop_back(Deviant const& aDeviant) {
  checkChange(aDeviant);
  if (size(aDeviant) == 0) raiseEmpty();
  erase(aDeviant, *at(aDeviant, size(aDeviant) - 1));
}

void FeatureSequence::generic_pop_front(Deviant const& aDeviant) {
  checkChange(aDeviant);
  if (size(aDeviant) == 0) raiseEmpty();
  erase(aDeviant, *at(aDeviant, 0));
}

void FeatureSequence::generic_push_back(Deviant const& aDeviant, Ref aValue) {
  add(aDeviant, size(aDeviant), aValue);
}

bool FeatureSequence::splice(Deviant const& aDeviant, int aFirst, int aRemoved,
                             std::vector<Ref> const& aValues) {
  checkChange(aDeviant);
  if (aRemoved != 0 || aFirst != static_cast<int>(size(aDeviant))) return false;
  std::vector<Element*> values;
  values.reserve(aValues.size());
  for (Ref const& value : aValues) {
    values.push_back(elementOf(value));
    if (values.back() == nullptr) failures::raiseNotAValue(kSource, fFeature);
  }
  if (fFeature.fStorage == Storage::List && linkAtOnce(fElement, rootOf(fFeature), values)) return true;
  Change change(*fElement.model());
  for (Element* const value : values) {
    if (contains(aDeviant, *value)) continue;
    check(*value, nullptr);
    insert(aDeviant, size(aDeviant), *value);
  }
  change.commit();
  return true;
}

void FeatureSequence::generic_push_front(Deviant const& aDeviant, Ref aValue) { add(aDeviant, 0, aValue); }

void FeatureSequence::generic_replace(Deviant const& aDeviant, int aIndex, Ref aValue) {
  checkChange(aDeviant);
  std::uint32_t const position = checkedPosition(aDeviant, aIndex, size(aDeviant));
  Element* const value = elementOf(aValue);
  if (value == nullptr) failures::raiseNotAValue(kSource, fFeature);
  if (contains(aDeviant, *value)) return;
  Element* const old = at(aDeviant, position);
  check(*value, old);
  Change change(*fElement.model());
  erase(aDeviant, *old);
  insert(aDeviant, position, *value);
  change.commit();
}

bool FeatureSequence::generic_contains(Deviant const& aDeviant, Ref aValue) const {
  checkReadable(fElement, aDeviant, kSource);
  Element* const value = elementOf(aValue);
  return value != nullptr && value->model() == fElement.model() && contains(aDeviant, *value);
}

int FeatureSequence::generic_removeAll(Deviant const& aDeviant, Ref aValue) {
  checkChange(aDeviant);
  Element* const value = elementOf(aValue);
  if (value == nullptr || value->model() != fElement.model() || !contains(aDeviant, *value)) return 0;
  erase(aDeviant, *value);
  return 1;
}

std::uint64_t FeatureSequence::stamp(Deviant const& aDeviant) const {
  checkReadable(fElement, aDeviant, kSource);
  // Closing holes moves entries, not values: it must not look like a change later.
  if (size(aDeviant) != 0) static_cast<void>(all(aDeviant));
  return changes(aDeviant);
}

int FeatureSequence::readBlock(Deviant const& aDeviant, int aIndex, int aCount,
                               Kelm::Generic::Loan* aOut) const {
  checkReadable(fElement, aDeviant, kSource);
  int const count = blockLength(aIndex, aCount, size(aDeviant));
  if (count != 0) lend(all(aDeviant).subspan(static_cast<std::size_t>(aIndex)), count, aDeviant, aOut);
  return count;
}

int FeatureSequence::indexOf(Deviant const& aDeviant, Ref const& aValue, int aFrom) const {
  checkReadable(fElement, aDeviant, kSource);
  Element* const value = elementOf(aValue);
  if (value == nullptr || value->model() != fElement.model()) return -1;
  std::uint32_t const position = find(aDeviant, *value);
  return position == kNowhere || static_cast<int>(position) < aFrom ? -1 : static_cast<int>(position);
}

void FeatureSequence::specialized_assign(Kelm::Generic::SequenceIntf const* aOther, Deviant const& aDeviant,
                                         bool& aResult) {
  engine::assign(fElement, aDeviant, fFeature, aOther, aDeviant);
  aResult = true;
}

void FeatureSequence::generic_rearrange(Deviant const& aDeviant, std::span<int const> aFrom,
                                        std::span<int const> aTo) {
  checkChange(aDeviant);
  checkPlaces(aFrom, size(aDeviant));
  checkPlaces(aTo, size(aDeviant));
  if (!aTo.empty()) rearrange(aDeviant, aFrom, aTo);
}

}  // namespace umlmm::engine
