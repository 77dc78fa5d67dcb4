#include "engine/ValueSequence.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <vector>

#include "engine/Change.h"
#include "engine/failures.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/String.h"

namespace umlmm::engine {

namespace {

constexpr char kSource[] = "uml_metamodel/engine/ValueSequence";

using Kelm::Generic::Ref;
using Kelm::Generic::SequenceIntf;
using Proxy = Kelm::GenericReferenceCountingSequenceProxy;

/// A unique feature refuses what it holds, silently: the implementation does.
template <class T>
SequenceIntf* makeValues(bool aIsUnique) {
  auto const kind = aIsUnique ? Kelm::MULTI_INDEX : Kelm::STD_VECTOR;
  return Kelm::SequenceCreator::create<T>({Deviant(), kind, aIsUnique, false}).get();
}

std::unique_ptr<SequenceIntf> makeValues(Feature const& aRoot) {
  return std::unique_ptr<SequenceIntf>(aRoot.fValueType == ValueType::String
                                           ? makeValues<String>(aRoot.fUnique)
                                           : makeValues<Boolean>(aRoot.fUnique));
}

/// The values of a feature with all that its element demands of whoever reads or changes them.
class ValueSequence final : public Proxy {
  using Ref = Kelm::Generic::Ref;
  using IteratorIntf = Kelm::Generic::IteratorIntf;
  using IteratorPtr = Kelm::Generic::IteratorPtr;

 public:
  ValueSequence(Element& aElement, Feature const& aRoot, SequenceIntf* aValues) noexcept
      : Proxy(aValues), fElement(aElement), fRoot(aRoot) {}

  int incRef() const override { return fElement.incRef(); }
  int decRef() const override { return fElement.decRef(); }
  int numRef() const override { return fElement.numRef(); }

  Ref generic_at(Deviant const& aDeviant, int aIndex) const override {
    return read(aDeviant).generic_at(aDeviant, aIndex);
  }
  Ref generic_front(Deviant const& aDeviant) const override { return read(aDeviant).generic_front(aDeviant); }
  Ref generic_back(Deviant const& aDeviant) const override { return read(aDeviant).generic_back(aDeviant); }
  IteratorPtr generic_begin(Deviant const& aDeviant) const override {
    return owned(read(aDeviant).generic_begin(aDeviant));
  }
  IteratorPtr generic_end(Deviant const& aDeviant) const override {
    return owned(read(aDeviant).generic_end(aDeviant));
  }
  int generic_size(Deviant const& aDeviant) const override { return read(aDeviant).generic_size(aDeviant); }
  bool generic_contains(Deviant const& aDeviant, Ref aValue) const override {
    return read(aDeviant).generic_contains(aDeviant, std::move(aValue));
  }
  std::uint64_t stamp(Deviant const& aDeviant) const override { return read(aDeviant).stamp(aDeviant); }
  int readBlock(Deviant const& aDeviant, int aIndex, int aCount, Kelm::Generic::Loan* aOut) const override {
    return read(aDeviant).readBlock(aDeviant, aIndex, aCount, aOut);
  }
  int indexOf(Deviant const& aDeviant, Ref const& aValue, int aFrom) const override {
    return read(aDeviant).indexOf(aDeviant, aValue, aFrom);
  }

  void generic_clear(Deviant const& aDeviant) override {
    Changing const changing(*this, aDeviant);
    Proxy::generic_clear(aDeviant);
  }
  void generic_insert(Deviant const& aDeviant, int aIndex, Ref aValue) override {
    Changing const changing(*this, aDeviant);
    checkRoom();
    Proxy::generic_insert(aDeviant, aIndex, std::move(aValue));
  }
  IteratorPtr generic_insert(Deviant const& aDeviant, IteratorIntf const* aPosition, Ref aValue) override {
    Changing const changing(*this, aDeviant);
    checkRoom();
    return Proxy::generic_insert(aDeviant, aPosition, std::move(aValue));
  }
  IteratorPtr generic_erase(Deviant const& aDeviant, IteratorIntf const* aPosition) override {
    Changing const changing(*this, aDeviant);
    return Proxy::generic_erase(aDeviant, aPosition);
  }
  IteratorPtr generic_erase(Deviant const& aDeviant, IteratorIntf const* aFirst,
                            IteratorIntf const* aLast) override {
    Changing const changing(*this, aDeviant);
    return Proxy::generic_erase(aDeviant, aFirst, aLast);
  }
  void generic_erase(Deviant const& aDeviant, int aIndex) override {
    Changing const changing(*this, aDeviant);
    Proxy::generic_erase(aDeviant, aIndex);
  }
  void generic_pop_back(Deviant const& aDeviant) override {
    Changing const changing(*this, aDeviant);
    Proxy::generic_pop_back(aDeviant);
  }
  void generic_pop_front(Deviant const& aDeviant) override {
    Changing const changing(*this, aDeviant);
    Proxy::generic_pop_front(aDeviant);
  }
  void generic_push_back(Deviant const& aDeviant, Ref aValue) override {
    Changing const changing(*this, aDeviant);
    checkRoom();
    Proxy::generic_push_back(aDeviant, std::move(aValue));
  }
  void generic_push_front(Deviant const& aDeviant, Ref aValue) override {
    Changing const changing(*this, aDeviant);
    checkRoom();
    Proxy::generic_push_front(aDeviant, std::move(aValue));
  }
  void generic_replace(Deviant const& aDeviant, int aIndex, Ref aValue) override {
    Changing const changing(*this, aDeviant);
    Proxy::generic_replace(aDeviant, aIndex, std::move(aValue));
  }
  void generic_rearrange(Deviant const& aDeviant, std::span<int const> aFrom,
                         std::span<int const> aTo) override {
    Changing const changing(*this, aDeviant);
    Proxy::generic_rearrange(aDeviant, aFrom, aTo);
  }
  bool isLive() const override { return true; }
  int generic_removeAll(Deviant const& aDeviant, Ref aValue) override {
    Changing const changing(*this, aDeviant);
    return Proxy::generic_removeAll(aDeviant, std::move(aValue));
  }
  bool splice(Deviant const& aDeviant, int aFirst, int aRemoved, std::vector<Ref> const& aValues) override {
    Changing const changing(*this, aDeviant);
    auto const size = static_cast<std::size_t>(target().generic_size(aDeviant));
    auto const going = std::min(static_cast<std::size_t>(aRemoved), size);
    if (fRoot.fUpper > 0 && size - going + aValues.size() > static_cast<std::size_t>(fRoot.fUpper))
      failures::raiseTooMany(kSource, fRoot);
    return Proxy::splice(aDeviant, aFirst, aRemoved, aValues);
  }

