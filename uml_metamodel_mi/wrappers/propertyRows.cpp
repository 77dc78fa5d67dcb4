#include "uml_metamodel_mi/wrappers/propertyRows.h"

namespace umlmm::mi {

void classObject(Kelm::mi::KelmmiPropertyFactory const& aFactory, PropertyRow const& aRow) {
  aFactory.ClassObject(aRow.fName, aRow.fMultiplicity, aRow.fMutability, aRow.fId, aRow.fType,
                       vesk::factory::PropertyAttributes(0));
}

void primitiveSequence(Kelm::mi::KelmmiPropertyFactory const& aFactory, PropertyRow const& aRow) {
  aFactory.PrimitiveSequence(aRow.fName, aRow.fMultiplicity, aRow.fMutability, aRow.fId, aRow.fType,
                             vesk::factory::PropertyAttributes(0));
}

}  // namespace umlmm::mi
