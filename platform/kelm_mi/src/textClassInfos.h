#pragma once

#include "kelm_mi/families.h"
#include "vesk/fwd.h"

/// Read-only sequences of string objects and their iterators; texts to scripts. As in
/// kelm_mi/refClassInfos.h.
namespace Kelm::mi {

vesk::VeskClassInfo* createTextSequenceClassInfo(vesk::ClassFamily const& aFamily, char const* aDescription);
vesk::VeskClassInfo* createTextIteratorClassInfo(vesk::ClassFamily const& aFamily, char const* aDescription);

}  // namespace Kelm::mi
