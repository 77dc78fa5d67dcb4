#include "kelm/ObjectIntf.h"

#include "asks.h"
#include "kelm/Asserter.h"
#include "kelm/meta.h"

namespace Kelm::NSInterface {

ObjectIntf::~ObjectIntf() = default;

void* ObjectIntf::cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const {
  return asksFor<ObjectIntf>(aClassInfo) ? castAnswer(this) : ReferenceCountingIntf::cast(aClassInfo);
}

ImmutableType ObjectIntf::getMetaType(Deviant const& aDeviant) const {
  return ImmutableType(nullptr, aDeviant);
}

void ObjectIntf::destroy(Deviant const&) {
  raiseFailure("An object of this kind cannot be destroyed", "kelm/Kelm/Object_h");
}

}  // namespace Kelm::NSInterface
