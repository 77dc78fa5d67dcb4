#include "kelm/meta.h"

#include "asks.h"

namespace Kelm {

namespace NSInterface {

using CooperativeVisitor::internal::ClassInfo;

MetaObjectIntf::~MetaObjectIntf() = default;
TypeIntf::~TypeIntf() = default;
ClassIntf::~ClassIntf() = default;
DataTypeIntf::~DataTypeIntf() = default;
PropertyIntf::~PropertyIntf() = default;
PackageIntf::~PackageIntf() = default;

void* TypeIntf::cast(ClassInfo const& aClassInfo) const {
  return asksFor<TypeIntf>(aClassInfo) ? castAnswer(this) : MetaObjectIntf::cast(aClassInfo);
}

void* ClassIntf::cast(ClassInfo const& aClassInfo) const {
  return asksFor<ClassIntf>(aClassInfo) ? castAnswer(this) : TypeIntf::cast(aClassInfo);
}

void* DataTypeIntf::cast(ClassInfo const& aClassInfo) const {
  return asksFor<DataTypeIntf>(aClassInfo) ? castAnswer(this) : TypeIntf::cast(aClassInfo);
}

void* PropertyIntf::cast(ClassInfo const& aClassInfo) const {
  return asksFor<PropertyIntf>(aClassInfo) ? castAnswer(this) : MetaObjectIntf::cast(aClassInfo);
}

void* PackageIntf::cast(ClassInfo const& aClassInfo) const {
  return asksFor<PackageIntf>(aClassInfo) ? castAnswer(this) : MetaObjectIntf::cast(aClassInfo);
}

// There is no changeable form of a meta object, so the mutability is not looked at.
char const* TypeIntf::getVeskName(bool) const { return "Kelm.ImmutableType"; }
char const* ClassIntf::getVeskName(bool) const { return "Kelm.ImmutableClass"; }
char const* DataTypeIntf::getVeskName(bool) const { return "Kelm.ImmutableDataType"; }
char const* PropertyIntf::getVeskName(bool) const { return "Kelm.ImmutableProperty"; }
char const* PackageIntf::getVeskName(bool) const { return "Kelm.ImmutablePackage"; }

}  // namespace NSInterface

Deviant metaDeviant() noexcept {
  static constexpr Variant sVariant{nullptr, 0, true};
  return Deviant(&sVariant);
}

}  // namespace Kelm
