#pragma once

#include <concepts>
#include <string>

#include "frame/Boxing.h"
#include "frame/Unboxing.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"
#include "kelm/values.h"
#include "kelm_mi/families.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/Integer.h"
#include "uml_metamodel/umlmm/String.h"
#include "uml_metamodel/umlmm/UnlimitedNatural.h"

/// How values of the metamodel's data types, and sequences of them and of element references, cross the
/// boundary; what boxers and unboxers promise stands in frame/Boxing.h and frame/Unboxing.h.
///
/// A Boolean or Integer that must be there travels raw. A text and a natural number travel as char arrays,
/// whose emptiness tells that there is none; a literal, a sequence and an iterator as the instance bound to
/// the object, and with an empty array for none.
namespace Kelm::mi {

/// One of the metamodel's enumerations.
template <class T>
concept EnumerationType = requires {
  { T::type() } -> std::convertible_to<Kelm::EnumerationType const&>;
  typename T::Value;
};

/// Names of a value type: `name()` is its own, `element()` that of a value in a signature. Both live as long
/// as the process.
template <class T>
struct ValueType;

template <vesk::internal::FixedText Name, vesk::internal::FixedText Element>
struct PrimitiveValueType {
  static char const* name() { return kName.fText; }
  static char const* element() { return kElement.fText; }

