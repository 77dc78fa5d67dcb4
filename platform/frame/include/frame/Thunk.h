#pragma once

#include <type_traits>
#include <utility>

#include "frame/Boxing.h"
#include "frame/Unboxing.h"
#include "vesk/factory/Invoker.h"

/// Thunks, made from the type of the typed function alone: functions of one type share one thunk.
///
/// A thunk unboxes all arguments in order before it calls; what an unboxer raises ends the call there.
/// References are counted until the call is over, so that no code that the function runs can take one from
/// under it. What the function throws passes through unchanged. The number of arguments is the host's affair:
/// it is that of the signature, which is declared beside the function (addTypedMethod.h) and is not checked
/// against its type.
namespace Kelm::mi {

using vesk::factory::impl::Invoker;

/// What must be there for a call to go on: the receiver's reference, which may be a null one, or the object
/// behind it. The second is for functions that call into a receiver without looking.
enum class SelfCheck { Reference, Implementation };

/// How the values of a call cross: by their C++ types alone. Another marshal knows more of the method at
/// hand.
class TypedMarshal {
 public:
  TypedMarshal(Invoker const&, vesk::VeskValue const*) noexcept {}
  template <class T>
  UnboxedArgument<T> unbox(vesk::VeskValue aValue) const {
    return ArgumentUnboxer<T>::unbox(aValue);
  }
  template <class T>
  vesk::VeskValue box(T&& aValue) const {
    return Boxer<std::remove_cvref_t<T>>::box(std::forward<T>(aValue));
  }
};

namespace detail {

/// One parameter of a typed function. A pointer parameter gets the address of the unboxed value.
template <class Parameter>
class Argument {
  using Value = std::remove_cv_t<std::remove_pointer_t<std::remove_cvref_t<Parameter>>>;

 public:
  template <class Marshal>
  Argument(Marshal const& aMarshal, vesk::VeskValue aValue)
      : fArgument(aMarshal.template unbox<Value>(aValue)) {}

  decltype(auto) pass() noexcept {
    if constexpr (std::is_pointer_v<Parameter>)
      return &fArgument.fValue;
    else
      return (fArgument.fValue);
  }
  template <SelfCheck Check>
  void const* self() const noexcept {
    if constexpr (Check == SelfCheck::Implementation)
      return fArgument.fValue.get();
    else
      return &fArgument.fValue;
  }

 private:
  UnboxedArgument<Value> fArgument;
};

/// Arguments unboxed in order and released in the reverse one.
template <class... Parameters>
class Arguments {
 public:
  template <class Marshal>
  Arguments(Marshal const&, vesk::VeskValue const*) noexcept {}
  template <class Call, class... Passed>
  decltype(auto) apply(Call const& aCall, Passed&&... aPassed) {
    return aCall(std::forward<Passed>(aPassed)...);
  }
};

template <class First, class... Rest>
class Arguments<First, Rest...> {
 public:
  template <class Marshal>
  Arguments(Marshal const& aMarshal, vesk::VeskValue const* aValues)
      : fFirst(aMarshal, aValues[0]), fRest(aMarshal, aValues + 1) {}
  template <class Call, class... Passed>
  decltype(auto) apply(Call const& aCall, Passed&&... aPassed) {
    return fRest.apply(aCall, std::forward<Passed>(aPassed)..., fFirst.pass());
  }
  template <SelfCheck Check>
  void const* self() const noexcept {
    return fFirst.template self<Check>();
  }

