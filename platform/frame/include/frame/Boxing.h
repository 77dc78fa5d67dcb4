#pragma once

#include <concepts>

#include "frame/ScriptClass.h"
#include "kelm/ClassObject.h"
#include "kelm/Generic.h"
#include "kelm/Handle.h"
#include "kelm/String.h"
#include "vesk/VeskValue.h"
#include "vesk/interned.h"

/// Metamodel values on their way to the host. In the host's thread, as all of the frame.
namespace Kelm::mi {

/// A two-word reference: an interface pointer and a deviant.
template <class T>
concept Reference = requires {
  typename T::InterfaceType;
  typename T::Domain;
}
&&std::derived_from<T, Handle<typename T::InterfaceType>>;

/// The token of a class name as objects answer it, remembered by its address; null for a null or empty name.
vesk::VeskInterned internClassName(char const* aName);

/// The host value of an object in a variant: the host object bound to it, or a new one of class `aClass`,
/// which then holds one count on the object. `aObject` may be null, and is held by the caller. What fails
/// leaves the object without a binding and without a count.
vesk::VeskValue announceObject(ReferenceCountingIntf const* aObject, Deviant const& aDeviant, bool aImmutable,
                               vesk::VeskInterned aClass);

/// Boxes references under the true class of their object.
class ReferenceBoxer {
 public:
  /// `aDefault` is the declared class of the result; a null reference becomes an instance of it.
  template <class Intf>
  static vesk::VeskValue box(Handle<Intf> const& aReference, bool aImmutable, vesk::VeskInterned aDefault) {
    return boxObject(aReference.get(), aReference.getDeviant(), aImmutable, aDefault);
  }
  static vesk::VeskValue boxObject(NSInterface::ObjectIntf const* aObject, Deviant const& aDeviant,
                                   bool aImmutable, vesk::VeskInterned aDefault);
  /// The same, but an object that answers no name counts as one of the declared class too.
  static vesk::VeskValue boxWithDefault(NSInterface::ObjectIntf const* aObject, Deviant const& aDeviant,
                                        bool aImmutable, vesk::VeskInterned aDefault);
};

/// Makes sure that the host made an instance for a running constructor; it has no native side yet.
void checkConstructing(vesk::VeskInterned aClass, vesk::VeskValue aHostObject);
/// Binds a new object to that instance, which then holds one count; `aObject` may be null. Throws a VeskError
/// for an object that an instance is bound to already.
void bindConstructed(ReferenceCountingIntf const* aObject, Deviant const& aDeviant, vesk::VeskInterned aClass,
                     vesk::VeskValue aHostObject);

/// Boxes a copy of the iterator, so that the host object has a position of its own. Raises the null-reference
/// failure for a null iterator.
vesk::VeskValue boxIterator(Generic::IteratorIntf const* aIterator, Deviant const& aDeviant, bool aImmutable,
                            vesk::VeskInterned aClass);

/// How a T becomes a host value: `static vesk::VeskValue box(T const&)`. An array in it is the caller's.
/// Boxing an object may make an instance and fill its class, so it may run anything. Libraries specialise it
/// for their types.
template <class T>
struct Boxer;

template <>
struct Boxer<bool> {
  static vesk::VeskValue box(bool aValue) noexcept { return vesk::VeskValue::ofLogical(aValue); }
};
template <>
struct Boxer<int> {
  static vesk::VeskValue box(int aValue) noexcept { return vesk::VeskValue::ofInt32(aValue); }
};
/// A text ends at its first zero code unit.
template <>
struct Boxer<String> {
  static vesk::VeskValue box(String const& aValue);
};
template <Reference T>
struct Boxer<T> {
  static vesk::VeskValue box(T const& aValue) {
    return ReferenceBoxer::box(aValue, ScriptClass<T>::kImmutable, ScriptClass<T>::name());
  }
};
template <>
struct Boxer<ImmutableDataType> {
  static vesk::VeskValue box(ImmutableDataType const& aValue) {
    return ReferenceBoxer::boxWithDefault(aValue.get(), aValue.getDeviant(), true,
                                          ScriptClass<ImmutableDataType>::name());
  }
};

}  // namespace Kelm::mi
