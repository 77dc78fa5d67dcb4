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

namespace Generic = Kelm::Generic;
using Generic::Ref;
using Generic::SequenceIntf;

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
class ValueSequence final : public SequenceIntf {
 public:
  ValueSequence(Element& aElement, Feature const& aRoot, std::unique_ptr<SequenceIntf> aValues) noexcept
      : fElement(aElement), fRoot(aRoot), fValues(std::move(aValues)) {}

  int incRef() const override { return fElement.incRef(); }
  int decRef() const override { return fElement.decRef(); }
  int numRef() const override { return fElement.numRef(); }

  // Marks for export mean nothing in an unnamed namespace.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wattributes"
#include "kelm/kernel/containers/sequence/handedOn.inc"
#pragma GCC diagnostic pop
  bool splice(Deviant const& aDeviant, int aFirst, int aRemoved, std::vector<Ref> const& aValues) override {
    Changing const changing(*this, aDeviant, Adds::Nothing);
    auto const size = static_cast<std::size_t>(fValues->generic_size(aDeviant));
    auto const going = std::min(static_cast<std::size_t>(aRemoved), size);
    if (fRoot.fUpper > 0 && size - going + aValues.size() > static_cast<std::size_t>(fRoot.fUpper))
      failures::raiseTooMany(kSource, fRoot);
    return fValues->splice(aDeviant, aFirst, aRemoved, aValues);
  }
  Element* shownElement() const override { return &fElement; }

  /// Without a check, as the element has gone. Iterators go on with what they stand on where memory fails.
  void forget() noexcept try {
    if (!fValues->generic_empty(Deviant())) fValues->generic_clear(Deviant());
  } catch (std::bad_alloc const&) {
  }

  void specialized_assign(SequenceIntf const* aOther, Deviant const& aDeviant, bool& aResult) override {
    assignValues(fElement, fRoot, aDeviant, aOther, aDeviant);
    aResult = true;
  }

 private:
  /// A copy of the values, which changes places with them.
  class Kept final : public KeptValues {
   public:
    explicit Kept(ValueSequence const& aSequence) : fSequence(aSequence), fKept(makeValues(aSequence.fRoot)) {
      SequenceIntf const& now = *aSequence.fValues;
      std::vector<Ref> values;
      for (int i = 0; i < now.generic_size(Deviant()); ++i) values.push_back(now.generic_at(Deviant(), i));
      fKept->splice(Deviant(), 0, 0, values);
    }
    void restore() noexcept override { const_cast<ValueSequence&>(fSequence).fValues.swap(fKept); }

   private:
    ValueSequence const& fSequence;
    std::unique_ptr<SequenceIntf> fKept;
  };

  enum class Adds { Nothing, Value };
  /// A change of the values from its checks to its end. Features with a bound take a value as often as it is
  /// given.
  class Changing {
   public:
    Changing(ValueSequence const& aSequence, Deviant const& aDeviant, Adds aAdds)
        : fValues(*aSequence.fValues) {
      Element& element = aSequence.fElement;
      Feature const& root = aSequence.fRoot;
      checkWritable(element, aDeviant, kSource);
      if (aAdds == Adds::Value && root.fUpper > 0 && fValues.generic_size(Deviant()) >= root.fUpper)
        failures::raiseNoRoom(kSource, root);
      if (Change::isObserved(element)) [[unlikely]] {
        fExceptions = std::uncaught_exceptions();
        fOwn.emplace(*element.model());
      }
      Change::noteValues(element, engine::indexOf(root), aSequence.fNoted,
                         [&] { return std::make_unique<Kept>(aSequence); });
      element.model()->noteChange();
    }
    Changing(Changing const&) = delete;
    Changing& operator=(Changing const&) = delete;
    ~Changing() {
      if (fOwn && std::uncaught_exceptions() == fExceptions) fOwn->commit();
    }

    SequenceIntf* operator->() const noexcept { return &fValues; }

   private:
    SequenceIntf& fValues;
    int fExceptions = 0;
    std::optional<Change> fOwn;
  };

  SequenceIntf& target() const noexcept { return *fValues; }
  SequenceIntf const* reading(Deviant const& aDeviant) const {
    checkReadable(fElement, aDeviant, kSource);
    return fValues.get();
  }
  Changing changing(Deviant const& aDeviant) { return {*this, aDeviant, Adds::Nothing}; }
  Changing adding(Deviant const& aDeviant) { return {*this, aDeviant, Adds::Value}; }
  Generic::IteratorPtr owned(Generic::IteratorPtr aIterator) const {
    Kelm::keepOwner(aIterator.get(), this);
    return aIterator;
  }

  Element& fElement;
  Feature const& fRoot;
  std::unique_ptr<SequenceIntf> fValues;
  /// Where an open change has noted the values.
  mutable std::size_t fNoted = 0;
};

}  // namespace

SequenceIntf& valueSequence(Element& aElement, Feature const& aRoot) {
  return Change::values(aElement, indexOf(aRoot), [&]() -> SequenceIntf* {
    return new ValueSequence(aElement, aRoot, makeValues(aRoot));
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
