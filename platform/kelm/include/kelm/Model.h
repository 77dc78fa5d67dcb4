#pragma once

#include "kelm/Object.h"
#include "kelm/String.h"

namespace Kelm {

namespace NSInterface {

/// A model: owner of its top-level elements. One thread at a time uses it and all that was read from it;
/// models in different threads are independent, and a model may be handed from one thread to another between
/// calls. The virtual members other than the three inline ones are the
/// implementation's (kelm/ModelObject.h).
class UMLMM_API ModelIntf : public ObjectIntf {
 public:
  ~ModelIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;
  int incRef() const override { return 0; }
  int decRef() const override { return 0; }
  char const* getVeskName(bool) const override {
    raiseFailure(words::kInternalError, "kelm/Kelm/NSInterface/ModelIntf");
  }
  /// Binds a model of the cache anew; raises, with the old uri kept, when another one has the new one there.
  virtual void setModelUri(Deviant const& aDeviant, String const& aUri) = 0;
  virtual String getModelUri(Deviant const& aDeviant) const = 0;
};

/// Makes models.
class UMLMM_API FactoryIntf : public ObjectIntf {
 public:
  ~FactoryIntf() override;
  /// A new, empty model without a uri, in its base variant, not in the cache: it lives as long as the
  /// handle's copies and the host's objects of it.
  static Model createNewModel();
};

/// Base of the element factories of a metamodel.
class UMLMM_API FactoryObjectIntf : public ObjectIntf {
 public:
  ~FactoryObjectIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;
  /// The model that the factory makes elements in.
  virtual Model getModel(Deviant const& aDeviant) const = 0;
};

}  // namespace NSInterface

/// Read-only reference to a model.
class ImmutableModel : public Handle<NSInterface::ModelIntf> {
 public:
  using Handle::Handle;
  ImmutableModel() noexcept = default;
  ImmutableModel(Handle const& aOther) : Handle(aOther) {}
  String getModelUri() const { return checked("kelm/Kelm/Model_h")->getModelUri(fDeviant); }
};

/// Changeable reference to a model. It keeps the model open: when the last goes, and with it the cache's and
/// the host's counts, the elements go, and references to them answer false to `isvalid`.
class Model : public ImmutableModel {
 public:
  Model() noexcept = default;
  Model(NSInterface::ModelIntf const* aImpl, Deviant aDeviant) : ImmutableModel(aImpl, aDeviant) {}
  explicit Model(Handle const& aOther) : ImmutableModel(aOther) {}

  NSInterface::ModelIntf* get() const noexcept { return const_cast<NSInterface::ModelIntf*>(fImpl); }
  /// The implementation behind a non-null model; raises the null-reference failure otherwise.
  UMLMM_API ModelObject& object() const;
  void setModelUri(String const& aUri) const { writable("kelm/Kelm/Model_h")->setModelUri(fDeviant, aUri); }
};

class ImmutableFactoryObject : public Handle<NSInterface::FactoryObjectIntf> {
 public:
  using Handle::Handle;
  ImmutableFactoryObject() noexcept = default;
  ImmutableFactoryObject(Handle const& aOther) : Handle(aOther) {}
};

class FactoryObject : public ImmutableFactoryObject {
 public:
  FactoryObject() noexcept = default;
  FactoryObject(NSInterface::FactoryObjectIntf const* aImpl, Deviant aDeviant)
      : ImmutableFactoryObject(aImpl, aDeviant) {}
  explicit FactoryObject(Handle const& aOther) : ImmutableFactoryObject(aOther) {}
};

/// Brings the kernel up: runs the start-up callbacks, once, on the calling thread, in the order in which they
/// were added. Later calls do nothing and wait for nobody. What a callback raises comes through; the ones
/// behind it are lost.
UMLMM_API void initialize();
/// Adds a callback for `initialize`; runs it at once, on this thread, if the kernel is up or coming up.
UMLMM_API void addStartupCallback(void (*aCallback)());

}  // namespace Kelm
