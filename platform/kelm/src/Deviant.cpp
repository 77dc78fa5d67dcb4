#include "kelm/Deviant.h"

#include <utility>

#include "kelm/Asserter.h"

namespace Kelm {

constinit thread_local bool DeviantAssertions::sAssertionsEnabled = true;

bool DeviantAssertions::enableAssertions(bool aEnabled) noexcept {
  return std::exchange(sAssertionsEnabled, aEnabled);
}

void DeviantAssertions::raiseReadOnly() {
  raiseFailure("The object cannot be changed in a read-only variant of its model",
               "kelm/Kelm/DeviantAssertions");
}

}  // namespace Kelm
