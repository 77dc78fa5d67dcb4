#include "kelm/ReferenceCountingIntf.h"

#include "asks.h"
#include "kelm/DeviantRegistry.h"

namespace Kelm {

ReferenceCountingIntf::~ReferenceCountingIntf() {
  if (fIsRegistered) DeviantRegistry::retract(this);
}

int ReferenceCountingIntf::incRef() const { return 0; }
int ReferenceCountingIntf::decRef() const { return 0; }
int ReferenceCountingIntf::numRef() const { return 0; }
void const* ReferenceCountingIntf::getListOfReferences() const { return nullptr; }

void const* ReferenceCountingIntf::getVisitMethod(LightVector<LightVector<unsigned long>> const&) const {
  return nullptr;
}

void* ReferenceCountingIntf::cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const {
  return asksFor<ReferenceCountingIntf>(aClassInfo) ? castAnswer(this) : nullptr;
}

}  // namespace Kelm
