#pragma once

#include "engine/metaobjects.h"

/// The metamodel's own objects: immortal, made once from the table of features.
namespace umlmm::reflection {

using engine::metaClass;
using engine::metaclassIndex;
Kelm::NSInterface::PropertyIntf const* metaProperty(int aFeature);
Kelm::NSInterface::PackageIntf const* metaPackage();

}  // namespace umlmm::reflection