 private:
  static constexpr auto kName = Name;
  static constexpr auto kElement = Element;
};
template <>
struct ValueType<umlmm::Boolean> : PrimitiveValueType<"Boolean", "logical scalar"> {};
template <>
struct ValueType<umlmm::Integer> : PrimitiveValueType<"Integer", "int32 scalar"> {};
template <>
struct ValueType<umlmm::String> : PrimitiveValueType<"String", "char vector"> {};
template <>
struct ValueType<umlmm::UnlimitedNatural> : PrimitiveValueType<"UnlimitedNatural", "char vector"> {};
template <EnumerationType E>
struct ValueType<E> {
  static char const* name() { return E::type().name(); }
  static char const* element() { return E::type().veskName(); }
};

template <EnumerationType E>
struct ScriptClass<E> {
  static constexpr bool kImmutable = false;
  static vesk::VeskInterned name() {
    static vesk::VeskInterned const token = vesk::internal::intern(E::type().veskName());
    return token;
  }
};

/// The value that the object behind the instance of a literal has; without an instance the first literal, and
/// `fHasValue` false. Raises the incorrect-type failure for an instance that stands for anything else.
template <EnumerationType E>
UnboxedArgument<E> unboxEnumeration(vesk::VeskValue aValue) {
  UnboxedArgument<Object> const object = ArgumentUnboxer<Object>::unbox(aValue);
  if (!object.fHasValue) return {E(0), false};
  return {E(object.fValue), true};
}
/// The instance that is bound to the literal's object, or a new one of class `aTypeName`.
vesk::VeskValue boxLiteral(Object const& aLiteral, vesk::VeskInterned aTypeName);
template <EnumerationType E>
vesk::VeskValue boxEnumeration(E aValue, vesk::VeskInterned aTypeName) {
  return boxLiteral(aValue, aTypeName);
}

/// A natural number from its text, digits or "*", which must not be empty; raises the incorrect-type failure
/// for others.
umlmm::UnlimitedNatural unboxUnlimitedNatural(tarnArray const* aText);
/// The array is the caller's.
vesk::VeskValue boxUnlimitedNatural(umlmm::UnlimitedNatural aValue);

/// A name as narrow text, in UTF-8.
template <>
struct ArgumentUnboxer<std::string> {
  static UnboxedArgument<std::string> unbox(vesk::VeskValue aValue);
};

template <EnumerationType E>
struct ArgumentUnboxer<E> {
  static UnboxedArgument<E> unbox(vesk::VeskValue aValue) { return unboxEnumeration<E>(aValue); }
};
template <EnumerationType E>
struct Boxer<E> {
  static vesk::VeskValue box(E aValue) { return boxEnumeration(aValue, ScriptClass<E>::name()); }
};

template <>
struct ArgumentUnboxer<umlmm::Boolean> {
  static UnboxedArgument<umlmm::Boolean> unbox(vesk::VeskValue aValue) { return {aValue.logical(), true}; }
};
template <>
struct Boxer<umlmm::Boolean> {
  static vesk::VeskValue box(umlmm::Boolean aValue) { return vesk::VeskValue::ofLogical(aValue.value()); }
};
template <>
struct ArgumentUnboxer<umlmm::Integer> {
  static UnboxedArgument<umlmm::Integer> unbox(vesk::VeskValue aValue) { return {aValue.int32(), true}; }
};
template <>
struct Boxer<umlmm::Integer> {
  static vesk::VeskValue box(umlmm::Integer aValue) { return vesk::VeskValue::ofInt32(aValue.value()); }
};
/// Code units as they come, lone surrogates among them.
template <>
struct ArgumentUnboxer<umlmm::String> {
  static UnboxedArgument<umlmm::String> unbox(vesk::VeskValue aValue);
};
template <>
struct Boxer<umlmm::String> {
  static vesk::VeskValue box(umlmm::String const& aValue);
};
/// An empty array leaves the default value.
template <>
struct ArgumentUnboxer<umlmm::UnlimitedNatural> {
  static UnboxedArgument<umlmm::UnlimitedNatural> unbox(vesk::VeskValue aValue);
};
template <>
struct Boxer<umlmm::UnlimitedNatural> {
  static vesk::VeskValue box(umlmm::UnlimitedNatural aValue) { return boxUnlimitedNatural(aValue); }
};

/// Values have classes of sequences and of iterators, whose elements count as changeable.
template <class T>
requires requires { ValueType<T>::name(); }
struct FamilyOf<T> {
  static constexpr Access kAccess = Access::Changeable;
  static vesk::ClassFamily const& get() { return classFamily("umlmm", ValueType<T>::name()); }
};

namespace detail {

/// Names of classes of sequences and iterators of T.
template <class T, Access A>
struct SequenceScriptClass {
  static constexpr bool kImmutable = A == Access::ReadOnly;
  static vesk::VeskInterned name() {
    static auto const token = FamilyOf<T>::get().sequence(A, FamilyOf<T>::kAccess);
    return token;
  }
};
template <class T, Access A>
struct IteratorScriptClass {
  static constexpr bool kImmutable = A == Access::ReadOnly;
  static vesk::VeskInterned name() {
    static auto const token = FamilyOf<T>::get().iterator(A, FamilyOf<T>::kAccess);
    return token;
  }
};

}  // namespace detail

template <class T>
struct ScriptClass<ImmutableSequence<T>> : detail::SequenceScriptClass<T, Access::ReadOnly> {};
template <class T>
struct ScriptClass<Sequence<T>> : detail::SequenceScriptClass<T, Access::Changeable> {};
template <class T>
struct ScriptClass<ImmutableIterator<T>> : detail::IteratorScriptClass<T, Access::ReadOnly> {};
template <class T>
struct ScriptClass<Iterator<T>> : detail::IteratorScriptClass<T, Access::Changeable> {};

template <class T>
concept SequenceHandle = std::derived_from<T, SequenceRef>;
template <class T>
concept IteratorHandle = std::derived_from<T, IteratorRef>;

/// A null handle for none, and for an instance that is bound to no sequence. The type of the values is not
/// looked at: the host gives instances of the declared class alone.
template <SequenceHandle T>
struct ArgumentUnboxer<T> {
  static UnboxedArgument<T> unbox(vesk::VeskValue aValue) {
    UnboxedInterface const found = unboxInterface(aValue.array(), ScriptClass<T>::name(),
                                                  tagPair<Generic::SequenceIntf, VisitationDomain>());
    return {T(static_cast<Generic::SequenceIntf*>(found.fInterface), found.fDeviant), found.fHasValue};
  }
};
template <SequenceHandle T>
struct Boxer<T> {
  static vesk::VeskValue box(T const& aSequence) {
    return announceObject(aSequence.get(), aSequence.getDeviant(), ScriptClass<T>::kImmutable,
                          ScriptClass<T>::name());
  }
};

template <IteratorHandle T>
struct ArgumentUnboxer<T> {
  static UnboxedArgument<T> unbox(vesk::VeskValue aValue) {
    UnboxedInterface const found = unboxInterface(aValue.array(), ScriptClass<Object>::name(),
                                                  tagPair<Generic::IteratorIntf, VisitationDomain>());
    return {T(static_cast<Generic::IteratorIntf*>(found.fInterface), found.fDeviant), found.fHasValue};
  }
};
/// A position of its own: the value may go on.
template <IteratorHandle T>
struct Boxer<T> {
  static vesk::VeskValue box(T const& aIterator) {
    return boxIterator(aIterator.get(), aIterator.getDeviant(), ScriptClass<T>::kImmutable,
                       ScriptClass<T>::name());
  }
};

}  // namespace Kelm::mi
