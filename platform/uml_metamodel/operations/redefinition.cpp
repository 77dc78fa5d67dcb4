#include "operations/answers.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/Operation.h"
#include "uml_metamodel/umlmm/Parameter.h"
#include "uml_metamodel/umlmm/Property.h"
#include "uml_metamodel/umlmm/RedefinableElement.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/redefinition";

}  // namespace

namespace NSInterface {

using engine::readable;
using operations::given;

Boolean RedefinableElementIntf::isConsistentWith(Kelm::Deviant const& aDeviant,
                                                 ImmutableRedefinableElement const& aRedefinee) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return queries::isConsistentWith(self, given(self, aRedefinee));
}

Boolean OperationIntf::isConsistentWith(Kelm::Deviant const& aDeviant,
                                        ImmutableRedefinableElement const& aRedefinee) const {
  return RedefinableElementIntf::isConsistentWith(aDeviant, aRedefinee);
}

Boolean PropertyIntf::isConsistentWith(Kelm::Deviant const& aDeviant,
                                       ImmutableRedefinableElement const& aRedefinee) const {
  return RedefinableElementIntf::isConsistentWith(aDeviant, aRedefinee);
}

Boolean RedefinableElementIntf::isRedefinitionContextValid(
    Kelm::Deviant const& aDeviant, ImmutableRedefinableElement const& aRedefined) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return queries::isRedefinitionContextValid(self, given(self, aRedefined));
}

}  // namespace NSInterface

}  // namespace umlmm
