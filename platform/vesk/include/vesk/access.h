#pragma once

#include <set>

#include "vesk/interned.h"

namespace vesk {

/// Who may use a member, as its maker tells it; this host enforces nothing of it. Access code 0 is public.
struct ExtendedAccess {
  int fAccess = 0;
  std::set<VeskInterned> fClasses;
  std::set<VeskInterned> fPackages;
};

}  // namespace vesk
