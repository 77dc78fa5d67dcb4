#pragma once

#include "vesk/fwd.h"

/// Read-only sequences of string objects and their iterators; texts to scripts. As in
/// kelm_mi/refClassInfos.h.
namespace Kelm::mi {

vesk::VeskClassInfo* createTextSequenceClassInfo(char const* aShortName, char const* aDescription,
                                                 char const* aClassName, char const* aIteratorClass);
vesk::VeskClassInfo* createTextIteratorClassInfo(char const* aShortName, char const* aDescription,
                                                 char const* aClassName);

}  // namespace Kelm::mi
