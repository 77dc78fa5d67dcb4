#pragma once

#include "kelm/IntrospectiveMethods.h"
#include "kelm/Object.h"

namespace Kelm {

namespace NSInterface {

/// An element of a model, as the kernel sees it.
class UMLMM_API ClassObjectIntf : public ObjectIntf {
 public:
  /// Ids of the kernel's own features in `sIntrospectiveMethods`.
  enum KernelFeature : unsigned {
    AppliedStereotypeInstance = 1,
    ModelKelm,
    ContainerKelm,
    ContaineeKelm,
    RootModel,
    ExternalId,
    ExternalToolInfo,
    Uri
  };
  static constexpr unsigned kKernelFeatureCount = 8;
  static IntrospectiveMethods const sIntrospectiveMethods;

  ~ClassObjectIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;

  /// The element's class.
  virtual ImmutableClass getMetaClass() const = 0;
  /// Single-valued kernel features; a null object when unset.
  virtual Object getKernelEntry(Deviant const& aDeviant, unsigned aId) const = 0;
  /// `ExternalId` and `ExternalToolInfo` can be set; the rest raise.
  virtual void setKernelEntry(Deviant const& aDeviant, unsigned aId, Object const& aValue) = 0;
  /// Many-valued kernel features: `AppliedStereotypeInstance` and `ContaineeKelm`, live.
  virtual Generic::SequenceIntf* getKernelSequence(Deviant const& aDeviant, unsigned aId) const = 0;
};

}  // namespace NSInterface

/// Read-only reference to an element.
class ImmutableClassObject : public Handle<NSInterface::ClassObjectIntf> {
 public:
  using Handle::Handle;
  ImmutableClassObject() noexcept = default;
  ImmutableClassObject(Handle const& aOther) : Handle(aOther) {}
  /// The class of all elements.
  UMLMM_API static ImmutableClass MetaClass();
};

/// Changeable reference to an element.
class ClassObject : public ImmutableClassObject {
 public:
  ClassObject() noexcept = default;
  ClassObject(NSInterface::ClassObjectIntf const* aImpl, Deviant aDeviant)
      : ImmutableClassObject(aImpl, aDeviant) {}
  explicit ClassObject(Handle const& aOther) : ImmutableClassObject(aOther) {}

  NSInterface::ClassObjectIntf* get() const noexcept {
    return const_cast<NSInterface::ClassObjectIntf*>(fImpl);
  }
  void destroy() const { writable("kelm/Kelm/ClassObject_h")->destroy(fDeviant); }
};

}  // namespace Kelm
