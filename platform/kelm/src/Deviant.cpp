#include "kelm/Deviant.h"

#include <utility>

#include "kelm/failureWords.h"

namespace Kelm {

constinit thread_local bool DeviantAssertions::sAssertionsEnabled = true;

bool DeviantAssertions::enableAssertions(bool aEnabled) noexcept {
  return std::exchange(sAssertionsEnabled, aEnabled);
}

void DeviantAssertions::raiseReadOnly() {
  raiseFailure(words::kReadOnlyVariant, "kelm/Kelm/DeviantAssertions");
}

}  // namespace Kelm
