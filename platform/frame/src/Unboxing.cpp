#include "frame/Unboxing.h"

#include "vesk/VeskInterface.h"

namespace Kelm::mi {

UnboxedInterface unboxInstance(vesk::VeskInterface& aInstance, vesk::VeskInterned aClass,
                               CooperativeVisitor::internal::ClassInfo const& aTags) {
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(aInstance.getNativeObject(aClass));
  return {object == nullptr ? nullptr : object->cast(aTags), deviant, true};
}

UnboxedInterface unboxInterface(tarnArray const* aArray, vesk::VeskInterned aClass,
                                CooperativeVisitor::internal::ClassInfo const& aTags) {
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
