#include "frame/ElementClassInfo.h"

#include "frame/Boxing.h"
#include "kelm/Asserter.h"
#include "kelm/DeviantRegistry.h"
#include "kelm/ElementQueries.h"
#include "kelm/ModelCache.h"
#include "kelm/ModelElementIntf.h"
#include "kelm/failureWords.h"

namespace Kelm::mi {

namespace {

constexpr char kSource[] = "frame/ElementClassInfo";

/// The open model of an id; null for what is none.
ModelObject* modelOf(void const* aId) {
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(aId);
  auto* const model = dynamic_cast<ModelObject*>(object);
  return model != nullptr && model->isOpen() ? model : nullptr;
}

/// What changes through an id is refused for one that is read-only.
void checkChangeable(void const* aId, Deviant const& aDeviant) {
  if (DeviantRegistry::isImmutable(aId)) raiseFailure(words::kImmutableObject, kSource);
  if (aDeviant.variant()->fReadOnly) raiseFailure(words::kReadOnlyVariant, kSource);
}

}  // namespace

BoundObjectHook& BoundObjectHook::instance() noexcept {
  static BoundObjectHook sHook;
  return sHook;
}

vesk::Identity BoundObjectHook::identify(void const* aId) const {
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(aId);
  if (object == nullptr) return {aId, 0};
  return {object, deviant.word()};
}

lum::HostPlace* BoundObjectHook::hostPlace(void const* aId) const {
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(aId);
  auto const* const element = dynamic_cast<NSInterface::ModelElementIntf*>(object);
  ModelObject* const model = element != nullptr ? element->model() : modelOf(aId);
  return model == nullptr ? nullptr : &model->hostPlace();
}

void BoundObjectHook::letGo(void const* aId) const {
  if (ModelObject const* const model = modelOf(aId)) ModelCache::instance().letGo(*model);
}

vesk::VeskValue BoundObjectHook::copy(void const* aId, void const* aPlace) const {
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(aId);
  if (auto* const element = dynamic_cast<NSInterface::ModelElementIntf*>(object)) {
    if (!element->existsIn(deviant)) raiseFailure(words::kNotInVariant, kSource);
    checkChangeable(aId, deviant);
    auto* const copy = elementCopying().clone(*element, deviant);
    return ReferenceBoxer::boxObject(copy, deviant, false, ScriptClass<ClassObject>::name());
  }
  if (dynamic_cast<ModelObject*>(object) == nullptr) return {};
  ModelObject* const from = modelOf(aId);
  ModelObject* const to = modelOf(aPlace);
  if (from == nullptr || to == nullptr) raiseFailure(words::kNotInVariant, kSource);
  Deviant const place = DeviantRegistry::getVariantInfo(aPlace).second;
  checkChangeable(aPlace, place);
  elementCopying().copyInto(*from, *to);
  return ReferenceBoxer::boxObject(to, place, false, ScriptClass<Model>::name());
}

}  // namespace Kelm::mi
