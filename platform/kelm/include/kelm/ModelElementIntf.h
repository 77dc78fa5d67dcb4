#pragma once

#include <cstdint>

#include "kelm/ClassObject.h"
#include "kelm/ClassTable.h"
#include "kelm/ModelObject.h"

namespace Kelm {
class ElementState;
}

namespace Kelm::NSInterface {

/// The kernel part of every element: counts, identity, container and slots. All that does not depend on the
/// metaclass is implemented here, once, on the class table; a null table means that no element stands behind
/// the interface, and the members answer as the bare interface does: they raise an internal error, or answer
/// null, false and 0 where they can't raise.
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

  // Below: for the metamodel's implementation only, which changes what is read here through ElementState.

  /// Null for a bare interface.
  ClassTable const* classTable() const noexcept { return fClass; }
  /// Null for an element at the top level, and for one that is gone.
  ModelElementIntf* container() const noexcept { return fContainer; }
  /// The stored containment feature that holds the element; meaningless without a container.
  std::uint16_t containerFeature() const noexcept { return fContainerFeature; }
  /// Null once the element is destroyed or its model closed.
  ModelObject* model() const noexcept { return fModel; }
  /// Booleans and enumerations, as the class table lays them out.
  std::uint32_t flags() const noexcept { return fFlags; }
  /// Whether anybody refers to the element through a feature without a far end.
  bool hasReferrers() const noexcept { return fReferrers != 0; }
  /// Whether the element lives, its model is open, and the deviant is one of that model.
  bool existsIn(Deviant const& aDeviant) const noexcept {
    Variant const* const variant = aDeviant.variant();
    return variant != nullptr && fModel != nullptr && variant->fModel == fModel;
  }

  /// First slot word; only what `classTable` says is where tells what a word is.
  std::uint64_t const* slots() const noexcept {
    return reinterpret_cast<std::uint64_t const*>(reinterpret_cast<char const*>(this) + fClass->fSlotOffset);
  }

  enum Mark : std::uint8_t {
    HasContents = 1,   ///< Something was put into it once: only such elements can close a cycle of ownership.
    HasAside = 2,      ///< The model keeps for it what has no place in its slots.
    Dying = 4,         ///< Being destroyed or dropped.
    HasToolTexts = 8,  ///< Other tools' texts are kept for it.
    WalkMarks = 0xF0   ///< For walks over the model; clear between them.
  };
  /// Marks, added up.
  std::uint8_t marks() const noexcept { return fMarks; }

 protected:
  ModelElementIntf() noexcept = default;
  ~ModelElementIntf() override = default;
  /// Called by the constructor of each interface class with its metaclass: the last call names the class in
  /// the failure of a bare interface.
  void noteInterface(int aMetaclass) noexcept { fHint = aMetaclass; }

 private:
  [[noreturn]] void raiseNoElement() const;

  friend class Kelm::ElementState;

  std::uint8_t fMarks = 0;
  std::uint16_t fContainerFeature = 0;
  mutable std::int32_t fCount = 0;
  ClassTable const* fClass = nullptr;
  ModelElementIntf* fContainer = nullptr;
  ModelObject* fModel = nullptr;
  /// Where the element stood last in the list that owns it.
  std::int32_t fHint = 0;
  std::uint32_t fFlags = 0;
  /// Who refers to the element through features without a far end; zero for nobody. Once the element is gone,
  /// what the metamodel keeps of it.
  std::uintptr_t fReferrers = 0;
};

}  // namespace Kelm::NSInterface

namespace Kelm {

/// The one way to write what an element is made of. The gate of changes uses it, with the few that keep its
/// books: lists of elements, the model's top level, who refers to whom, marks of walks. Everybody else reads.
class ElementState {
 public:
  using Element = NSInterface::ModelElementIntf;

  static std::uint8_t& marks(Element& aElement) noexcept { return aElement.fMarks; }
  static std::uint16_t& containerFeature(Element& aElement) noexcept { return aElement.fContainerFeature; }
  static Element*& container(Element& aElement) noexcept { return aElement.fContainer; }
  static ModelObject*& model(Element& aElement) noexcept { return aElement.fModel; }
  static std::int32_t& hint(Element& aElement) noexcept { return aElement.fHint; }
  static std::uint32_t& flags(Element& aElement) noexcept { return aElement.fFlags; }
  static std::uintptr_t& referrers(Element& aElement) noexcept { return aElement.fReferrers; }
  static std::uintptr_t referrers(Element const& aElement) noexcept { return aElement.fReferrers; }
  static std::uint64_t* slots(Element& aElement) noexcept {
    return const_cast<std::uint64_t*>(aElement.slots());
  }
  static ClassTable const*& table(Element& aElement) noexcept { return aElement.fClass; }
  /// Brings a fresh element, with one count, to the class and into the model.
  static void begin(Element& aElement, ClassTable const& aClass, ModelObject& aModel) noexcept {
    aElement.fClass = &aClass;
    aElement.fFlags = aClass.fDefaultFlags;
    aElement.fModel = &aModel;
    aElement.fCount = 1;
  }
};

}  // namespace Kelm

namespace Kelm::NSInterface {

/// Set by the metamodel: the name of a metaclass by index, for the failure of a bare interface.
UMLMM_API extern char const* (*metaclassName)(int aMetaclass);

}  // namespace Kelm::NSInterface
