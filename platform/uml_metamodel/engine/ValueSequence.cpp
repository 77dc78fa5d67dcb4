#include "engine/ValueSequence.h"

#include <algorithm>
#include <memory>
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

/// The values of a feature with all that its element demands of whoever reads or changes them.
class ValueSequence final : public Proxy {
  using Ref = Kelm::Generic::Ref;

 public:
  ValueSequence(Element& aElement, Feature const& aRoot, SequenceIntf* aValues) noexcept
      : Proxy(Guarded(), aValues), fElement(aElement), fRoot(aRoot) {}

  int incRef() const override { return fElement.incRef(); }
  int decRef() const override { return fElement.decRef(); }
  int numRef() const override { return fElement.numRef(); }

  // What is read all day goes past the guard's virtual call.
  Ref generic_at(Deviant const& aDeviant, int aIndex) const override {
    checkReadable(fElement, aDeviant, kSource);
    return target().generic_at(aDeviant, aIndex);
  }
  int generic_size(Deviant const& aDeviant) const override {
    checkReadable(fElement, aDeviant, kSource);
    return target().generic_size(aDeviant);
  }
  std::uint64_t stamp(Deviant const& aDeviant) const override {
    checkReadable(fElement, aDeviant, kSource);
    return target().stamp(aDeviant);
  }
  int readBlock(Deviant const& aDeviant, int aIndex, int aCount, Kelm::Generic::Loan* aOut) const override {
    checkReadable(fElement, aDeviant, kSource);
    return target().readBlock(aDeviant, aIndex, aCount, aOut);
  }

  bool isLive() const override { return true; }
  bool splice(Deviant const& aDeviant, int aFirst, int aRemoved, std::vector<Ref> const& aValues) override {
    guard(aDeviant, Use::Change);
    auto const size = static_cast<std::size_t>(target().generic_size(aDeviant));
    auto const going = std::min(static_cast<std::size_t>(aRemoved), size);
    if (fRoot.fUpper > 0 && size - going + aValues.size() > static_cast<std::size_t>(fRoot.fUpper))
      failures::raiseTooMany(kSource, fRoot);
    return target().splice(aDeviant, aFirst, aRemoved, aValues);
  }

  void specialized_assign(SequenceIntf const* aOther, Deviant const& aDeviant, bool& aResult) override {
    assignValues(fElement, fRoot, aDeviant, aOther, aDeviant);
    aResult = true;
  }

 protected:
  void guard(Deviant const& aDeviant, Use aUse) const override {
    if (aUse == Use::Read) return checkReadable(fElement, aDeviant, kSource);
    checkWritable(fElement, aDeviant, kSource);
    fElement.model()->noteChange();
    // Features with a bound take a value as often as it is given.
    if (aUse == Use::Add && fRoot.fUpper > 0 && target().generic_size(Deviant()) >= fRoot.fUpper)
      failures::raiseNoRoom(kSource, fRoot);
  }

 private:
  Element& fElement;
  Feature const& fRoot;
};

/// A unique feature refuses what it holds, silently: the implementation does.
template <class T>
SequenceIntf* makeValues(bool aIsUnique) {
  auto const kind = aIsUnique ? Kelm::MULTI_INDEX : Kelm::STD_VECTOR;
  return Kelm::SequenceCreator::create<T>({Deviant(), kind, aIsUnique, false}).get();
}

}  // namespace

SequenceIntf& valueSequence(Element& aElement, Feature const& aRoot) {
  return Change::values(aElement, indexOf(aRoot), [&]() -> SequenceIntf* {
    std::unique_ptr<SequenceIntf> values(aRoot.fValueType == ValueType::String
                                             ? makeValues<String>(aRoot.fUnique)
                                             : makeValues<Boolean>(aRoot.fUnique));
    SequenceIntf* const made = new ValueSequence(aElement, aRoot, values.get());
    static_cast<void>(values.release());
    return made;
  });
}

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
