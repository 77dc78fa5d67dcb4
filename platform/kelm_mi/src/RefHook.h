#pragma once

#include "RefClass.h"
#include "vesk/VeskClassInfo.h"

namespace Kelm::mi {

/// Lets the host walk a sequence of objects in blocks. `aClass` must outlive the hook.
class RefHook final : public vesk::SequenceHook {
 public:
  explicit RefHook(RefClass const& aClass) noexcept : fClass(aClass) {}

  std::size_t size(vesk::VeskInterface* aSequence) const override;
  std::size_t readBlock(vesk::VeskInterface* aSequence, std::size_t aFirst, std::size_t aCount,
                        vesk::VeskValue* aValues) const override;
  char const* elementType() const override { return fClass.fElement.c_str(); }

 private:
  RefClass const& fClass;
};

}  // namespace Kelm::mi
