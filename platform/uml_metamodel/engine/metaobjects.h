#pragma once

#include "kelm/meta.h"

/// The metamodel's own objects, as far as the engine hands them out. Reflection, which stands above, defines
/// these.
namespace umlmm::engine {

Kelm::NSInterface::ClassIntf const* metaClass(int aMetaclass);
/// The index of a metaclass; -1 for a class of another metamodel.
int metaclassIndex(Kelm::NSInterface::ClassIntf const& aClass);

}  // namespace umlmm::engine
