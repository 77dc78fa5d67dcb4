#pragma once

#include <utility>

namespace Kelm {

/// An object with static storage that is never destroyed, so that what dies at exit can still use it.
template <class T>
union Immortal {
  template <class... Arguments>
  explicit Immortal(Arguments&&... aArguments) : fObject(std::forward<Arguments>(aArguments)...) {}
  ~Immortal() {}

  T fObject;
};

}  // namespace Kelm
