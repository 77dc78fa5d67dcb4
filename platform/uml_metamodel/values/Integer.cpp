#include "uml_metamodel/umlmm/Integer.h"

#include "primitive.h"

namespace umlmm {

Integer::Integer(Kelm::ImmutableObject const& aObject)
    : fValue(
          static_cast<std::int32_t>(detail::primitiveBits<Integer>(aObject, Kelm::PrimitiveKind::Integer))) {}

Integer::operator Kelm::Object() const {
  return Kelm::makePrimitive(Kelm::PrimitiveKind::Integer, static_cast<std::uint32_t>(fValue));
}

}  // namespace umlmm
