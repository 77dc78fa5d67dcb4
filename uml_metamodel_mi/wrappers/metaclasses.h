#pragma once

#include "uml_metamodel_mi/frame/Boxing.h"
#include "uml_metamodel_mi/wrappers/metaclass_rows.h"
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
constexpr MetaclassRow const& metaclassOf() {
  return kMetaclasses[T::InterfaceType::kMetaclassIndex];
}

/// "umlmm." with a prefix and a metaclass or value type behind it, as a token: "umlmm.ImmutableClass".
vesk::VeskInterned scriptClassName(char const* aPrefix, char const* aName, char const* aSuffix = "");

}  // namespace umlmm::mi

template <umlmm::mi::ElementReference T>
struct Kelm::mi::ScriptClass<T> {
  static constexpr bool kImmutable = !umlmm::mi::kIsChangeable<T>;
  static vesk::VeskInterned name() {
    static vesk::VeskInterned const token =
        umlmm::mi::scriptClassName(kImmutable ? "Immutable" : "", umlmm::mi::metaclassOf<T>().fName);
    return token;
  }
};
