#include "operations/answers.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/Association.h"
#include "uml_metamodel/umlmm/AssociationClass.h"
#include "uml_metamodel/umlmm/Extension.h"
#include "uml_metamodel/umlmm/LinkAction.h"
#include "uml_metamodel/umlmm/Operation.h"
#include "uml_metamodel/umlmm/Parameter.h"
#include "uml_metamodel/umlmm/Property.h"
#include "uml_metamodel/umlmm/Type.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/associations";

}  // namespace

namespace NSInterface {

using engine::readable;
using operations::makeResult;

Kelm::ImmutableSequence<ImmutableProperty> AssociationClassIntf::allConnections(
    Kelm::Deviant const& aDeviant) const {
  return makeResult<ImmutableProperty>(aDeviant, queries::allConnections(readable(*this, aDeviant, kSource)));
}

ImmutableProperty ExtensionIntf::metaclassEnd(Kelm::Deviant const& aDeviant) const {
  return operations::makeReference<ImmutableProperty>(
      aDeviant, queries::metaclassEnd(readable(*this, aDeviant, kSource)));
}

ImmutableAssociation LinkActionIntf::association(Kelm::Deviant const& aDeviant) const {
  return operations::makeReference<ImmutableAssociation>(
      aDeviant, queries::linkedAssociation(readable(*this, aDeviant, kSource)));
}

Kelm::ImmutableSequence<ImmutableParameter> OperationIntf::returnResult(Kelm::Deviant const& aDeviant) const {
  return makeResult<ImmutableParameter>(aDeviant, queries::returnResult(readable(*this, aDeviant, kSource)));
}

Kelm::ImmutableSequence<ImmutableType> PropertyIntf::subsettingContext(Kelm::Deviant const& aDeviant) const {
  return makeResult<ImmutableType>(aDeviant, queries::subsettingContext(readable(*this, aDeviant, kSource)));
}

Boolean PropertyIntf::isNavigable(Kelm::Deviant const& aDeviant) const {
  return queries::isNavigable(readable(*this, aDeviant, kSource));
}

}  // namespace NSInterface

}  // namespace umlmm
