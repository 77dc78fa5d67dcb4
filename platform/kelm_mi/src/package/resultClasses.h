#pragma once

#include <optional>
#include <string_view>

#include "frame/Boxing.h"
#include "kelm/ClassObject.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"
#include "kelm/meta.h"
#include "vesk/factory/BindingRegistry.h"

/// How the results of the kernel's script classes become host values.
namespace Kelm::mi {

/// The read-only script class of sequences of T, whose instances are bound as read-only where their elements
/// are.
template <class T>
struct SequenceClass;
template <>
struct SequenceClass<ClassObject> : NamedScriptClass<"Kelm.ImmutableSequenceOfClassObject", false> {};
template <>
struct SequenceClass<ImmutableClassObject>
    : NamedScriptClass<"Kelm.ImmutableSequenceOfImmutableClassObject", true> {};
template <>
struct SequenceClass<ImmutableClass> : NamedScriptClass<"Kelm.ImmutableSequenceOfImmutableClass", true> {};
template <>
struct SequenceClass<ImmutableDataType>
    : NamedScriptClass<"Kelm.ImmutableSequenceOfImmutableDataType", true> {};
template <>
struct SequenceClass<ImmutableProperty>
    : NamedScriptClass<"Kelm.ImmutableSequenceOfImmutableProperty", true> {};
template <>
struct SequenceClass<String> : NamedScriptClass<"Kelm.ImmutableSequenceOfString", true> {};

template <class T>
struct Boxer<ImmutableSequence<T>> {
  static vesk::VeskValue box(ImmutableSequence<T> const& aValue) {
    return announceObject(aValue.checked(), aValue.getDeviant(), SequenceClass<T>::kImmutable,
                          SequenceClass<T>::name());
  }
};

/// A reference that may be missing: the empty value of its class.
template <Reference T>
struct Boxer<std::optional<T>> {
  static vesk::VeskValue box(std::optional<T> const& aValue) {
    if (aValue.has_value()) return Boxer<T>::box(*aValue);
    return vesk::factory::basic::BindingRegistry::announce(static_cast<void*>(nullptr),
                                                           ScriptClass<T>::name());
  }
};

/// UTF-8, as the metamodel's own names are.
template <>
struct Boxer<std::string_view> {
  static vesk::VeskValue box(std::string_view aValue) { return Boxer<String>::box(String(toUtf16(aValue))); }
};

}  // namespace Kelm::mi