  /// Without a check, as the element has gone. Iterators go on with what they stand on where memory fails.
  void forget() noexcept try {
    if (!target().generic_empty(Deviant())) Proxy::generic_clear(Deviant());
  } catch (std::bad_alloc const&) {
  }

  void specialized_assign(SequenceIntf const* aOther, Deviant const& aDeviant, bool& aResult) override {
    assignValues(fElement, fRoot, aDeviant, aOther, aDeviant);
    aResult = true;
  }

 private:
  SequenceIntf const& read(Deviant const& aDeviant,
                           int aLine = std::source_location::current().line()) const {
    checkReadable(fElement, aDeviant, {kSource, aLine});
    return target();
  }
  /// A copy of the values, which changes places with them.
  class Kept final : public KeptValues {
   public:
    explicit Kept(ValueSequence const& aSequence)
        : fSequence(aSequence), fValues(makeValues(aSequence.fRoot)) {
      SequenceIntf const& now = aSequence.target();
      std::vector<Ref> values;
      for (int i = 0; i < now.generic_size(Deviant()); ++i) values.push_back(now.generic_at(Deviant(), i));
      fValues->splice(Deviant(), 0, 0, values);
    }
    void restore() noexcept override { const_cast<ValueSequence&>(fSequence).swapTarget(fValues); }

   private:
    ValueSequence const& fSequence;
    std::unique_ptr<SequenceIntf> fValues;
  };

  /// A change of the values from its checks to its end.
  class Changing {
   public:
    Changing(ValueSequence const& aSequence, Deviant const& aDeviant,
             int aLine = std::source_location::current().line()) {
      Element& element = aSequence.fElement;
      checkWritable(element, aDeviant, {kSource, aLine});
      if (Change::isObserved(element)) [[unlikely]] {
        fExceptions = std::uncaught_exceptions();
        fOwn.emplace(*element.model());
      }
      Change::noteValues(element, engine::indexOf(aSequence.fRoot), aSequence.fNoted,
                         [&] { return std::make_unique<Kept>(aSequence); });
      element.model()->noteChange();
    }
    Changing(Changing const&) = delete;
    Changing& operator=(Changing const&) = delete;
    ~Changing() {
      if (fOwn && std::uncaught_exceptions() == fExceptions) fOwn->commit();
    }

   private:
    int fExceptions = 0;
    std::optional<Change> fOwn;
  };

  /// Raises when the feature is full. Features with a bound take a value as often as it is given.
  void checkRoom() const {
    if (fRoot.fUpper > 0 && target().generic_size(Deviant()) >= fRoot.fUpper)
      failures::raiseNoRoom(kSource, fRoot);
  }

  Element& fElement;
  Feature const& fRoot;
  /// Where an open change has noted the values.
  mutable std::size_t fNoted = 0;
};

}  // namespace

SequenceIntf& valueSequence(Element& aElement, Feature const& aRoot) {
  return Change::values(aElement, indexOf(aRoot), [&]() -> SequenceIntf* {
    auto values = makeValues(aRoot);
    SequenceIntf* const made = new ValueSequence(aElement, aRoot, values.get());
    static_cast<void>(values.release());
    return made;
  });
}

void forgetValues(SequenceIntf& aSequence) noexcept { static_cast<ValueSequence&>(aSequence).forget(); }

void assignValues(Element& aElement, Feature const& aRoot, Deviant const& aDeviant,
                  SequenceIntf const* aValues, Deviant const& aValuesDeviant) {
  checkWritable(aElement, aDeviant, kSource);
  SequenceIntf& own = valueSequence(aElement, aRoot);
  if (aValues == &own) return;
  std::vector<Ref> values;
  for (int i = 0; aValues != nullptr && i < aValues->generic_size(aValuesDeviant); ++i)
    values.push_back(aValues->generic_at(aValuesDeviant, i));
  if (aRoot.fUpper > 0 && values.size() > static_cast<std::size_t>(aRoot.fUpper))
    failures::raiseTooMany(kSource, aRoot);
  own.splice(aDeviant, 0, own.generic_size(aDeviant), values);
}

}  // namespace umlmm::engine
