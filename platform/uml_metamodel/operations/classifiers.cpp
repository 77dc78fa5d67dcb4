#include <algorithm>

#include "operations/queries.h"
#include "operations/results.h"
#include "uml_metamodel/umlmm/Class.h"
#include "uml_metamodel/umlmm/Classifier.h"
#include "uml_metamodel/umlmm/DataType.h"
#include "uml_metamodel/umlmm/Feature.h"
#include "uml_metamodel/umlmm/NamedElement.h"
#include "uml_metamodel/umlmm/Type.h"
#include "uml_metamodel/umlmm/UseCase.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/classifiers";

}  // namespace

namespace queries {

Elements parents(Element const& aClassifier) {
  Elements found;
  Visited seen;
  kToGeneral.forEachTarget(aClassifier, [&](Element& aGeneral) {
    if (seen.insert(aGeneral)) found.push_back(&aGeneral);
  });
  return found;
}

Elements allParents(Element const& aClassifier) { return closureOf(aClassifier, kToGeneral); }

bool hasAncestor(Element const& aClassifier, Element const& aAncestor) {
  Elements const all = closureOf(aClassifier, kToGeneral, &aAncestor);
  return !all.empty() && all.back() == &aAncestor;
}

Elements withAllParents(Element& aClassifier) {
  Elements all = allParents(aClassifier);
  std::erase(all, &aClassifier);
  all.insert(all.begin(), &aClassifier);
  return all;
}

bool conformsTo(Element const& aType, Element const* aOther) {
  if (aOther == nullptr || !isA(aType, ids::metaclass::Classifier)) return false;
  return &aType == aOther || hasAncestor(aType, *aOther);
}

Elements allIncludedUseCases(Element const& aUseCase) { return closureOf(aUseCase, kToIncluded); }

}  // namespace queries

namespace NSInterface {

using queries::given;
using queries::makeResult;

Kelm::ImmutableSequence<ImmutableFeature> ClassifierIntf::allFeatures(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  queries::Elements features = queries::members(*this);
  std::erase_if(features,
                [](engine::Element* aMember) { return !queries::isA(*aMember, ids::metaclass::Feature); });
  return makeResult<ImmutableFeature>(aDeviant, std::move(features));
}

Kelm::ImmutableSequence<ImmutableClassifier> ClassifierIntf::parents(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutableClassifier>(aDeviant, queries::parents(*this));
}

Kelm::ImmutableSequence<ImmutableClassifier> ClassifierIntf::allParents(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutableClassifier>(aDeviant, queries::allParents(*this));
}

Kelm::ImmutableSequence<ImmutableNamedElement> ClassifierIntf::inheritableMembers(
    Kelm::Deviant const& aDeviant, ImmutableClassifier const& aC) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutableNamedElement>(aDeviant, queries::inheritableMembers(*this, given(aC)));
}

Boolean ClassifierIntf::hasVisibilityOf(Kelm::Deviant const& aDeviant,
                                        ImmutableNamedElement const& aN) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::hasVisibilityOf(*this, given(aN));
}

Boolean TypeIntf::conformsTo(Kelm::Deviant const& aDeviant, ImmutableType const& aOther) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::conformsTo(*this, given(aOther));
}

Boolean ClassifierIntf::conformsTo(Kelm::Deviant const& aDeviant, ImmutableClassifier const& aOther) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::conformsTo(*this, given(aOther));
}

Kelm::ImmutableSequence<ImmutableNamedElement> ClassifierIntf::inherit(
    Kelm::Deviant const& aDeviant, Kelm::ImmutableSequence<ImmutableNamedElement> const& aInhs) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutableNamedElement>(aDeviant,
                                           queries::inherit(*this, queries::givenElements(*model(), aInhs)));
}

Kelm::ImmutableSequence<ImmutableNamedElement> ClassIntf::inherit(
    Kelm::Deviant const& aDeviant, Kelm::ImmutableSequence<ImmutableNamedElement> const& aInhs) const {
  return ClassifierIntf::inherit(aDeviant, aInhs);
}

Kelm::ImmutableSequence<ImmutableNamedElement> DataTypeIntf::inherit(
    Kelm::Deviant const& aDeviant, Kelm::ImmutableSequence<ImmutableNamedElement> const& aInhs) const {
  return ClassifierIntf::inherit(aDeviant, aInhs);
}

Boolean ClassifierIntf::maySpecializeType(Kelm::Deviant const& aDeviant,
                                          ImmutableClassifier const& aC) const {
  engine::checkReadable(*this, aDeviant, kSource);
  engine::Element const* const general = given(aC);
  return general != nullptr && queries::isA(*this, engine::metaclassOf(*general));
}

Kelm::ImmutableSequence<ImmutableUseCase> UseCaseIntf::allIncludedUseCases(
    Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutableUseCase>(aDeviant, queries::allIncludedUseCases(*this));
}

}  // namespace NSInterface

}  // namespace umlmm
