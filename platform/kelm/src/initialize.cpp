#include <vector>

#include "kelm/Model.h"

namespace Kelm {

namespace {

struct Startup {
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
  if (all.fIsUp) return;
  // Up before the work: a callback that fails is not tried again, and one added meanwhile runs at once.
  all.fIsUp = true;
  for (auto const callback : std::exchange(all.fCallbacks, {})) callback();
}

void addStartupCallback(void (*aCallback)()) {
  if (startup().fIsUp)
    aCallback();
  else
    startup().fCallbacks.push_back(aCallback);
}

}  // namespace Kelm
