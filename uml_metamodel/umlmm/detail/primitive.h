#pragma once

#include <cstdint>

#include "kelm/Asserter.h"
#include "kelm/values.h"

namespace umlmm::detail {

/// The bits that an object of the kind carries; the incorrect-type failure names value type `T`.
template <class T>
std::uint32_t primitiveBits(Kelm::ImmutableObject const& aObject, Kelm::PrimitiveKind aKind) {
  if (!Kelm::isPrimitive(aObject, aKind) || !aObject.getDeviant().isValue())
    kelm::Error_IncorrectType(T::kName);
  return aObject.getDeviant().value();
}

}  // namespace umlmm::detail
