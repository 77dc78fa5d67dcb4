#include <mutex>
#include <utility>
#include <vector>

#include "kelm/Model.h"

namespace Kelm {

namespace {

struct Startup {
  std::mutex fGuard;
  bool fIsUp = false;
  std::vector<void (*)()> fCallbacks;
};

Startup& startup() {
  static Startup& sStartup = *new Startup;
  return sStartup;
}

}  // namespace

void initialize() {
  Startup& all = startup();
  std::vector<void (*)()> callbacks;
  {
    std::lock_guard const guard(all.fGuard);
    // Up before the work: a callback that fails is not tried again, and one added meanwhile runs at once.
    if (std::exchange(all.fIsUp, true)) return;
    callbacks.swap(all.fCallbacks);
  }
  for (auto const callback : callbacks) callback();
}

void addStartupCallback(void (*aCallback)()) {
  Startup& all = startup();
  {
    std::lock_guard const guard(all.fGuard);
    if (!all.fIsUp) return all.fCallbacks.push_back(aCallback);
  }
  aCallback();
}

}  // namespace Kelm
