#pragma once

#include "frame/addTypedMethod.h"
#include "kelm/DeviantRegistry.h"
#include "kelm/Model.h"

/// The methods that every class of references has, with its own names in their signatures.
namespace Kelm::mi {

inline constexpr std::uint32_t kHidden = vesk::factory::MethodHidden;
inline constexpr std::uint32_t kOverrides = vesk::factory::MethodOverridesAllSignatures;
inline constexpr std::uint32_t kSelfFirst = vesk::factory::MethodFirstArgumentIsSelf;

namespace common {

/// The same object in the variant of a model, or of a read-only one; whether it exists there is asked when it
/// is used.
template <class T>
T asDeviant(T const& aReceiver, ImmutableModel const& aModel) {
  return T(aReceiver.get(), aModel.getDeviant());
}

/// The one way from read-only to changeable: it unlocks the object in its variant.
template <class Immutable, class Changeable>
Changeable asMutable(Immutable const& aReceiver) {
  DeviantRegistry::setIsImmutable(ImmutableObject(aReceiver), false);
  return Changeable(aReceiver.get(), aReceiver.getDeviant());
}

/// A read-only view. The object stays as changeable as it was for whoever has another.
template <class Immutable, class T>
Immutable asImmutable(T const& aReceiver) {
  return Immutable(aReceiver.get(), aReceiver.getDeviant());
}

/// `aOther` if it is a T, else a null reference.
template <class T, class Base>
Base cast(Base const& aOther) {
  T const narrowed = queryHandle<T, typename T::Domain>(aOther);
  return Base(narrowed.get(), narrowed.getDeviant());
}

template <class T>
ImmutableType getMetaType(T const& aReceiver) {
  if (aReceiver.isNull()) raiseNullReference("kelm/Kelm/Object_h");
  return aReceiver.get()->getMetaType(aReceiver.getDeviant());
}

}  // namespace common

template <class T>
constexpr MethodRow isvalidRow(char const* aClass) {
  return {"isvalid", 0, Form::MemberFunction, {"", "logical scalar", aClass}, &bindMember<&T::isvalid, T>};
}

template <class T>
constexpr MethodRow asDeviantRow(char const* aClass, std::uint32_t aWord) {
  return {"asDeviant",
          aWord,
          Form::MemberFunctionWithFlag,
          {"deviant", aClass, aClass, {"Kelm.ImmutableModel"}},
          &bindFunction<&common::asDeviant<T>>};
}

template <class T>
constexpr MethodRow getMetaTypeRow(char const* aClass) {
  return {"getMetaType",
          kHidden,
          Form::MemberFunctionWithFlag,
          {"", "Kelm.ImmutableType", aClass},
          &bindFunction<&common::getMetaType<T>>};
}

template <class T, class Base>
constexpr MethodRow castRow(char const* aBase) {
  return {"cast",
          0,
          Form::FreeFunctionWithFlag,
          {"other", aBase, nullptr, {aBase}},
          &bindFunction<&common::cast<T, Base>>};
}

template <class Immutable, class T>
constexpr MethodRow asImmutableRow(char const* aImmutableClass, char const* aClass) {
  return {"asImmutable",
          kSelfFirst,
          Form::FreeFunction,
          {"", aImmutableClass, nullptr, {aClass}},
          &bindFunction<&common::asImmutable<Immutable, T>>};
}

template <class Immutable, class Changeable>
constexpr MethodRow asMutableRow(char const* aChangeableClass, char const* aClass) {
  return {"asMutable",
          kSelfFirst,
          Form::FreeFunction,
          {"", aChangeableClass, nullptr, {aClass}},
          &bindFunction<&common::asMutable<Immutable, Changeable>>};
}

/// For objects that have no changeable form: the same read-only view.
template <class T>
constexpr MethodRow staysReadOnlyRow(char const* aClass) {
  return {"asMutable",
          kSelfFirst | kOverrides,
          Form::FreeFunction,
          {"", aClass, nullptr, {aClass}},
          &bindFunction<&common::asImmutable<T, T>>};
}

}  // namespace Kelm::mi
