#pragma once

#include "tarn/tarn.h"
#include "uml_metamodel_mi/datatypes/conversions.h"

/// What the marshalling of Boolean and Integer differs in.
namespace Kelm::mi::detail {

/// `valueType()` is the host's name of one value; `Element` what an array holds, of class `kArrayClass`. Any
/// element but 0 is a true one.
template <class T>
struct Primitive;

template <>
struct Primitive<umlmm::Boolean> {
  using Element = unsigned char;
  static constexpr tarnClassId kArrayClass = logicalClassId;
  static vesk::VeskInterned valueType() { return vesk::internal::interned<"logical scalar">(); }
  static umlmm::Boolean fromElement(Element aElement) noexcept { return aElement != 0; }
  static Element toElement(umlmm::Boolean aValue) noexcept { return aValue.value() ? 1 : 0; }
};

template <>
struct Primitive<umlmm::Integer> {
  using Element = std::int32_t;
  static constexpr tarnClassId kArrayClass = int32ClassId;
  static vesk::VeskInterned valueType() { return vesk::internal::interned<"int32 scalar">(); }
  static umlmm::Integer fromElement(Element aElement) noexcept { return aElement; }
  static Element toElement(umlmm::Integer aValue) noexcept { return aValue.value(); }
};

}  // namespace Kelm::mi::detail
