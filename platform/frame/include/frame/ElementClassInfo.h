#pragma once

#include "kelm/ReferenceCountingIntf.h"
#include "vesk/factory/HandleClassInfo.h"

namespace Kelm::mi {

/// Drops the binding of an id and gives back the counts that the host object held on its object and on the
/// model of its variant, which may end both. An object that is gone already is left alone.
void releaseBoundObject(void* aId);
/// The object of an id and its variant, which the read-only and the changeable view share; the id itself for
/// one whose object is gone.
[[nodiscard]] vesk::Identity identifyBoundObject(void const* aId);
/// The host's place with the open model that an id stands for or whose element it stands for; null for what
/// is neither.
[[nodiscard]] lum::HostPlace* hostPlaceOfModel(void const* aId);
/// From now on the open model that an id stands for lives only as long as something of it is shown, or a
/// reference holds it.
void letGoOfModel(void const* aId);
/// A copy of the element of an id, or of the elements of a model in the model of `aPlace`.
[[nodiscard]] vesk::VeskValue copyBoundObject(void const* aId, void const* aPlace);

/// Base of all class infos whose instances are bound to counted objects: references, sequences, iterators and
/// enumeration literals.
class ClassMetaData : public vesk::factory::HandleClassInfo<ReferenceCountingIntf, false> {
 public:
  using HandleClassInfo::HandleClassInfo;
  void releaseInstance(vesk::VeskClient const*, void* aId) override { releaseBoundObject(aId); }
  vesk::Identity identify(void const* aId) const override { return identifyBoundObject(aId); }
  lum::HostPlace* hostPlace(void const* aId) const override { return hostPlaceOfModel(aId); }
  vesk::VeskValue copy(void const* aId, void const* aPlace) const override {
    return copyBoundObject(aId, aPlace);
  }
  void letGo(void const* aId) const override { letGoOfModel(aId); }
};

/// Base of the class infos of meta-property classes, whose instances are bound to stateless markers and own
/// them.
template <class Marker>
class MetaPropertyMetaData : public vesk::factory::HandleClassInfo<Marker, false> {
 public:
  using vesk::factory::HandleClassInfo<Marker, false>::HandleClassInfo;
  void releaseInstance(vesk::VeskClient const*, void* aId) override {
    vesk::factory::basic::BindingRegistry::remove(aId);
    delete static_cast<Marker*>(aId);
  }
};

}  // namespace Kelm::mi
