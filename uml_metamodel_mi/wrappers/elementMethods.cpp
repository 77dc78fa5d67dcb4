#include "uml_metamodel_mi/wrappers/elementMethods.h"

#include "kelm/ClassObject.h"
#include "kelm/DeviantRegistry.h"

namespace umlmm::mi {

namespace {

Kelm::ImmutableProperty propertyAt(Kelm::IntrospectiveMethods const& aMethods, unsigned aId,
                                   Kelm::ImmutableClass const& aClass) {
  return {aMethods.metaPropertyTable[aId].fProperty, aClass.getDeviant()};
}

void checkId(unsigned aId, unsigned aBound, char const* aSource) {
  if (aId > aBound) Kelm::raiseFailure(Kelm::words::kInvalidMetaPropertyId, aSource);
}

}  // namespace

namespace detail {

Kelm::Object narrow(Kelm::ImmutableObject const& aOther,
                    Kelm::CooperativeVisitor::internal::ClassInfo const& aTags) {
  bool const fits = !aOther.isNull() && aOther.get()->cast(aTags) != nullptr;
  auto* const object = fits ? Kelm::queryInterface<Kelm::NSInterface::ObjectIntf>(aOther.get()) : nullptr;
  return Kelm::Object(object, aOther.getDeviant());
}

Kelm::ImmutableProperty propertyOf(Kelm::IntrospectiveMethods const& aMethods, unsigned aId, unsigned aBound,
                                   char const* aSource, Kelm::ImmutableClass (*aMetaClass)()) {
  checkId(aId, aBound, aSource);
  return propertyAt(aMethods, aId, aMetaClass());
}

void unlock(Kelm::ReferenceCountingIntf const* aObject, Kelm::Deviant const& aDeviant) {
  auto* const object = Kelm::queryInterface<Kelm::NSInterface::ObjectIntf>(aObject);
  Kelm::DeviantRegistry::setIsImmutable(Kelm::ImmutableObject(object, aDeviant), false);
}

}  // namespace detail

Kelm::ImmutableProperty kernelMetaProperty(unsigned aId) {
  using Kernel = Kelm::NSInterface::ClassObjectIntf;
  checkId(aId, Kernel::kKernelFeatureCount, "kelm/Kelm/ClassObject");
  return propertyAt(Kernel::sIntrospectiveMethods, aId, Kelm::ImmutableClassObject::MetaClass());
}

}  // namespace umlmm::mi
