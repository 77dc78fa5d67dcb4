#pragma once

#include "frame/Boxing.h"
#include "frame/ScriptClass.h"
#include "kelm/DeviantRegistry.h"
#include "kelm/String.h"
#include "tarn/tarn.h"
#include "vesk/VeskValue.h"

/// Host values on their way to the metamodel. In the host's thread, as all of the frame.
namespace Kelm::mi {

/// One argument as a thunk holds it: the value, and whether the host's array had any element. Without one, or
/// with an instance missing in it, a reference is null.
template <class T>
struct UnboxedArgument {
  T fValue{};
  bool fHasValue = false;
};

/// The interface that `aTags` name on the object behind element 0 of `aArray`, or null for another kind of
/// object, with the deviant; whether there is an instance. `aClass` is the declared class of the argument.
/// Nothing is counted: the interface is there as long as the caller holds the array. Raises for an array that
/// has elements, but no objects.
struct UnboxedInterface {
  void* fInterface = nullptr;
  Deviant fDeviant;
  bool fHasValue = false;
};
UnboxedInterface unboxInterface(tarnArray const* aArray, vesk::VeskInterned aClass,
                                CooperativeVisitor::internal::ClassInfo const& aTags);

/// The same for an instance at hand.
UnboxedInterface unboxInstance(vesk::VeskInterface& aInstance, vesk::VeskInterned aClass,
                               CooperativeVisitor::internal::ClassInfo const& aTags);

/// A reference in an array whose declared class is not that of T. Out of line, as it stands in every thunk
/// with such an argument.
template <Reference T>
[[gnu::noinline]] UnboxedArgument<T> unboxReference(vesk::VeskValue aValue, vesk::VeskInterned aClass) {
  using Intf = typename T::InterfaceType;
  UnboxedInterface const found = unboxInterface(aValue.array(), aClass, tagPair<Intf, typename T::Domain>());
  if (!found.fHasValue) return {};
  return {T(static_cast<Intf*>(found.fInterface), found.fDeviant), true};
}

/// The index of a script, which counts from 1, as the kernel counts. All indices that are too low are -1,
/// which sequences refuse.
constexpr int kernelIndex(int aScriptIndex) noexcept { return aScriptIndex > 0 ? aScriptIndex - 1 : -1; }

/// How a host value becomes a T: `static UnboxedArgument<T> unbox(vesk::VeskValue)`. The host value stays the
/// caller's; the T holds counts of its own. Libraries specialise it for their types.
template <class T>
struct ArgumentUnboxer;

template <>
struct ArgumentUnboxer<bool> {
  static UnboxedArgument<bool> unbox(vesk::VeskValue aValue) noexcept { return {aValue.logical(), true}; }
};
template <>
struct ArgumentUnboxer<int> {
  static UnboxedArgument<int> unbox(vesk::VeskValue aValue) noexcept { return {aValue.int32(), true}; }
};
/// `fHasValue` is false for the empty text, which travels as an array without elements.
template <>
struct ArgumentUnboxer<String> {
  static UnboxedArgument<String> unbox(vesk::VeskValue aValue);
};
template <Reference T>
struct ArgumentUnboxer<T> {
  static UnboxedArgument<T> unbox(vesk::VeskValue aValue) {
    return unboxReference<T>(aValue, ScriptClass<T>::name());
  }
};

}  // namespace Kelm::mi
