#include "kelm_mi/sequences/rows.h"

#include <algorithm>
#include <array>

#include "vesk/VeskInterface.h"

namespace Kelm::mi {

namespace {

constexpr std::size_t kBlock = 32;

struct Found {
  Generic::SequenceIntf const* fSequence;
  Deviant fDeviant;
};

/// The sequence of an instance. An instance binds its own sequence, whatever class is asked for.
Found sequenceOf(vesk::VeskInterface* aInstance) {
  UnboxedInterface const found =
      unboxInstance(*aInstance, {}, tagPair<Generic::SequenceIntf, VisitationDomain>());
  if (found.fInterface == nullptr) raiseFailure(words::kNullSequence, sources::kSequenceRef);
  return {static_cast<Generic::SequenceIntf const*>(found.fInterface), found.fDeviant};
}

}  // namespace

std::size_t ValueSequenceHook::size(vesk::VeskInterface* aSequence) const {
  auto const [sequence, deviant] = sequenceOf(aSequence);
  return static_cast<std::size_t>(sequence->generic_size(deviant));
}

std::size_t ValueSequenceHook::readBlock(vesk::VeskInterface* aSequence, std::size_t aFirst,
                                         std::size_t aCount, vesk::VeskValue* aValues) const {
  auto const [sequence, deviant] = sequenceOf(aSequence);
  std::array<Generic::Ref, kBlock> block;
  std::uint64_t stamp = 0;
  int const wanted = static_cast<int>(std::min(aCount, kBlock));
  int const got = sequence->readBlock(deviant, static_cast<int>(aFirst), wanted, block.data(), stamp);
  for (int i = 0; i < got; ++i) aValues[i] = box(block[i]);
  return static_cast<std::size_t>(got);
}

}  // namespace Kelm::mi
