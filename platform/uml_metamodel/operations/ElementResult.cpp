#include "operations/ElementResult.h"

#include <algorithm>

#include "engine/ElementRef.h"
#include "kelm/kernel/containers/iterator/IteratorProxy.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"

namespace umlmm::queries {

namespace {

/// As a new list has it, so that a pass in blocks goes on when one takes over.
constexpr std::uint64_t kStamp = 1;

}  // namespace

ElementResult::ElementResult(std::vector<engine::Element*> aElements, Deviant const& aDeviant)
    : fElements(std::move(aElements)), fDeviant(aDeviant) {
  for (std::size_t at = 0; at < fElements.size(); ++at) {
    engine::prefetch(fElements, at);
    fElements[at]->incRef();
  }
}

ElementResult::~ElementResult() { letGo(); }

void ElementResult::letGo() const noexcept {
  for (std::size_t at = 0; at < fElements.size(); ++at) {
    engine::prefetch(fElements, at);
    fElements[at]->decRef();
  }
  fElements.clear();
}

Kelm::Generic::SequenceIntf& ElementResult::list() const {
  if (fList == nullptr) {
    std::vector<Kelm::Object> values;
    values.reserve(fElements.size());
    for (engine::Element* const element : fElements) values.emplace_back(element, fDeviant);
    fList.reset(Kelm::detail::SequenceImplementations<Kelm::Object>::makeList(std::move(values)));
    letGo();
  }
  return *fList;
}

Kelm::Generic::IteratorPtr ElementResult::owned(IteratorPtr aIterator) const {
  Kelm::keepOwner(aIterator.get(), this);
  return aIterator;
}

Kelm::Generic::Ref ElementResult::generic_at(Deviant const& aDeviant, int aIndex) const {
  if (fList != nullptr || aIndex < 0 || aIndex >= static_cast<int>(fElements.size()))
    return list().generic_at(aDeviant, aIndex);
  return engine::refTo(*fElements[static_cast<std::size_t>(aIndex)], fDeviant);
}

int ElementResult::generic_size(Deviant const& aDeviant) const {
  return fList != nullptr ? fList->generic_size(aDeviant) : static_cast<int>(fElements.size());
}

std::uint64_t ElementResult::stamp(Deviant const& aDeviant) const {
  return fList != nullptr ? fList->stamp(aDeviant) : kStamp;
}

int ElementResult::readBlock(Deviant const& aDeviant, int aIndex, int aCount,
                             Kelm::Generic::Loan* aOut) const {
  if (fList != nullptr) return fList->readBlock(aDeviant, aIndex, aCount, aOut);
  int const count = blockLength(aIndex, aCount, fElements.size());
  if (count != 0)
    engine::lend(std::span(fElements).subspan(static_cast<std::size_t>(aIndex)), count, fDeviant, aOut);
  return count;
}

}  // namespace umlmm::queries
