#include "engine/accessors.h"

#include "engine/access.h"
#include "engine/failures.h"

namespace umlmm::engine::accessors {

namespace {

using engine::Element;
using Base = Kelm::NSInterface::ClassObjectIntf;

Feature const& featureAt(int aMetaclass, unsigned aId) {
  Metaclass const& metaclass = kMetaclasses[aMetaclass];
  if (aId - 1 >= metaclass.fFeatureCount) [[unlikely]]
    Kelm::raiseFailure(Kelm::words::kInvalidMetaPropertyId, "uml_metamodel/engine");
  return kFeatures[metaclass.fFirstFeature + aId - 1];
}

/// The element, if its metaclass has the feature.
template <class E>
auto& elementWith(E* aElement, Feature const& aFeature) {
  using Wanted = std::conditional_t<std::is_const_v<E>, engine::Element const, engine::Element>;
  auto& element = static_cast<Wanted&>(*aElement);
  if (!isA(element, aFeature.fOwner)) [[unlikely]]
    failures::raiseNotMember(element, aFeature);
  return element;
}

}  // namespace

Kelm::Object getEntry(Base const* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  return read(elementWith(aElement, wanted), aDeviant, wanted);
}

bool isSetEntry(Base const* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  return isSet(elementWith(aElement, wanted), aDeviant, wanted);
}

void setEntry(Base* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId,
              Kelm::Object const& aValue) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  write(elementWith(aElement, wanted), aDeviant, wanted, aValue);
}

Kelm::Generic::SequenceIntf* getSequenceEntry(Base const* aElement, Kelm::Deviant const& aDeviant,
                                              int aMetaclass, unsigned aId) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  return sequence(elementWith(aElement, wanted), aDeviant, wanted);
}

void unsetEntry(Base* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  unset(elementWith(aElement, wanted), aDeviant, wanted);
}

void setSequenceEntry(Base* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId,
                      Kelm::Generic::SequenceIntf const* aValues, Kelm::Deviant const& aValuesDeviant) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  assign(elementWith(aElement, wanted), aDeviant, wanted, aValues, aValuesDeviant);
}

bool isReadOnlyEntry(int aMetaclass, unsigned aId) { return featureAt(aMetaclass, aId).fReadOnly; }

}  // namespace umlmm::engine::accessors
