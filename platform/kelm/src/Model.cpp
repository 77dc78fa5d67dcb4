#include "kelm/Model.h"

#include "asks.h"
#include "kelm/ModelObject.h"

namespace Kelm {

namespace NSInterface {

using CooperativeVisitor::internal::ClassInfo;

ModelIntf::~ModelIntf() = default;
FactoryIntf::~FactoryIntf() = default;
FactoryObjectIntf::~FactoryObjectIntf() = default;

void* ModelIntf::cast(ClassInfo const& aClassInfo) const {
  return asksFor<ModelIntf>(aClassInfo) ? castAnswer(this) : ObjectIntf::cast(aClassInfo);
}

void* FactoryObjectIntf::cast(ClassInfo const& aClassInfo) const {
  return asksFor<FactoryObjectIntf>(aClassInfo) ? castAnswer(this) : ObjectIntf::cast(aClassInfo);
}

Model FactoryIntf::createNewModel() {
  auto* const model = new ModelObject;
  return Model(model, model->baseDeviant());
}

}  // namespace NSInterface

ModelObject& Model::object() const {
  return *static_cast<ModelObject*>(const_cast<NSInterface::ModelIntf*>(checked("kelm/Kelm/Model_h")));
}

}  // namespace Kelm
