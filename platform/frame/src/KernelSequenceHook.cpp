#include "frame/KernelSequenceHook.h"

#include <algorithm>
#include <array>
#include <vector>

#include "frame/Boxing.h"
#include "frame/Unboxing.h"
#include "kelm/Asserter.h"
#include "kelm/ClassObject.h"
#include "kelm/ModelElementIntf.h"

namespace Kelm::mi {

namespace {

struct Found {
  Generic::SequenceIntf& fSequence;
  Deviant fDeviant;
};

/// The sequence of an instance, which binds its own, whatever class is asked for.
Found sequenceOf(vesk::VeskInterface* aInstance) {
  UnboxedInterface const found =
      unboxInstance(*aInstance, {}, tagPair<Generic::SequenceIntf, VisitationDomain>());
  if (found.fInterface == nullptr)
    raiseFailure(words::kNullSequence, "kelm/kernel/containers/sequence/SequenceRef");
  return {*static_cast<Generic::SequenceIntf*>(found.fInterface), found.fDeviant};
}

}  // namespace

std::size_t KernelSequenceHook::size(vesk::VeskInterface* aSequence) const {
  auto const [sequence, deviant] = sequenceOf(aSequence);
  return static_cast<std::size_t>(sequence.generic_size(deviant));
}

std::size_t KernelSequenceHook::readBlock(vesk::VeskInterface* aSequence, std::size_t aFirst,
                                          std::size_t aCount, vesk::VeskValue* aValues,
                                          std::uint64_t& aStamp) const {
  auto const [sequence, deviant] = sequenceOf(aSequence);
  std::uint64_t const stamp = sequence.stamp(deviant);
  if (aStamp != 0 && aStamp != stamp) {
    aStamp = 0;
    return 0;
  }
  aStamp = stamp;
  std::array<Generic::Loan, kBlock> loans;
  int const wanted = static_cast<int>(std::min(aCount, kBlock));
  auto const count =
      static_cast<std::size_t>(sequence.readBlock(deviant, static_cast<int>(aFirst), wanted, loans.data()));
  box(loans.data(), count, aValues);
  return count;
}

std::size_t KernelSequenceHook::find(vesk::VeskInterface* aSequence, vesk::VeskValue aValue,
                                     std::size_t aFirst, std::size_t aLast) const {
  auto const [sequence, deviant] = sequenceOf(aSequence);
  int const index = search(sequence, deviant, aValue, static_cast<int>(aFirst));
  return index < 0 || static_cast<std::size_t>(index) >= aLast ? kNotFound : static_cast<std::size_t>(index);
}

void KernelSequenceHook::rearrange(vesk::VeskInterface* aSequence, std::span<int const> aFrom,
                                   std::span<int const> aTo) const {
  auto const [sequence, deviant] = sequenceOf(aSequence);
  sequence.generic_rearrange(deviant, aFrom, aTo);
}

void KernelSequenceHook::assign(vesk::VeskInterface* aSequence, vesk::VeskInterface* aValues) const {
  auto const [sequence, deviant] = sequenceOf(aSequence);
  bool isDone = false;
  sequence.specialized_assign(&sequenceOf(aValues).fSequence, deviant, isDone);
}

bool KernelSequenceHook::isUnique(vesk::VeskInterface* aSequence) const {
  return sequenceOf(aSequence).fSequence.isUnique();
}

bool KernelSequenceHook::isLive(vesk::VeskInterface* aSequence) const {
  return sequenceOf(aSequence).fSequence.isLive();
}

vesk::VeskValue KernelSequenceHook::shownObject(vesk::VeskInterface* aSequence) const {
  auto const [sequence, deviant] = sequenceOf(aSequence);
  NSInterface::ModelElementIntf* const element = sequence.shownElement();
  if (element == nullptr) return {};
  return ReferenceBoxer::boxObject(element, deviant, false, ScriptClass<ClassObject>::name());
}

bool KernelSequenceHook::splice(vesk::VeskInterface* aSequence, std::size_t aFirst, std::size_t aRemoved,
                                vesk::VeskValue const* aValues, std::size_t aCount) const {
  auto const found = sequenceOf(aSequence);
  std::vector<Generic::Ref> elements;
  elements.reserve(aCount);
  for (std::size_t i = 0; i < aCount; ++i) elements.push_back(element(aValues[i]));
  return found.fSequence.splice(found.fDeviant, static_cast<int>(aFirst), static_cast<int>(aRemoved),
                                elements);
}

bool KernelSequenceHook::append(vesk::VeskInterface* aSequence, vesk::VeskValue aValue) const {
  auto const [sequence, deviant] = sequenceOf(aSequence);
  sequence.generic_push_back(deviant, element(aValue));
  return true;
}

}  // namespace Kelm::mi
