#include "operations/answers.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/BehavioralFeature.h"
#include "uml_metamodel/umlmm/NamedElement.h"
#include "uml_metamodel/umlmm/Namespace.h"
#include "uml_metamodel/umlmm/PackageableElement.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/naming";

}  // namespace

namespace NSInterface {

using engine::readable;
using operations::given;
using operations::makeResult;

Kelm::ImmutableSequence<ImmutableNamespace> NamedElementIntf::allNamespaces(
    Kelm::Deviant const& aDeviant) const {
  return makeResult<ImmutableNamespace>(aDeviant, queries::allNamespaces(readable(*this, aDeviant, kSource)));
}

String NamedElementIntf::separator(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return operations::makeText(queries::kSeparator);
}

Boolean NamedElementIntf::isDistinguishableFrom(Kelm::Deviant const& aDeviant,
                                                ImmutableNamedElement const& aN,
                                                ImmutableNamespace const& aNs) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return queries::isDistinguishableFrom(self, given(self, aN), given(self, aNs));
}

Boolean BehavioralFeatureIntf::isDistinguishableFrom(Kelm::Deviant const& aDeviant,
                                                     ImmutableNamedElement const& aN,
                                                     ImmutableNamespace const& aNs) const {
  return NamedElementIntf::isDistinguishableFrom(aDeviant, aN, aNs);
}

Kelm::ImmutableSequence<String> NamespaceIntf::getNamesOfMember(Kelm::Deviant const& aDeviant,
                                                                ImmutableNamedElement const& aElement) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return operations::makeTexts(aDeviant, queries::namesOfMember(self, given(self, aElement)));
}

Boolean NamespaceIntf::membersAreDistinguishable(Kelm::Deviant const& aDeviant) const {
  return queries::membersAreDistinguishable(readable(*this, aDeviant, kSource));
}

Kelm::ImmutableSequence<ImmutablePackageableElement> NamespaceIntf::importMembers(
    Kelm::Deviant const& aDeviant, ImmutablePackageableElement const& aImps) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return makeResult<ImmutablePackageableElement>(aDeviant, queries::importMembers(self, given(self, aImps)));
}

Kelm::ImmutableSequence<ImmutablePackageableElement> NamespaceIntf::excludeCollisions(
    Kelm::Deviant const& aDeviant, ImmutablePackageableElement const& aImps) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  engine::Reading const candidate = given(self, aImps);
  return makeResult<ImmutablePackageableElement>(
      aDeviant, candidate ? queries::Elements{candidate.element()} : queries::Elements());
}

}  // namespace NSInterface

}  // namespace umlmm
