#pragma once

#include <cstdint>

#include "kelm/ClassObject.h"
#include "kelm/ClassTable.h"
#include "kelm/ModelObject.h"

namespace Kelm::NSInterface {

/// The kernel part of every element: counts, identity, container and slots. All that does not depend on the
/// metaclass is implemented here, once, on the class table; a null table means that no element stands behind
/// the interface, and the members answer as the bare interface does.
class UMLMM_API ModelElementIntf : public ClassObjectIntf {
 public:
  int incRef() const final { return fClass == nullptr ? 0 : ++fCount; }
  int decRef() const final {
    if (fClass == nullptr) return 0;
    if (--fCount == 0) [[unlikely]] {
      fClass->fEngine->release(const_cast<ModelElementIntf*>(this));
      return 0;
    }
    return fCount;
  }
  int numRef() const final { return fClass == nullptr ? 0 : fCount; }
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const final {
    if (fClass == nullptr || aClassInfo.fType >= fClass->fInterfaceLimit) return nullptr;
    std::int16_t const offset = fClass->fInterfaceOffsets[aClassInfo.fType];
    if (offset == ClassTable::kNoInterface) return nullptr;
    return const_cast<char*>(reinterpret_cast<char const*>(this)) + offset;
  }
  char const* getVeskName(bool aImmutable) const final {
    if (fClass == nullptr) raiseNoElement();
    return aImmutable ? fClass->fImmutableVeskName : fClass->fVeskName;
  }
  bool deviant_isValid(Deviant aDeviant) const final { return fClass != nullptr && existsIn(aDeviant); }
  ImmutableType getMetaType(Deviant const& aDeviant) const final;
  void destroy(Deviant const& aDeviant) final;
  ImmutableClass getMetaClass() const final;
  Object getKernelEntry(Deviant const& aDeviant, unsigned aId) const final;
  void setKernelEntry(Deviant const& aDeviant, unsigned aId, Object const& aValue) final;
  Generic::SequenceIntf* getKernelSequence(Deviant const& aDeviant, unsigned aId) const final;

  // Below: for the metamodel's implementation only.

  /// Null for a bare interface.
  ClassTable const* classTable() const noexcept { return fClass; }
  /// Whether the element lives, its model is open, and the deviant is one of that model.
  bool existsIn(Deviant const& aDeviant) const noexcept {
    Variant const* const variant = aDeviant.variant();
    return variant != nullptr && fModel != nullptr && variant->fModel == fModel;
  }

  /// First slot word.
  std::uint64_t* slots() noexcept {
    return reinterpret_cast<std::uint64_t*>(reinterpret_cast<char*>(this) + fClass->fSlotOffset);
  }
  std::uint64_t const* slots() const noexcept { return const_cast<ModelElementIntf*>(this)->slots(); }

  enum Mark : std::uint8_t {
    HasContents = 1,   ///< Something was put into it once: only such elements can close a cycle of ownership.
    HasComputed = 2,   ///< The model keeps sequences of computed features for it.
    Dying = 4,         ///< Being destroyed or dropped.
    HasToolTexts = 8,  ///< Other tools' texts are kept for it.
    WalkMarks = 0xF0   ///< For walks over the model; clear between them.
  };
  /// Marks, added up.
  std::uint8_t fMarks = 0;
  /// The stored containment feature that holds the element; meaningless without a container.
  std::uint16_t fContainerFeature = 0;

 protected:
  ModelElementIntf() noexcept = default;
  ~ModelElementIntf() override = default;
  /// Called by the constructor of each interface class with its metaclass: the last call names the class in
  /// the failure of a bare interface.
  void noteInterface(int aMetaclass) noexcept { fHint = aMetaclass; }

 private:
  [[noreturn]] void raiseNoElement() const;

 public:
  mutable std::int32_t fCount = 0;
  ClassTable const* fClass = nullptr;
  ModelElementIntf* fContainer = nullptr;
  /// Null once the element is destroyed or its model closed.
  ModelObject* fModel = nullptr;
  /// Where the element stood last in the list that owns it.
  std::int32_t fHint = 0;
  std::uint32_t fFlags = 0;
  /// Who refers to the element through features without a far end; zero for nobody. Once the element is gone,
  /// what the metamodel keeps of it.
  std::uintptr_t fReferrers = 0;
};

/// Set by the metamodel: the name of a metaclass by index, for the failure of a bare interface.
UMLMM_API extern char const* (*metaclassName)(int aMetaclass);

}  // namespace Kelm::NSInterface
