#pragma once

#include <memory>
#include <vector>

#include "engine/HeldElements.h"
#include "kelm/kernel/containers/sequence/SequenceProxy.h"

namespace umlmm::operations {

/// The elements that a query found, all in one variant: a list that holds them. Reads by position and in
/// blocks go to the plain elements; whatever else is asked makes an ordinary list of them first, which then
/// stands for them.
class ElementResult final : public Kelm::SequenceProxy {
  using Deviant = Kelm::Deviant;
  using Ref = Kelm::Generic::Ref;
  using IteratorIntf = Kelm::Generic::IteratorIntf;
  using IteratorPtr = Kelm::Generic::IteratorPtr;

 public:
  ElementResult(std::vector<engine::Element*> aElements, Deviant const& aDeviant) noexcept
      : fElements(std::move(aElements)), fDeviant(aDeviant) {}

  Ref generic_at(Deviant const& aDeviant, int aIndex) const override;
  bool generic_empty(Deviant const& aDeviant) const override { return generic_size(aDeviant) == 0; }
  int generic_size(Deviant const& aDeviant) const override;
  std::uint64_t stamp(Deviant const& aDeviant) const override;
  int readBlock(Deviant const& aDeviant, int aIndex, int aCount, Kelm::Generic::Loan* aOut) const override;

  Ref generic_front(Deviant const& aDeviant) const override { return list().generic_front(aDeviant); }
  Ref generic_back(Deviant const& aDeviant) const override { return list().generic_back(aDeviant); }
  IteratorPtr generic_begin(Deviant const& aDeviant) const override {
    return owned(list().generic_begin(aDeviant));
  }
  IteratorPtr generic_end(Deviant const& aDeviant) const override {
    return owned(list().generic_end(aDeviant));
  }
  void generic_clear(Deviant const& aDeviant) override { list().generic_clear(aDeviant); }
  void generic_insert(Deviant const& aDeviant, int aIndex, Ref aValue) override {
    list().generic_insert(aDeviant, aIndex, std::move(aValue));
  }
  IteratorPtr generic_insert(Deviant const& aDeviant, IteratorIntf const* aPosition, Ref aValue) override {
    return owned(list().generic_insert(aDeviant, aPosition, std::move(aValue)));
  }
  IteratorPtr generic_erase(Deviant const& aDeviant, IteratorIntf const* aPosition) override {
    return owned(list().generic_erase(aDeviant, aPosition));
  }
  IteratorPtr generic_erase(Deviant const& aDeviant, IteratorIntf const* aFirst,
                            IteratorIntf const* aLast) override {
    return owned(list().generic_erase(aDeviant, aFirst, aLast));
  }
  void generic_erase(Deviant const& aDeviant, int aIndex) override { list().generic_erase(aDeviant, aIndex); }
  void generic_pop_back(Deviant const& aDeviant) override { list().generic_pop_back(aDeviant); }
  void generic_pop_front(Deviant const& aDeviant) override { list().generic_pop_front(aDeviant); }
  void generic_push_back(Deviant const& aDeviant, Ref aValue) override {
    list().generic_push_back(aDeviant, std::move(aValue));
  }
  void generic_push_front(Deviant const& aDeviant, Ref aValue) override {
    list().generic_push_front(aDeviant, std::move(aValue));
  }
  void generic_replace(Deviant const& aDeviant, int aIndex, Ref aValue) override {
    list().generic_replace(aDeviant, aIndex, std::move(aValue));
  }
  bool generic_contains(Deviant const& aDeviant, Ref aValue) const override {
    return list().generic_contains(aDeviant, std::move(aValue));
  }
  char const* generic_getVeskName(bool, bool, char const* aName) const override { return aName; }
  int generic_removeAll(Deviant const& aDeviant, Ref aValue) override {
    return list().generic_removeAll(aDeviant, std::move(aValue));
  }
  void generic_rearrange(Deviant const& aDeviant, std::span<int const> aFrom,
                         std::span<int const> aTo) override {
    list().generic_rearrange(aDeviant, aFrom, aTo);
  }

 private:
  Kelm::Generic::SequenceIntf& list() const;
  IteratorPtr owned(IteratorPtr aIterator) const;

  mutable engine::HeldElements fElements;
  Deviant fDeviant;
  mutable std::unique_ptr<Kelm::Generic::SequenceIntf> fList;
};

}  // namespace umlmm::operations
