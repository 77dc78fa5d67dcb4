#include "operations/answers.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/Element.h"
#include "uml_metamodel/umlmm/NamedElement.h"
#include "uml_metamodel/umlmm/Package.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/ownership";

}  // namespace

namespace NSInterface {

using engine::readable;
using operations::makeResult;

Kelm::ImmutableSequence<ImmutableElement> ElementIntf::allOwnedElements(Kelm::Deviant const& aDeviant) const {
  return makeResult<ImmutableElement>(aDeviant,
                                      queries::allOwnedElements(readable(*this, aDeviant, kSource)));
}

Boolean ElementIntf::mustBeOwned(Kelm::Deviant const& aDeviant) const {
  return queries::mustBeOwned(readable(*this, aDeviant, kSource));
}

Boolean PackageIntf::mustBeOwned(Kelm::Deviant const& aDeviant) const {
  return ElementIntf::mustBeOwned(aDeviant);
}

Kelm::ImmutableSequence<ImmutablePackage> NamedElementIntf::allOwningPackages(
    Kelm::Deviant const& aDeviant) const {
  return makeResult<ImmutablePackage>(aDeviant,
                                      queries::allOwningPackages(readable(*this, aDeviant, kSource)));
}

}  // namespace NSInterface

}  // namespace umlmm
