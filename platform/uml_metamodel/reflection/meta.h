#pragma once

#include "kelm/meta.h"

/// The metamodel's own objects: immortal, made once from the table of features.
namespace umlmm::reflection {

Kelm::NSInterface::ClassIntf const* metaClass(int aMetaclass);
Kelm::NSInterface::PropertyIntf const* metaProperty(int aFeature);
Kelm::NSInterface::PackageIntf const* metaPackage();
/// The index of a metaclass; -1 for a class of another metamodel.
int metaclassIndex(Kelm::NSInterface::ClassIntf const& aClass);

}  // namespace umlmm::reflection
