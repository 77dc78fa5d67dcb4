#pragma once

#include "kelm/Model.h"
#include "kelm/meta.h"
#include "vesk/interned.h"

namespace Kelm::mi {

/// The script class that shows values of C++ type T: `name()` is its interned full name, `kImmutable` says
/// whether instances are bound as read-only. Libraries specialise it for the types that they publish; here
/// are the kernel's own.
template <class T>
struct ScriptClass;

/// One whose name is known when it is compiled. For the host's thread, which interns the name at its first
/// use.
template <vesk::internal::FixedText Name, bool Immutable>
struct NamedScriptClass {
  static constexpr bool kImmutable = Immutable;
  static vesk::VeskInterned name() { return vesk::internal::interned<Name>(); }
};

template <>
struct ScriptClass<Object> : NamedScriptClass<"Kelm.Object", false> {};
template <>
struct ScriptClass<ImmutableObject> : NamedScriptClass<"Kelm.ImmutableObject", true> {};
template <>
struct ScriptClass<ClassObject> : NamedScriptClass<"Kelm.ClassObject", false> {};
template <>
struct ScriptClass<ImmutableClassObject> : NamedScriptClass<"Kelm.ImmutableClassObject", true> {};
template <>
struct ScriptClass<Model> : NamedScriptClass<"Kelm.Model", false> {};
template <>
struct ScriptClass<ImmutableModel> : NamedScriptClass<"Kelm.ImmutableModel", true> {};
template <>
struct ScriptClass<FactoryObject> : NamedScriptClass<"Kelm.FactoryObject", false> {};
template <>
struct ScriptClass<ImmutableFactoryObject> : NamedScriptClass<"Kelm.ImmutableFactoryObject", true> {};
template <>
struct ScriptClass<ImmutableType> : NamedScriptClass<"Kelm.ImmutableType", true> {};
template <>
struct ScriptClass<ImmutableClass> : NamedScriptClass<"Kelm.ImmutableClass", true> {};
template <>
struct ScriptClass<ImmutableDataType> : NamedScriptClass<"Kelm.ImmutableDataType", true> {};
template <>
struct ScriptClass<ImmutableProperty> : NamedScriptClass<"Kelm.ImmutableProperty", true> {};
template <>
struct ScriptClass<ImmutablePackage> : NamedScriptClass<"Kelm.ImmutablePackage", true> {};

}  // namespace Kelm::mi
