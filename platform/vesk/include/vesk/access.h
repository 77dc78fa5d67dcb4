#pragma once

#include <set>

#include "vesk/interned.h"

namespace vesk {

/// Access code 0 is public; all others are shown and not enforced.
struct ExtendedAccess {
  int fAccess = 0;
  std::set<VeskInterned> fClasses;
  std::set<VeskInterned> fPackages;
};

}  // namespace vesk
