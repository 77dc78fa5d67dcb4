#include "frame/Boxing.h"

#include <array>
#include <cstdint>

#include "frame/ElementClassInfo.h"
#include "kelm/DeviantRegistry.h"
#include "kelm/ModelObject.h"
#include "tarn/tarn.h"
#include "vesk/VeskInterface.h"
#include "vesk/factory/BindingRegistry.h"

namespace Kelm::mi {

using vesk::VeskInterned;
using vesk::VeskValue;
using vesk::factory::basic::BindingRegistry;

namespace {

/// Objects answer their class name from permanent texts, so the address tells the token nearly always. The
/// text is compared all the same: a name in reused memory must not be taken for the one that stood there
/// before.
struct NameCacheEntry {
  char const* fName = nullptr;
  VeskInterned fToken;
};
constexpr std::size_t kNameCacheSize = 256;
constinit thread_local std::array<NameCacheEntry, kNameCacheSize> sNameCache{};

/// The open model of a variant; null for other deviants.
ModelObject* modelOf(Deviant const& aDeviant) noexcept {
  return aDeviant.variant() == nullptr ? nullptr : aDeviant.variant()->fModel;
}

/// What the host shows it holds, and the model in which it shows it.
void hold(ReferenceCountingIntf const* aObject, Deviant const& aDeviant) {
  if (aObject == nullptr) return;
  aObject->incRef();
  if (ModelObject* const model = modelOf(aDeviant)) model->enterHost();
}

ReferenceCountingIntf* asCounted(ReferenceCountingIntf const* aObject) {
  return queryInterface<ReferenceCountingIntf>(aObject);
}

}  // namespace

VeskInterned internClassName(char const* aName) {
  if (aName == nullptr || *aName == '\0') return {};
  auto const address = reinterpret_cast<std::uintptr_t>(aName);
  NameCacheEntry& entry = sNameCache[(address ^ (address >> 8)) % kNameCacheSize];
  if (entry.fName != aName || entry.fToken.view() != aName) entry = {aName, vesk::internal::intern(aName)};
  return entry.fToken;
}

VeskValue announceObject(ReferenceCountingIntf const* aObject, Deviant const& aDeviant, bool aImmutable,
                         VeskInterned aClass) {
  ReferenceCountingIntf* const counted = asCounted(aObject);
  bool created = false;
  VeskValue const value =
      BindingRegistry::announce(DeviantRegistry::getId(counted, aDeviant, aImmutable), aClass, created);
  if (created) hold(counted, aDeviant);
  return value;
}

void releaseBoundObject(void* aId) {
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(aId);
  ModelObject* const model = object == nullptr ? nullptr : modelOf(deviant);
  BindingRegistry::remove(aId);
  if (object != nullptr) object->decRef();
  // The object may have been the model, which is closed by then unless something else of it is shown.
  if (model != nullptr && modelOf(deviant) == model) model->leaveHost();
}

VeskValue ReferenceBoxer::boxObject(NSInterface::ObjectIntf const* aObject, Deviant const& aDeviant,
                                    bool aImmutable, VeskInterned aDefault) {
  VeskInterned const name = aObject == nullptr ? aDefault : internClassName(aObject->getVeskName(aImmutable));
  return announceObject(aObject, aDeviant, aImmutable, name);
}

VeskValue ReferenceBoxer::boxWithDefault(NSInterface::ObjectIntf const* aObject, Deviant const& aDeviant,
                                         bool aImmutable, VeskInterned aDefault) {
  VeskInterned const name =
      aObject == nullptr ? VeskInterned() : internClassName(aObject->getVeskName(aImmutable));
  return announceObject(aObject, aDeviant, aImmutable, name.empty() ? aDefault : name);
}

void checkConstructing(VeskInterned aClass, VeskValue aHostObject) {
  static_cast<void>(veskiGetArrayElement(aHostObject.array(), 0)->getNativeObject(aClass));
}

void bindConstructed(ReferenceCountingIntf const* aObject, Deviant const& aDeviant, VeskInterned aClass,
                     VeskValue aHostObject) {
  ReferenceCountingIntf* const counted = asCounted(aObject);
  BindingRegistry::announceForConstructor(DeviantRegistry::getId(counted, aDeviant, false), aClass,
                                          aHostObject.array(), true);
  hold(counted, aDeviant);
}

VeskValue boxIterator(Generic::IteratorIntf const* aIterator, Deviant const& aDeviant, bool aImmutable,
                      VeskInterned aClass) {
  if (aIterator == nullptr) raiseNullReference("kelm/kernel/containers/iterator/Iterator");
  Generic::IteratorIntf const* const copy = aIterator->clone().release();
  // The count of the binding keeps the copy; without a binding, giving this one back deletes it.
  copy->incRef();
  struct Hold {
    Generic::IteratorIntf const* fCopy;
    ~Hold() { fCopy->decRef(); }
  } const hold{copy};
  return announceObject(copy, aDeviant, aImmutable, aClass);
}

VeskValue Boxer<String>::box(String const& aValue) { return tarnCreateString_UTF16(aValue.data()); }

}  // namespace Kelm::mi
