#pragma once

#include "kelm/IntrospectiveMethods.h"
#include "kelm/Object.h"

namespace Kelm {

namespace NSInterface {

/// An element of a model, as the kernel sees it.
class UMLMM_API ClassObjectIntf : public ObjectIntf {
 public:
  /// Ids of the kernel's own features in `sIntrospectiveMethods`. They are no features of UML.
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

  /// The element's class; it stays known when the element is destroyed.
  virtual ImmutableClass getMetaClass() const = 0;
  /// Single-valued kernel features; a null object when unset, and for ids of the others. Raises when the
  /// element does not exist in the variant.
  virtual Object getKernelEntry(Deviant const& aDeviant, unsigned aId) const = 0;
  /// `ExternalId` and `ExternalToolInfo` can be set, to a text or to null, which unsets; the rest raise.
  virtual void setKernelEntry(Deviant const& aDeviant, unsigned aId, Object const& aValue) = 0;
  /// Many-valued kernel features: `AppliedStereotypeInstance` and `ContaineeKelm`, live; null for other ids.
  /// They share the element's count: keep them by `incRef`.
  virtual Generic::SequenceIntf* getKernelSequence(Deviant const& aDeviant, unsigned aId) const = 0;
};

}  // namespace NSInterface

/// Read-only reference to an element. The mutability is the reference's alone: the element may change, and a
/// changeable reference to it can be had.
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
  /// Takes the element and all that it owns out of the model, and out of every feature that names one of
  /// them; it needs no memory. References to them stay and answer false to `isvalid`. Raises for a null
  /// reference, a read-only variant, and an element that is gone.
  void destroy() const { writable("kelm/Kelm/ClassObject_h")->destroy(fDeviant); }
};

}  // namespace Kelm
