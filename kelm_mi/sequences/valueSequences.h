#pragma once

#include "frame/KernelSequenceHook.h"
#include "frame/sequenceMethods.h"
#include "kelm/Asserter.h"
#include "kelm/kernel/containers/Ref.h"
#include "uml_metamodel_mi/datatypes/conversions.h"

/// What the classes of value sequences and iterators share.
namespace Kelm::mi {

/// The names in the signatures of a class of handles H on values T, and iterators I over them. They live as
/// long as the process.
template <class H, class T>
ContainerNames valueContainerNames() {
  return {ScriptClass<H>::name().c_str(), ValueType<T>::element()};
}
template <class H, class T, class I>
ContainerNames valueContainerNames() {
  return {ScriptClass<H>::name().c_str(), ValueType<T>::element(), ScriptClass<I>::name().c_str()};
}

/// How values cross when the host walks and searches a sequence.
template <class T>
struct ValueElements {
  using Value = T;
  // The first literal of an enumeration that is boxed may fill its class.
  static constexpr bool kIsCodeFree = !EnumerationType<T>;

  static char const* name() { return ValueType<T>::element(); }
  static vesk::VeskValue box(T const& aValue) { return Boxer<T>::box(aValue); }
  static T unbox(vesk::VeskValue aValue) { return ArgumentUnboxer<T>::unbox(aValue).fValue; }
  static bool boxAtOnce(Generic::Loan const*, std::size_t, vesk::VeskValue*) noexcept { return false; }
  static int find(Generic::SequenceIntf const& aSequence, Deviant const& aDeviant, vesk::VeskValue aValue,
                  int aFirst) {
    Generic::Ref wanted;
    try {
      wanted = Generic::RefAccess<T>::make(unbox(aValue));
    } catch (Exception const&) {
      return -1;  // such as a text that is no number: no sequence holds it
    }
    return aSequence.indexOf(aDeviant, wanted, aFirst);
  }
};

/// Lets the host walk and search a sequence of values; one for all sequences of T.
template <class T>
vesk::SequenceHook const* valueSequenceHook() {
  static SequenceHookOf<ValueElements<T>> const sHook{{}};
  return &sHook;
}

}  // namespace Kelm::mi
