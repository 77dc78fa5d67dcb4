#pragma once

#include <memory>
#include <vector>

#include "engine/HeldElements.h"
#include "kelm/kernel/containers/sequence/SequenceProxy.h"

namespace umlmm::operations {

/// The elements that a query found, all of one model and in one variant: a list that holds them, so that
/// those that are destroyed can still be asked whether they are valid. It is free-standing: what is done to
/// it leaves the model as it is, and what happens to the model leaves it. Reads by position and in blocks go
/// to the plain elements; whatever else is asked makes an ordinary list of them first, which then stands for
/// them. Where memory for that fails, the list is as before.
class ElementResult final : public Kelm::GenericReferenceCountingSequenceProxy {
  using Deviant = Kelm::Deviant;
  using Ref = Kelm::Generic::Ref;

 public:
  ElementResult(std::vector<engine::Element*> aElements, Deviant const& aDeviant) noexcept
      : fElements(std::move(aElements)), fDeviant(aDeviant) {}

  Ref generic_at(Deviant const& aDeviant, int aIndex) const override;
  bool generic_empty(Deviant const& aDeviant) const override { return generic_size(aDeviant) == 0; }
  int generic_size(Deviant const& aDeviant) const override;
  std::uint64_t stamp(Deviant const& aDeviant) const override;
  int readBlock(Deviant const& aDeviant, int aIndex, int aCount, Kelm::Generic::Loan* aOut) const override;
  int indexOf(Deviant const& aDeviant, Ref const& aValue, int aFrom) const override {
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): the walk in blocks, for which no list is made
    return Kelm::Generic::SequenceIntf::indexOf(aDeviant, aValue, aFrom);
  }

 private:
  std::unique_ptr<Kelm::Generic::SequenceIntf> makeTarget() const override;

  mutable engine::HeldElements fElements;
  Deviant fDeviant;
};

}  // namespace umlmm::operations
