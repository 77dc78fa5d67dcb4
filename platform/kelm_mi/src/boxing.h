#pragma once

#include "frame/Boxing.h"
#include "kelm/DeviantRegistry.h"
#include "vesk/factory/BindingRegistry.h"
#include "vesk/host/Instance.h"

namespace Kelm::mi {

/// ReferenceBoxer::boxObject, short for what scripts mostly meet: an object that the host knows already,
/// whose class name need not be asked for.
inline vesk::VeskValue boxMostlyBound(NSInterface::ObjectIntf const* aObject, Deviant aDeviant,
                                      bool aImmutable, vesk::VeskInterned aDefault) {
  if (aObject != nullptr) [[likely]] {
    auto* const object = const_cast<NSInterface::ObjectIntf*>(aObject);
    void* const id = DeviantRegistry::getId(object, aDeviant, aImmutable);
    if (auto* const instance = vesk::factory::basic::BindingRegistry::find(id))
      return instance->newReference();
  }
  return ReferenceBoxer::boxObject(aObject, aDeviant, aImmutable, aDefault);
}

}  // namespace Kelm::mi
