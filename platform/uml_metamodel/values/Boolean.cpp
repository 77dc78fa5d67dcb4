#include "uml_metamodel/umlmm/Boolean.h"

#include "primitive.h"

namespace umlmm {

Boolean::Boolean(Kelm::ImmutableObject const& aObject)
    : fValue(detail::primitiveBits<Boolean>(aObject, Kelm::PrimitiveKind::Boolean) != 0) {}

Boolean::operator Kelm::Object() const {
  return Kelm::makePrimitive(Kelm::PrimitiveKind::Boolean, fValue ? 1 : 0);
}

}  // namespace umlmm
