#pragma once

#include <span>
#include <vector>

#include "vesk/fwd.h"

namespace vesk::host {

/// The search order of a class: itself, then its superclasses merged so that a class comes before its own
/// superclasses and the order of every superclass list is kept (C3). Throws if there is no such order.
std::vector<ClassRecord*> linearize(ClassRecord& cls, std::span<ClassRecord* const> superclasses);

}  // namespace vesk::host
