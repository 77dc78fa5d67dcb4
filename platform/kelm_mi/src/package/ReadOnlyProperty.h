#pragma once

#include <type_traits>

#include "frame/Boxing.h"
#include "frame/Unboxing.h"
#include "kelm/Asserter.h"
#include "resultClasses.h"
#include "vesk/VeskClass.h"
#include "vesk/VeskPropInfo.h"

namespace Kelm::mi {

/// A property that a function computes from the object behind the instance.
struct ComputedProperty {
  using Read = vesk::VeskValue (*)(vesk::VeskInterface& aInstance);

  char const* fName;
  /// Data type or full class name of the value.
  char const* fType;
  Read fRead;
  /// Whether the value is an array, not a raw word.
  bool fHoldsArray;
};

namespace detail {

template <class Function>
struct PropertyFunction;
template <class R, class T>
struct PropertyFunction<R (*)(T const&)> {
  using Result = R;
  using Receiver = T;
};

template <auto Function>
vesk::VeskValue readComputed(vesk::VeskInterface& aInstance) {
  using Signature = PropertyFunction<decltype(Function)>;
  using Receiver = typename Signature::Receiver;
  using Intf = typename Receiver::InterfaceType;
  UnboxedInterface const found =
      unboxInstance(aInstance, ScriptClass<Receiver>::name(), tagPair<Intf, typename Receiver::Domain>());
  Receiver const receiver(static_cast<Intf*>(found.fInterface), found.fDeviant);
  if (receiver.isNull()) raiseNullReference("kelm/Kelm/Object_h");
  return Boxer<typename Signature::Result>::box(Function(receiver));
}

}  // namespace detail

/// `Function` takes the receiver by constant reference; it is never null: reading raises the null-reference
/// failure before. The texts must live as long as the class.
template <auto Function>
constexpr ComputedProperty computed(char const* aName, char const* aType) {
  using Result = typename detail::PropertyFunction<decltype(Function)>::Result;
  constexpr bool isRaw = std::is_same_v<Result, bool> || std::is_same_v<Result, int>;
  return {aName, aType, &detail::readComputed<Function>, !isRaw};
}

void addComputedProperty(vesk::VeskClass* aClass, ComputedProperty const& aProperty);

}  // namespace Kelm::mi
