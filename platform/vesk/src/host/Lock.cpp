#include "vesk/host/Lock.h"

namespace vesk::host {

namespace {

LockAccess sAccess;

}  // namespace

void setLockAccess(LockAccess access) noexcept { sAccess = access; }

Unlocked::Unlocked() : fAccess(sAccess) {
  if (fAccess.fRelease) fReleased = fAccess.fRelease();
}

Unlocked::~Unlocked() {
  if (fAccess.fTake) fAccess.fTake(fReleased);
}

}  // namespace vesk::host
