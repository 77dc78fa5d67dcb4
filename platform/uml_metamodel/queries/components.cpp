#include "queries/queries.h"

namespace umlmm::queries {

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

}  // namespace umlmm::queries
