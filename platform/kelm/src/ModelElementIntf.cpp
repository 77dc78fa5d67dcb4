#include "kelm/ModelElementIntf.h"

#include <string>

#include "kelm/meta.h"

namespace Kelm::NSInterface {

char const* (*metaclassName)(int aMetaclass) = nullptr;

ImmutableType ModelElementIntf::getMetaType(Deviant const&) const {
  return ImmutableType(fClass == nullptr ? nullptr : fClass->fMetaClass, metaDeviant());
}

ImmutableClass ModelElementIntf::getMetaClass() const {
  return ImmutableClass(fClass == nullptr ? nullptr : fClass->fMetaClass, metaDeviant());
}

void ModelElementIntf::destroy(Deviant const& aDeviant) {
  if (fClass == nullptr) raiseNoElement();
  fClass->fEngine->destroy(this, aDeviant);
}

Object ModelElementIntf::getKernelEntry(Deviant const& aDeviant, unsigned aId) const {
  if (fClass == nullptr) raiseNoElement();
  return fClass->fEngine->getKernelEntry(this, aDeviant, aId);
}

void ModelElementIntf::setKernelEntry(Deviant const& aDeviant, unsigned aId, Object const& aValue) {
  if (fClass == nullptr) raiseNoElement();
  fClass->fEngine->setKernelEntry(this, aDeviant, aId, aValue);
}

Generic::SequenceIntf* ModelElementIntf::getKernelSequence(Deviant const& aDeviant, unsigned aId) const {
  if (fClass == nullptr) raiseNoElement();
  return fClass->fEngine->getKernelSequence(this, aDeviant, aId);
}

void ModelElementIntf::raiseNoElement() const {
  std::string source = "uml_metamodel/umlmm/NSInterface/";
  source += metaclassName == nullptr ? "Element" : metaclassName(fHint);
  source += "Intf";
  raiseFailure(words::kInternalError, source.c_str());
}

}  // namespace Kelm::NSInterface
