#pragma once

#include <concepts>
#include <span>

#include "RefClass.h"
#include "frame/addTypedMethod.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"

namespace Kelm::mi {

/// The invoker of a method that knows its class, on which depends how elements cross. `aClass` must outlive
/// it.
class RefInvoker final : public Invoker {
 public:
  explicit RefInvoker(RefClass const& aClass) noexcept : fClass(aClass) {}
  RefClass const& refClass() const noexcept { return fClass; }

 private:
  RefClass const& fClass;
};

/// An object that a script looks for in a sequence, whether or not it may be an element.
struct SoughtObject {
  Object fObject;
};

/// How the values of a method of a class of sequences or iterators of objects cross. An element that is given
/// must be one of the receiver's own class: anything else raises the incorrect-type failure before the call.
class RefMarshal {
 public:
  RefMarshal(Invoker const& aInvoker, vesk::VeskValue const* aArguments) noexcept
      : fClass(static_cast<RefInvoker const&>(aInvoker).refClass()), fArguments(aArguments) {}

  template <class T>
  UnboxedArgument<T> unbox(vesk::VeskValue aValue) const {
    if constexpr (std::same_as<T, Object>) {
      return {elementClass().unboxElement(aValue), true};
    } else if constexpr (std::same_as<T, SoughtObject>) {
      return {{fClass.unboxObject(aValue)}, true};
    } else if constexpr (std::derived_from<T, SequenceRef>) {
      return unboxHandle<T, Generic::SequenceIntf>(aValue, fClass.fName);
    } else if constexpr (std::derived_from<T, IteratorRef>) {
      return unboxHandle<T, Generic::IteratorIntf>(aValue, ScriptClass<Object>::name());
    } else {
      return ArgumentUnboxer<T>::unbox(aValue);
    }
  }
  template <class T>
  vesk::VeskValue box(T const& aValue) const {
    if constexpr (std::same_as<T, Object>)
      return fClass.box(aValue.get(), aValue.getDeviant());
    else if constexpr (std::derived_from<T, SequenceRef>)
      return announceObject(aValue.get(), aValue.getDeviant(), false, fClass.fName);
    else if constexpr (std::derived_from<T, IteratorRef>)
      return boxPosition(aValue);
    else
      return Boxer<T>::box(aValue);
  }

 private:
  template <class T, class Intf>
  static UnboxedArgument<T> unboxHandle(vesk::VeskValue aValue, vesk::VeskInterned aClass) {
    UnboxedInterface const found = unboxInterface(aValue.array(), aClass, tagPair<Intf, VisitationDomain>());
    return {T(static_cast<Intf*>(found.fInterface), found.fDeviant), found.fHasValue};
  }
  vesk::VeskValue boxPosition(IteratorRef const& aPosition) const;
  /// The receiver's own class decides what goes in: the method may be that of a class further up.
  RefClass const& elementClass() const;

  RefClass const& fClass;
  vesk::VeskValue const* fArguments;
};

/// Gives a class methods whose values cross by RefMarshal. `aInfo` must live as long as the class.
void addRefMethods(vesk::VeskClass* aClass, std::span<MethodRow const> aRows, RefClass const& aInfo);

}  // namespace Kelm::mi
