#pragma once

#include "kelm/ReferenceCountingIntf.h"
#include "vesk/factory/HandleClassInfo.h"

namespace Kelm::mi {

/// Drops the binding of an id and gives back the counts that the host object held on its object and on the
/// model of its variant, which may end both. An object that is gone already is left alone.
void releaseBoundObject(void* aId);
/// What the host asks of the objects that ids of DeviantRegistry stand for.
class BoundObjectHook final : public vesk::ObjectHook {
 public:
  using OpenDoor = bool (*)(vesk::VeskPropInfo const& aProperty, vesk::PropertyDoor& aDoor);

  static BoundObjectHook& instance() noexcept;
  /// Says how doors to the properties of the library are opened.
  void setDoors(OpenDoor aOpen) noexcept { fOpenDoor = aOpen; }

  /// The object of an id and its variant, which the read-only and the changeable view share; the id itself
  /// for one whose object is gone.
  vesk::Identity identify(void const* aId) const override;
  /// The host's place with the open model that an id stands for or whose element it stands for; null for what
  /// is neither.
  lum::HostPlace* hostPlace(void const* aId) const override;
  /// A copy of the element of an id, or of the elements of a model in the model of `aPlace`.
  vesk::VeskValue copy(void const* aId, void const* aPlace) const override;
  /// From now on the open model that an id stands for lives only as long as something of it is shown, or a
  /// reference holds it.
  void letGo(void const* aId) const override;
  bool openDoor(vesk::VeskPropInfo const& aProperty, vesk::PropertyDoor& aDoor) const override {
    return fOpenDoor != nullptr && fOpenDoor(aProperty, aDoor);
  }

 private:
  OpenDoor fOpenDoor = nullptr;
};

/// Base of all class infos whose instances are bound to counted objects: references, sequences, iterators and
/// enumeration literals.
class ClassMetaData : public vesk::factory::HandleClassInfo<ReferenceCountingIntf, false> {
 public:
  using HandleClassInfo::HandleClassInfo;
  void releaseInstance(vesk::VeskClient const*, void* aId) override { releaseBoundObject(aId); }
  vesk::ObjectHook const* getObjectHook() const override { return &BoundObjectHook::instance(); }
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
