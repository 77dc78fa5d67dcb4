#include <algorithm>

#include "operations/answers.h"
#include "queries/queries.h"
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

namespace NSInterface {

using engine::readable;
using operations::given;
using operations::makeResult;

Kelm::ImmutableSequence<ImmutableFeature> ClassifierIntf::allFeatures(Kelm::Deviant const& aDeviant) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  queries::Elements features = queries::members(self);
  std::erase_if(features,
                [&](engine::Element* aMember) { return !self.on(*aMember).isA(ids::metaclass::Feature); });
  return makeResult<ImmutableFeature>(aDeviant, std::move(features));
}

Kelm::ImmutableSequence<ImmutableClassifier> ClassifierIntf::parents(Kelm::Deviant const& aDeviant) const {
  return makeResult<ImmutableClassifier>(aDeviant, queries::parents(readable(*this, aDeviant, kSource)));
}

Kelm::ImmutableSequence<ImmutableClassifier> ClassifierIntf::allParents(Kelm::Deviant const& aDeviant) const {
  return makeResult<ImmutableClassifier>(aDeviant, queries::allParents(readable(*this, aDeviant, kSource)));
}

Kelm::ImmutableSequence<ImmutableNamedElement> ClassifierIntf::inheritableMembers(
    Kelm::Deviant const& aDeviant, ImmutableClassifier const& aC) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return makeResult<ImmutableNamedElement>(aDeviant, queries::inheritableMembers(self, given(self, aC)));
}

Boolean ClassifierIntf::hasVisibilityOf(Kelm::Deviant const& aDeviant,
                                        ImmutableNamedElement const& aN) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return queries::hasVisibilityOf(self, given(self, aN));
}

Boolean TypeIntf::conformsTo(Kelm::Deviant const& aDeviant, ImmutableType const& aOther) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return queries::conformsTo(self, given(self, aOther));
}

Boolean ClassifierIntf::conformsTo(Kelm::Deviant const& aDeviant, ImmutableClassifier const& aOther) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return queries::conformsTo(self, given(self, aOther));
}

Kelm::ImmutableSequence<ImmutableNamedElement> ClassifierIntf::inherit(
    Kelm::Deviant const& aDeviant, Kelm::ImmutableSequence<ImmutableNamedElement> const& aInhs) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return makeResult<ImmutableNamedElement>(aDeviant,
                                           queries::inherit(self, operations::givenElements(self, aInhs)));
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
  engine::Reading const self = readable(*this, aDeviant, kSource);
  engine::Reading const general = given(self, aC);
  return general && self.isA(general.metaclass());
}

Kelm::ImmutableSequence<ImmutableUseCase> UseCaseIntf::allIncludedUseCases(
    Kelm::Deviant const& aDeviant) const {
  return makeResult<ImmutableUseCase>(aDeviant,
                                      queries::allIncludedUseCases(readable(*this, aDeviant, kSource)));
}

}  // namespace NSInterface

}  // namespace umlmm
