#include "uml_metamodel_mi/datatypes/EnumerationWrapper.h"

namespace umlmm::mi::detail {

Kelm::ImmutableType literalMetaType(Kelm::Object const& aLiteral) {
  if (aLiteral.isNull()) Kelm::raiseNullReference("kelm/Kelm/Object_h");
  return aLiteral.get()->getMetaType(aLiteral.getDeviant());
}

}  // namespace umlmm::mi::detail
