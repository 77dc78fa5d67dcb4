#pragma once

#include <sys/single_threaded.h>

#include <mutex>

/// What models share, and therefore threads: guarded once there is a second thread, and free of cost before.
namespace Kelm {

/// Whether the process has had one thread only so far.
inline bool isSingleThreaded() noexcept { return __libc_single_threaded != 0; }

/// Holds a mutex to the end of the scope.
class SharedGuard {
 public:
  explicit SharedGuard(std::mutex& aMutex) : fLock(aMutex, std::defer_lock) {
    if (!isSingleThreaded()) fLock.lock();
  }

 private:
  std::unique_lock<std::mutex> fLock;
};

}  // namespace Kelm
