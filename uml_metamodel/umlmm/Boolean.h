#pragma once

#include <compare>
#include <concepts>

#include "kelm/Object.h"
#include "lum/visibility.h"
#include "uml_metamodel/umlmm/detail/primitive.h"

namespace umlmm {

/// A truth value of the metamodel (UML 2.5.1, clause 21).
class UMLMM_API Boolean {
 public:
  static constexpr char kName[] = "Boolean";

  constexpr Boolean() noexcept = default;
  /// From `bool` alone: pointers and numbers do not become truth values unasked.
  constexpr Boolean(std::same_as<bool> auto aValue) noexcept : fValue(aValue) {}
  /// The value that the object carries; raises the incorrect-type failure for a null or any other object.
  explicit Boolean(Kelm::ImmutableObject const& aObject)
      : fValue(detail::primitiveBits<Boolean>(aObject, Kelm::PrimitiveKind::Boolean) != 0) {}

  operator Kelm::Object() const { return Kelm::makePrimitive(Kelm::PrimitiveKind::Boolean, fValue ? 1 : 0); }
  constexpr bool value() const noexcept { return fValue; }
  friend constexpr auto operator<=>(Boolean const&, Boolean const&) noexcept = default;

 private:
  bool fValue = false;
};

static_assert(sizeof(Boolean) == 1);

}  // namespace umlmm
