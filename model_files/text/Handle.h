#pragma once

#include <unistd.h>

#include <utility>

namespace umlmm::files {

/// An open file of the system, closed at the end.
class Handle {
 public:
  explicit Handle(int aHandle) noexcept : fHandle(aHandle) {}
  Handle(Handle const&) = delete;
  Handle& operator=(Handle const&) = delete;
  Handle& operator=(Handle&& aOther) noexcept {
    std::swap(fHandle, aOther.fHandle);
    return *this;
  }
  ~Handle() { close(); }

  bool isValid() const noexcept { return fHandle >= 0; }
  int get() const noexcept { return fHandle; }
  /// False if what was written has been lost.
  bool close() noexcept { return fHandle < 0 || ::close(std::exchange(fHandle, -1)) == 0; }

 private:
  int fHandle;
};

}  // namespace umlmm::files
