#pragma once

#include <compare>
#include <cstdint>

#include "kelm/Object.h"
#include "lum/visibility.h"
#include "uml_metamodel/umlmm/detail/primitive.h"

namespace umlmm {

/// A signed whole number of the metamodel, of 32 bits (UML 2.5.1, clause 21, has no bounds).
class UMLMM_API Integer {
 public:
  static constexpr char kName[] = "Integer";

  constexpr Integer() noexcept = default;
  constexpr Integer(int aValue) noexcept : fValue(aValue) {}
  /// The value that the object carries; raises the incorrect-type failure for a null or any other object.
  explicit Integer(Kelm::ImmutableObject const& aObject)
      : fValue(static_cast<std::int32_t>(
            detail::primitiveBits<Integer>(aObject, Kelm::PrimitiveKind::Integer))) {}

  operator Kelm::Object() const {
    return Kelm::makePrimitive(Kelm::PrimitiveKind::Integer, static_cast<std::uint32_t>(fValue));
  }
  constexpr int value() const noexcept { return fValue; }
  friend constexpr auto operator<=>(Integer const&, Integer const&) noexcept = default;

 private:
  std::int32_t fValue = 0;
};

static_assert(sizeof(Integer) == 4);

}  // namespace umlmm
