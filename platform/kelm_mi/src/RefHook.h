#pragma once

#include "RefClass.h"
#include "uml_metamodel_mi/frame/KernelSequenceHook.h"

namespace Kelm::mi {

/// Lets the host walk and search a sequence of objects. `aClass` must outlive the hook.
class RefHook final : public KernelSequenceHook {
 public:
  explicit RefHook(RefClass const& aClass) noexcept : fClass(aClass) {}

  char const* elementType() const override { return fClass.fElement.c_str(); }
  RefClass const& refClass() const noexcept { return fClass; }

 protected:
  void box(Generic::Loan const* aLoans, std::size_t aCount, vesk::VeskValue* aValues) const override;
  int search(Generic::SequenceIntf const& aSequence, Deviant const& aDeviant, vesk::VeskValue aValue,
             int aFirst) const override;
  Generic::Ref element(vesk::VeskValue aValue) const override;

 private:
  bool boxBound(Generic::Loan const* aLoans, std::size_t aCount, vesk::VeskValue* aValues) const;

  RefClass const& fClass;
};

}  // namespace Kelm::mi
