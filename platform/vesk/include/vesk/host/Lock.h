#pragma once

#include "lum/visibility.h"

/// The lock under which a front runs whatever it runs, for what takes long and touches nothing of the host.
namespace vesk::host {

struct LockAccess {
  /// Gives the lock up; what it answers is for `fTake`, on the same thread.
  void* (*fRelease)() = nullptr;
  void (*fTake)(void* released) = nullptr;
};

/// Set by the front. Without one there is no lock.
UMLMM_API void setLockAccess(LockAccess access) noexcept;

/// Gives the lock up to the end of the scope, so that scripts run meanwhile on other threads. What is done in
/// the scope touches neither the host nor its instances, and nothing that a script can reach.
class UMLMM_API Unlocked {
 public:
  Unlocked();
  Unlocked(Unlocked const&) = delete;
  Unlocked& operator=(Unlocked const&) = delete;
  ~Unlocked();

 private:
  LockAccess fAccess;
  void* fReleased = nullptr;
};

}  // namespace vesk::host
