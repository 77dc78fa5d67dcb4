#pragma once

#include "kelm/ClassObject.h"
#include "kelm_mi/marshal/PropHelper.h"
#include "uml_metamodel_mi/datatypes/conversions.h"

namespace Kelm::mi {

namespace detail {

template <EnumerationType E>
vesk::VeskValue box(E aValue, char const* aTypeName) {
  return boxEnumeration(aValue, internClassName(aTypeName));
}
inline vesk::VeskValue box(umlmm::UnlimitedNatural aValue, char const*) {
  return boxUnlimitedNatural(aValue);
}

}  // namespace detail

template <class T>
PropHelper<T>::~PropHelper() = default;

// Raises the incorrect-type failure for an object that is no T, null included.
template <class T>
vesk::VeskValue PropHelper<T>::unboxAndReturn(Object aValue, char const* aTypeName) {
  return detail::box(T(aValue), aTypeName);
}

template <class T>
bool PropHelper<T>::boxAndSet(Kelm::ClassObject* aObject, vesk::VeskValue& aValue,
                              IntrospectiveMethods const* aMethods, unsigned aId) {
  UnboxedArgument<T> const value = ArgumentUnboxer<T>::unbox(aValue);
  if (!value.fHasValue) return false;
  aMethods->setEntry(aObject->get(), aObject->getDeviant(), aId, value.fValue);
  return true;
}

}  // namespace Kelm::mi
