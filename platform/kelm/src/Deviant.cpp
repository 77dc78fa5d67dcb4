#include "kelm/Deviant.h"

#include <utility>

#include "kelm/Asserter.h"

namespace Kelm {

bool DeviantAssertions::sAssertionsEnabled = true;

bool DeviantAssertions::enableAssertions(bool aEnabled) noexcept {
  return std::exchange(sAssertionsEnabled, aEnabled);
}

void DeviantAssertions::internal_assertWritable(NSInterface::ObjectIntf const*) const {
  Variant const* const variant = Deviant::fromWord(fWord).variant();
  if (variant != nullptr && variant->fReadOnly)
    raiseFailure("The object cannot be changed in a read-only variant of its model",
                 "kelm/Kelm/DeviantAssertions");
}

}  // namespace Kelm
