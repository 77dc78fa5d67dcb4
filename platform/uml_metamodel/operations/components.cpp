#include "operations/answers.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/Classifier.h"
#include "uml_metamodel/umlmm/Component.h"
#include "uml_metamodel/umlmm/Interface.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/components";

}  // namespace

namespace NSInterface {

using engine::readable;
Kelm::ImmutableSequence<ImmutableInterface> ComponentIntf::realizedInterfaces(
    Kelm::Deviant const& aDeviant, ImmutableClassifier const& aClassifier) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return operations::makeResult<ImmutableInterface>(
      aDeviant, queries::realizedInterfaces(operations::given(self, aClassifier)));
}

Kelm::ImmutableSequence<ImmutableInterface> ComponentIntf::usedInterfaces(
    Kelm::Deviant const& aDeviant, ImmutableClassifier const& aClassifier) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return operations::makeResult<ImmutableInterface>(
      aDeviant, queries::usedInterfaces(operations::given(self, aClassifier)));
}

}  // namespace NSInterface

}  // namespace umlmm
