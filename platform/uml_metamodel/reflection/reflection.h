#pragma once

#include "engine/Feature.h"
#include "engine/metaobjects.h"

/// The metamodel's own objects: immortal, made once from the table of features.
namespace umlmm::reflection {

using engine::metaClass;
using engine::metaclassIndex;
Kelm::NSInterface::PropertyIntf const* metaProperty(int aFeature);
Kelm::NSInterface::PackageIntf const* metaPackage();
/// The index of a property; -1 for one of another metamodel.
int featureIndex(Kelm::NSInterface::PropertyIntf const& aProperty);
/// The number of an enumeration, or 0 for a primitive type; -1 for a type of another metamodel.
int dataTypeIndex(Kelm::NSInterface::DataTypeIntf const& aType, engine::ValueType& aKind);

/// The objects of an extension whose records have joined, and its package; both numbers are the first of it.
/// Published metaclasses know of its properties from `showPackage` on.
Kelm::NSInterface::PackageIntf const* addPackage(char const* aName, int aFirstMetaclass, int aFirstFeature);
void showPackage() noexcept;

}  // namespace umlmm::reflection
