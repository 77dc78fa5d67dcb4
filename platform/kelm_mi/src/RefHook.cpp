#include "RefHook.h"

#include <algorithm>
#include <array>
#include <utility>

#include "kelm/Generic.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"
#include "tarn/tarn.h"
#include "uml_metamodel_mi/frame/Unboxing.h"

namespace Kelm::mi {

namespace {

constexpr int kBlock = 64;

ImmutableSequence<Object> sequenceOf(vesk::VeskInterface* aSequence, vesk::VeskInterned aClass) {
  UnboxedInterface const found =
      unboxInstance(*aSequence, aClass, tagPair<Generic::SequenceIntf, VisitationDomain>());
  return {static_cast<Generic::SequenceIntf*>(found.fInterface), found.fDeviant};
}

/// Gives back what was boxed when a later element fails.
struct BoxedSoFar {
  vesk::VeskValue* fValues;
  std::size_t fCount = 0;
  ~BoxedSoFar() {
    for (std::size_t i = 0; i < fCount; ++i) tarnDestroyArray(fValues[i].array());
  }
};

}  // namespace

std::size_t RefHook::size(vesk::VeskInterface* aSequence) const {
  return static_cast<std::size_t>(sequenceOf(aSequence, fClass.fName).size());
}

std::size_t RefHook::readBlock(vesk::VeskInterface* aSequence, std::size_t aFirst, std::size_t aCount,
                               vesk::VeskValue* aValues) const {
  ImmutableSequence<Object> const sequence = sequenceOf(aSequence, fClass.fName);
  std::array<Generic::Ref, kBlock> refs;
  std::uint64_t stamp = 0;
  BoxedSoFar boxed{aValues};
  while (boxed.fCount < aCount) {
    int const wanted = static_cast<int>(std::min<std::size_t>(kBlock, aCount - boxed.fCount));
    int const read = sequence.checked()->readBlock(
        sequence.getDeviant(), static_cast<int>(aFirst + boxed.fCount), wanted, refs.data(), stamp);
    for (int i = 0; i < read; ++i) {
      auto const* const object = static_cast<NSInterface::ObjectIntf const*>(refs[i].fHolder);
      aValues[boxed.fCount] = fClass.box(object, Deviant::fromWord(refs[i].fReserved));
      ++boxed.fCount;
    }
    if (read < wanted) break;
  }
  return std::exchange(boxed.fCount, 0);
}

}  // namespace Kelm::mi
