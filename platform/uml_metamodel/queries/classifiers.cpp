#include <algorithm>

#include "queries/queries.h"

namespace umlmm::queries {

Elements parents(Reading aClassifier) {
  Elements found;
  Visited seen;
  kToGeneral.forEachTarget(aClassifier, [&](Reading aGeneral) {
    if (seen.insert(*aGeneral)) found.push_back(aGeneral.element());
  });
  return found;
}

Elements allParents(Reading aClassifier) { return closureOf(aClassifier, kToGeneral); }

bool hasAncestor(Reading aClassifier, Reading aAncestor) {
  Elements const all = closureOf(aClassifier, kToGeneral, aAncestor);
  return !all.empty() && all.back() == aAncestor.element();
}

Elements withAllParents(Reading aClassifier) {
  Elements all = allParents(aClassifier);
  std::erase(all, aClassifier.element());
  all.insert(all.begin(), aClassifier.element());
  return all;
}

bool conformsTo(Reading aType, Reading aOther) {
  if (!aOther || !aType.isA(ids::metaclass::Classifier)) return false;
  return aType == aOther || hasAncestor(aType, aOther);
}

Elements allIncludedUseCases(Reading aUseCase) { return closureOf(aUseCase, kToIncluded); }

}  // namespace umlmm::queries
