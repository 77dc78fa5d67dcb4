#pragma once

#include "frame/Boxing.h"
#include "kelm_mi/families.h"
#include "uml_metamodel_mi/wrappers/metaclass_bindings.h"
#include "vesk/interned.h"

/// Names of the script classes of the metaclasses, found from their reference classes.
namespace umlmm::mi {

/// A changeable or read-only reference to elements of a metaclass.
template <class T>
concept ElementReference = Kelm::mi::Reference<T> && requires {
  T::InterfaceType::kMetaclassIndex;
};

template <ElementReference T>
inline constexpr bool kIsChangeable = requires {
  typename T::Changeable;
};

template <ElementReference T>
constexpr MetaclassBinding const& metaclassOf() {
  return kMetaclassBindings[T::InterfaceType::kMetaclassIndex];
}

inline constexpr char kPackage[] = "umlmm";

/// "umlmm.ClassMetaProperty", as a token.
vesk::VeskInterned metaPropertyClassName(char const* aMetaclass);

}  // namespace umlmm::mi

namespace Kelm::mi {

template <umlmm::mi::ElementReference T>
struct FamilyOf<T> {
  static constexpr Access kAccess = umlmm::mi::kIsChangeable<T> ? Access::Changeable : Access::ReadOnly;
  static vesk::ClassFamily const& get() {
    return classFamily(umlmm::mi::kPackage, umlmm::mi::metaclassOf<T>().fName);
  }
};

template <umlmm::mi::ElementReference T>
struct ScriptClass<T> {
  static constexpr bool kImmutable = !umlmm::mi::kIsChangeable<T>;
  static vesk::VeskInterned name() {
    static vesk::VeskInterned const token = FamilyOf<T>::get().reference(FamilyOf<T>::kAccess);
    return token;
  }
};

}  // namespace Kelm::mi
