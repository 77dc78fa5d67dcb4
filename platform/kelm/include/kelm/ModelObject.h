#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "kelm/ElementList.h"
#include "kelm/Model.h"
#include "kelm/blocks.h"
#include "lum/host_word.h"

namespace Kelm {

/// What the metamodel notes of a change, to take it back.
class ChangeRecord;

/// What the metamodel keeps with a model, such as its index of elements by metaclass. It ends with the model.
class UMLMM_API ModelCompanion {
 public:
  virtual ~ModelCompanion();
};

/// The ids that elements have in files, for a floor that reads some. What is set by `ExternalId` comes before
/// them.
class UMLMM_API ExternalIds {
 public:
  /// The empty text for an element without one.
  virtual String externalId(NSInterface::ModelElementIntf const& aElement) const = 0;

 protected:
  ~ExternalIds() = default;
};

/// A link of a chain that starts in a model; the link's owner enters and leaves as it likes.
class ModelLink {
 public:
  ModelLink() noexcept = default;
  ModelLink(ModelLink const&) = delete;
  ModelLink& operator=(ModelLink const&) = delete;

  void enter(ModelLink*& aFirst) noexcept {
    fNext = aFirst;
    if (fNext != nullptr) fNext->fPlace = &fNext;
    fPlace = &aFirst;
    aFirst = this;
  }
  void leave() noexcept {
    *fPlace = fNext;
    if (fNext != nullptr) fNext->fPlace = fPlace;
    fPlace = nullptr;
  }
  bool isLinked() const noexcept { return fPlace != nullptr; }

 protected:
  ~ModelLink() = default;

 private:
  /// What points at the link; null outside of a chain.
  ModelLink** fPlace = nullptr;
  ModelLink* fNext = nullptr;
};

/// A model. It owns its top-level elements; the rest are owned by their containers. It lives as long as a
/// handle, a host object or the model cache counts it; when the last goes, or at `close`, its elements go
/// too. All that belongs to a model is reached through it, so models in different threads don't meet, not
/// even in a line of the cache.
class UMLMM_API ModelObject final : public NSInterface::ModelIntf {
 public:
  ModelObject();

  int incRef() const override { return ++fCount; }
  int decRef() const override;
  int numRef() const override { return fCount; }
  char const* getVeskName(bool aImmutable) const override;
  /// Whether the model is open and the variant its own.
  bool deviant_isValid(Deviant aDeviant) const override;
  void destroy(Deviant const& aDeviant) override;
  void setModelUri(Deviant const& aDeviant, String const& aUri) override;
  String getModelUri(Deviant const& aDeviant) const override;

  Deviant baseDeviant() const noexcept { return Deviant(fBase); }
  /// The read-only variant of the same data; one for a model, made at the first call, which takes memory.
  /// What is changed through the base variant is seen through it at once.
  Deviant readOnlyDeviant();
  bool isOpen() const noexcept { return fBase->fModel != nullptr; }
  /// Unbinds the model, closes its variants and drops its elements; needs no memory. Handles to them answer
  /// false to `isvalid`, and so do those of the model. A closed model stays closed; a second call does
  /// nothing.
  void close();

  /// Takes an element without a container into the model, which takes over one of its counts. Nothing has
  /// changed if it raises.
  void addRoot(NSInterface::ModelElementIntf* aElement);
  /// Makes room for more top-level elements, so that adding them can't fail.
  void reserveRoots(std::uint32_t aCount) { PartList::reserve(fRoots, *fBlocks, aCount); }
  /// Lets a top-level element go, without giving back its count.
  void removeRoot(NSInterface::ModelElementIntf* aElement) noexcept;
  /// Undoes `removeRoot`; `aPrevious` stood before the element, null for the first.
  void restoreRoot(NSInterface::ModelElementIntf* aPrevious,
                   NSInterface::ModelElementIntf* aElement) noexcept;
  /// In the order of their making or coming; null for none.
  PartList* roots() const noexcept { return fRoots; }
  /// Memory for its elements and their lists.
  Blocks& blocks() const noexcept { return *fBlocks; }

  /// Counts every change in the model, so that computed values know when they are stale.
  std::uint64_t revision() const noexcept { return fRevision; }
  void noteChange() noexcept { ++fRevision; }

  /// The record of the change that is under way, or null.
  ChangeRecord* record() const noexcept { return fRecord; }
  void setRecord(ChangeRecord* aRecord) noexcept { fRecord = aRecord; }

  ModelCompanion* companion() const noexcept { return fCompanion; }
  /// The model takes ownership and deletes the old one.
  void setCompanion(ModelCompanion* aCompanion) noexcept;
  /// A second companion, which goes after all elements are dropped.
  ModelCompanion* notes() const noexcept { return fNotes.get(); }
  void setNotes(std::unique_ptr<ModelCompanion> aNotes) noexcept { fNotes = std::move(aNotes); }
  /// What a floor above keeps with the model, by a key of its own; null for nothing. It goes when the model
  /// is closed, after all elements are dropped.
  ModelCompanion* attachment(void const* aKey) const noexcept;
  /// Takes the place of what the key had.
  void attach(void const* aKey, std::unique_ptr<ModelCompanion> aAttachment);
  /// Null for none. It lives as long as the model has it.
  ExternalIds const* externalIds() const noexcept { return fExternalIds; }
  void setExternalIds(ExternalIds const* aIds) noexcept { fExternalIds = aIds; }
  /// A chain for the metamodel's use.
  ModelLink*& links() noexcept { return fLinks; }
  /// The host shows one more object of the open model, or one less: all that it shows together count the
  /// model once. What it shows of a closed model does not matter any more.
  void enterHost() noexcept {
    if (fShown++ == 0) incRef();
  }
  void leaveHost() {
    if (--fShown == 0) decRef();
  }
  /// For the host, as long as the model is open; cleared at the end of `close`.
  lum::HostPlace& hostPlace() noexcept { return fHostPlace; }

 private:
  ~ModelObject() override;
  void assertExists(Deviant const& aDeviant) const;

  static constexpr std::size_t kCacheLine = 64;

  alignas(kCacheLine) mutable std::int32_t fCount = 0;
  /// What the host shows.
  std::int64_t fShown = 0;
  std::uint64_t fRevision = 1;
  Variant* fBase;
  Variant* fReadOnly = nullptr;
  ChangeRecord* fRecord = nullptr;
  PartList* fRoots = nullptr;
  Blocks::Owner fBlocks = Blocks::make();
  ModelCompanion* fCompanion = nullptr;
  std::unique_ptr<ModelCompanion> fNotes;
  std::vector<std::pair<void const*, std::unique_ptr<ModelCompanion>>> fAttachments;
  ModelLink* fLinks = nullptr;
  ExternalIds const* fExternalIds = nullptr;
  lum::HostPlace fHostPlace;
  String fUri;
};

/// Called by `close`: marks all elements of the model as gone and releases them. Set by the metamodel.
UMLMM_API extern void (*dropElements)(ModelObject& aModel);

}  // namespace Kelm
