#include "factory/FactoryBase.h"

#include "factory/FactoryObject.h"
#include "factory/textual.h"
#include "uml_metamodel/umlmm.h"

namespace umlmm {

namespace factory {

int FactoryBase::decRef() const {
  int const count = --fCount;
  if (count == 0) delete this;
  return count;
}

void* FactoryBase::cast(Kelm::CooperativeVisitor::internal::ClassInfo const& aClassInfo) const {
  if (aClassInfo.fType == Kelm::tagPair<NSInterface::FactoryIntf, VisitationDomain>().fType)
    return const_cast<NSInterface::FactoryIntf*>(static_cast<NSInterface::FactoryIntf const*>(this));
  return FactoryObjectIntf::cast(aClassInfo);
}

char const* FactoryBase::getVeskName(bool aImmutable) const {
  return aImmutable ? "umlmm.ImmutableFactory" : "umlmm.Factory";
}

bool FactoryBase::deviant_isValid(Kelm::Deviant aDeviant) const {
  return fModel.get()->deviant_isValid(aDeviant);
}

Kelm::Model FactoryBase::getModel(Kelm::Deviant const& aDeviant) const {
  return Kelm::Model(fModel.get(), aDeviant);
}

Kelm::Object FactoryBase::createFromString(Kelm::Deviant const& aDeviant, Kelm::String const& aText) {
  return textual::create(getModel(aDeviant), aText.text());
}

Kelm::Object FactoryBase::createFromString(Kelm::Deviant const& aDeviant, Kelm::String const& aType,
                                           Kelm::String const& aText) {
  return textual::create(getModel(aDeviant), aType.text(), aText.text());
}

}  // namespace factory

NSInterface::FactoryIntf::~FactoryIntf() = default;

NSInterface::FactoryIntf* NSInterface::FactoryIntf::createNewFactory(Kelm::Model aModel) {
  return aModel.isNull() ? nullptr : new factory::FactoryObject(aModel);
}

}  // namespace umlmm
