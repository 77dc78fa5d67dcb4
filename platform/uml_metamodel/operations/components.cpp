#include "operations/queries.h"
#include "operations/results.h"
#include "uml_metamodel/umlmm/Classifier.h"
#include "uml_metamodel/umlmm/Component.h"
#include "uml_metamodel/umlmm/Interface.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/components";

}  // namespace

namespace queries {

Elements suppliedInterfaces(Reading aClassifier, int aDependency) {
  Elements interfaces;
  if (!aClassifier) return interfaces;
  Visited seen;
  for (Reading const dependency : aClassifier.list(ids::NamedElement::ClientDependency)) {
    if (!dependency.isA(aDependency)) continue;
    for (Reading const supplier : dependency.list(ids::Dependency::Supplier))
      if (supplier.isA(ids::metaclass::Interface) && seen.insert(*supplier))
        interfaces.push_back(supplier.element());
  }
  return interfaces;
}

Elements realizedInterfaces(Reading aClassifier) {
  return suppliedInterfaces(aClassifier, ids::metaclass::Realization);
}

Elements usedInterfaces(Reading aClassifier) {
  return suppliedInterfaces(aClassifier, ids::metaclass::Usage);
}

}  // namespace queries

namespace NSInterface {

using engine::readable;
Kelm::ImmutableSequence<ImmutableInterface> ComponentIntf::realizedInterfaces(
    Kelm::Deviant const& aDeviant, ImmutableClassifier const& aClassifier) const {
  queries::Reading const self = readable(*this, aDeviant, kSource);
  return queries::makeResult<ImmutableInterface>(
      aDeviant, queries::realizedInterfaces(queries::given(self, aClassifier)));
}

Kelm::ImmutableSequence<ImmutableInterface> ComponentIntf::usedInterfaces(
    Kelm::Deviant const& aDeviant, ImmutableClassifier const& aClassifier) const {
  queries::Reading const self = readable(*this, aDeviant, kSource);
  return queries::makeResult<ImmutableInterface>(aDeviant,
                                                 queries::usedInterfaces(queries::given(self, aClassifier)));
}

}  // namespace NSInterface

}  // namespace umlmm