 private:
  Argument<First> fFirst;
  Arguments<Rest...> fRest;
};

template <class Marshal, class Call, class List>
void giveResult(Marshal const& aMarshal, Call const& aCall, List& aArguments, int& aResultCount,
                vesk::VeskValue* aResults) {
  using Result = decltype(aArguments.apply(aCall));
  if constexpr (std::is_void_v<Result>) {
    aArguments.apply(aCall);
  } else {
    aResults[0] = aMarshal.box(aArguments.apply(aCall));
    if (aResultCount == 0) aResultCount = 1;
  }
}

/// The thunks of functions of one type. `Receiver` is the class that a member function's receiver is unboxed
/// as.
template <class Function, class Receiver, SelfCheck Check, class Marshal>
struct ThunkOf;

template <class Result, class... Parameters, bool NoExcept, SelfCheck Check, class Marshal>
struct ThunkOf<Result (*)(Parameters...) noexcept(NoExcept), void, Check, Marshal> {
  static void run(Invoker const& aInvoker, vesk::VeskClient const*, int& aResultCount,
                  vesk::VeskValue* aResults, int, vesk::VeskValue const* aValues) {
    auto const function = aInvoker.function<Result (*)(Parameters...)>();
    Marshal const marshal(aInvoker, aValues);
    Arguments<Parameters...> arguments(marshal, aValues);
    if constexpr (sizeof...(Parameters) > 0)
      vesk::factory::impl::validateSelfPointer(arguments.template self<Check>(), aInvoker);
    giveResult(marshal, function, arguments, aResultCount, aResults);
  }
};

template <class Member, class Receiver, SelfCheck Check, class Marshal, class Result, class... Parameters>
struct MemberThunk {
  static void run(Invoker const& aInvoker, vesk::VeskClient const*, int& aResultCount,
                  vesk::VeskValue* aResults, int, vesk::VeskValue const* aValues) {
    auto const member = aInvoker.function<Member>();
    Marshal const marshal(aInvoker, aValues);
    Arguments<Receiver&, Parameters...> arguments(marshal, aValues);
    vesk::factory::impl::validateSelfPointer(arguments.template self<Check>());
    auto const call = [member](Receiver& aReceiver, auto&&... aPassed) -> Result {
      return (aReceiver.*member)(std::forward<decltype(aPassed)>(aPassed)...);
    };
    giveResult(marshal, call, arguments, aResultCount, aResults);
  }
};

template <class Result, class Owner, class... Parameters, bool NoExcept, class Receiver, SelfCheck Check,
          class Marshal>
struct ThunkOf<Result (Owner::*)(Parameters...) noexcept(NoExcept), Receiver, Check, Marshal>
    : MemberThunk<Result (Owner::*)(Parameters...), Receiver, Check, Marshal, Result, Parameters...> {};
template <class Result, class Owner, class... Parameters, bool NoExcept, class Receiver, SelfCheck Check,
          class Marshal>
struct ThunkOf<Result (Owner::*)(Parameters...) const noexcept(NoExcept), Receiver, Check, Marshal>
    : MemberThunk<Result (Owner::*)(Parameters...) const, Receiver, Check, Marshal, Result, Parameters...> {};

template <class Function>
struct ConstructorThunk;

template <class Created, class... Parameters>
struct ConstructorThunk<Created (*)(Parameters...)> {
  static void run(Invoker const& aInvoker, vesk::VeskClient const*, int& aResultCount,
                  vesk::VeskValue* aResults, int, vesk::VeskValue const* aValues) {
    auto const function = aInvoker.function<Created (*)(Parameters...)>();
    Arguments<Parameters...> arguments(TypedMarshal(aInvoker, aValues), aValues);
    checkConstructing(ScriptClass<Created>::name(), aResults[0]);
    Created const created = arguments.apply(function);
    bindConstructed(created.get(), created.getDeviant(), ScriptClass<Created>::name(), aResults[0]);
    if (aResultCount == 0) aResultCount = 1;
  }
};

}  // namespace detail

/// Gives an Invoker its typed function and thunk.
using Bind = void (*)(Invoker&);

/// A free function; arguments start with its first parameter.
template <auto Function, SelfCheck Check = SelfCheck::Reference, class Marshal = TypedMarshal>
void bindFunction(Invoker& aInvoker) {
  aInvoker.setFunction(Function);
  aInvoker.setThunk(&detail::ThunkOf<decltype(Function), void, Check, Marshal>::run);
}

/// A member function, run on a receiver of class `Receiver`, which may derive from the class of the member.
/// The receiver is the first of the host's arguments.
template <auto Member, class Receiver, SelfCheck Check = SelfCheck::Reference, class Marshal = TypedMarshal>
void bindMember(Invoker& aInvoker) {
  aInvoker.setFunction(Member);
  aInvoker.setThunk(&detail::ThunkOf<decltype(Member), Receiver, Check, Marshal>::run);
}

/// A function that makes the reference which a new instance of its script class is to hold. It is not called
/// when the host has no instance ready.
template <auto Function>
void bindConstructor(Invoker& aInvoker) {
  aInvoker.setFunction(Function);
  aInvoker.setThunk(&detail::ConstructorThunk<decltype(Function)>::run);
}

}  // namespace Kelm::mi
