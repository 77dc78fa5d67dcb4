#include "frame/ElementClassInfo.h"

#include "kelm/DeviantRegistry.h"

namespace Kelm::mi {

void releaseBoundObject(void* aId) {
  ReferenceCountingIntf* const object = DeviantRegistry::getVariantInfo(aId).first;
  vesk::factory::basic::BindingRegistry::remove(aId);
  if (object != nullptr) object->decRef();
}

vesk::Identity identifyBoundObject(void const* aId) {
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(aId);
  if (object == nullptr) return {aId, 0};
  return {object, deviant.word()};
}

}  // namespace Kelm::mi
