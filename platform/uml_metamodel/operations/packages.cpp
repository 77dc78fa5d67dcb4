#include "operations/answers.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/ElementImport.h"
#include "uml_metamodel/umlmm/NamedElement.h"
#include "uml_metamodel/umlmm/Package.h"
#include "uml_metamodel/umlmm/PackageableElement.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/packages";

}  // namespace

namespace NSInterface {

using engine::readable;
String ElementImportIntf::getName(Kelm::Deviant const& aDeviant) const {
  return operations::makeText(queries::importName(readable(*this, aDeviant, kSource)));
}

Kelm::ImmutableSequence<ImmutablePackageableElement> PackageIntf::visibleMembers(
    Kelm::Deviant const& aDeviant) const {
  return operations::makeResult<ImmutablePackageableElement>(
      aDeviant, queries::visibleMembers(readable(*this, aDeviant, kSource)));
}

Boolean PackageIntf::makesVisible(Kelm::Deviant const& aDeviant, ImmutableNamedElement const& aEl) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return queries::makesVisible(self, operations::given(self, aEl));
}

}  // namespace NSInterface

}  // namespace umlmm
