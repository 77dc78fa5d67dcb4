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

Elements suppliedInterfaces(Element const* aClassifier, int aDependency) {
  Elements interfaces;
  if (aClassifier == nullptr) return interfaces;
  Visited seen;
  for (Element* const dependency : values::elements(*aClassifier, ids::NamedElement::ClientDependency)) {
    if (!isA(*dependency, aDependency)) continue;
    for (Element* const supplier : values::elements(*dependency, ids::Dependency::Supplier))
      if (isA(*supplier, ids::metaclass::Interface) && seen.insert(*supplier)) interfaces.push_back(supplier);
  }
  return interfaces;
}

Elements realizedInterfaces(Element const* aClassifier) {
  return suppliedInterfaces(aClassifier, ids::metaclass::Realization);
}

Elements usedInterfaces(Element const* aClassifier) {
  return suppliedInterfaces(aClassifier, ids::metaclass::Usage);
}

}  // namespace queries

namespace NSInterface {

Kelm::ImmutableSequence<ImmutableInterface> ComponentIntf::realizedInterfaces(
    Kelm::Deviant const& aDeviant, ImmutableClassifier const& aClassifier) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::makeResult<ImmutableInterface>(aDeviant,
                                                 queries::realizedInterfaces(queries::given(aClassifier)));
}

Kelm::ImmutableSequence<ImmutableInterface> ComponentIntf::usedInterfaces(
    Kelm::Deviant const& aDeviant, ImmutableClassifier const& aClassifier) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::makeResult<ImmutableInterface>(aDeviant,
                                                 queries::usedInterfaces(queries::given(aClassifier)));
}

}  // namespace NSInterface

}  // namespace umlmm
