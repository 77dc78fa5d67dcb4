#pragma once

#include "RefClass.h"
#include "frame/KernelSequenceHook.h"

namespace Kelm::mi {

/// How objects cross when the host walks and searches a sequence of them. `aClass` must outlive it.
class RefElements {
 public:
  using Value = Object;
  static constexpr bool kIsCodeFree = false;

  explicit RefElements(RefClass const& aClass) noexcept : fClass(&aClass) {}
  RefClass const& refClass() const noexcept { return *fClass; }

  char const* name() const { return fClass->fElement.c_str(); }
  vesk::VeskValue box(Object const& aObject) const {
    return fClass->box(aObject.get(), aObject.getDeviant());
  }
  Object unbox(vesk::VeskValue aValue) const { return fClass->unboxElement(aValue); }
  /// What scripts mostly meet: all objects have an instance already. Runs no code of anybody, so it needs no
  /// counts.
  bool boxAtOnce(Generic::Loan const* aLoans, std::size_t aCount, vesk::VeskValue* aValues) const;
  /// An element is found in its own variant alone, whatever the view of it.
  int find(Generic::SequenceIntf const& aSequence, Deviant const& aDeviant, vesk::VeskValue aValue,
           int aFirst) const;

 private:
  RefClass const* fClass;
};

using RefHook = SequenceHookOf<RefElements>;

}  // namespace Kelm::mi
