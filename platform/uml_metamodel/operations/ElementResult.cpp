#include "operations/ElementResult.h"

#include <algorithm>

#include "engine/ElementRef.h"
#include "kelm/kernel/containers/iterator/IteratorProxy.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"

namespace umlmm::operations {

namespace {

/// As a new list has it, so that a pass in blocks goes on when one takes over.
constexpr std::uint64_t kStamp = 1;

}  // namespace

std::unique_ptr<Kelm::Generic::SequenceIntf> ElementResult::makeTarget() const {
  std::vector<Kelm::Object> values;
  values.reserve(fElements.all().size());
  for (engine::Element* const element : fElements.all()) values.emplace_back(element, fDeviant);
  std::unique_ptr<Kelm::Generic::SequenceIntf> list(
      Kelm::detail::SequenceImplementations<Kelm::Object>::makeList(std::move(values)));
  fElements.letGo();
  return list;
}

Kelm::Generic::Ref ElementResult::generic_at(Deviant const& aDeviant, int aIndex) const {
  if (hasTarget() || aIndex < 0 || aIndex >= generic_size(aDeviant))
    return target().generic_at(aDeviant, aIndex);
  return engine::refTo(*fElements.all()[static_cast<std::size_t>(aIndex)], fDeviant);
}

int ElementResult::generic_size(Deviant const& aDeviant) const {
  return hasTarget() ? target().generic_size(aDeviant) : static_cast<int>(fElements.all().size());
}

std::uint64_t ElementResult::stamp(Deviant const& aDeviant) const {
  return hasTarget() ? target().stamp(aDeviant) : kStamp;
}

int ElementResult::readBlock(Deviant const& aDeviant, int aIndex, int aCount,
                             Kelm::Generic::Loan* aOut) const {
  if (hasTarget()) return target().readBlock(aDeviant, aIndex, aCount, aOut);
  auto const all = fElements.all();
  int const count = blockLength(aIndex, aCount, all.size());
  if (count != 0) engine::lend(all.subspan(static_cast<std::size_t>(aIndex)), count, fDeviant, aOut);
  return count;
}

}  // namespace umlmm::operations
