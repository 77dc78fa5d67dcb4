#include "kelm/DeviantRegistry.h"

#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Kelm {

namespace {

/// All id records. A retracted record whose host word is still set is parked: the host may ask its id again.
/// Records without a host object are handed out first, then parked ones that have lost theirs, then new ones.
class RecordPool {
 public:
  IdRecord* take() {
    IdRecord* record = takeFree();
    if (record == nullptr) record = takeParked();
    if (record == nullptr) record = makeRecord();
    ++fLive;
    return record;
  }

  void giveBack(IdRecord* aRecord) noexcept {
    --fLive;
    aRecord->fObject = nullptr;
    aRecord->fDeviant = Deviant();
    if (aRecord->fHost == nullptr)
      pushFree(aRecord);
    else
      park(aRecord);
  }

  std::size_t live() const noexcept { return fLive; }

 private:
  static constexpr std::size_t kChunk = 512;
  // Two looks for each record taken find the freed ones faster than they come, whatever else is parked.
  static constexpr int kLooks = 2;

  IdRecord* takeFree() noexcept {
    while (fFree != nullptr) {
      IdRecord* const record = std::exchange(fFree, fFree->fNext);
      if (record->fHost == nullptr) return record;
      park(record);
    }
    return nullptr;
  }

  IdRecord* takeParked() noexcept {
    IdRecord* found = nullptr;
    for (int look = 0; look < kLooks && fParkedFirst != nullptr; ++look) {
      IdRecord* const record = fParkedFirst;
      fParkedFirst = record->fNext;
      if (fParkedFirst == nullptr) fParkedLast = nullptr;
      if (record->fHost != nullptr)
        park(record);
      else if (found == nullptr)
        found = record;
      else
        pushFree(record);
    }
    return found;
  }

  void pushFree(IdRecord* aRecord) noexcept {
    aRecord->fNext = fFree;
    fFree = aRecord;
  }

  void park(IdRecord* aRecord) noexcept {
    aRecord->fNext = nullptr;
    (fParkedLast == nullptr ? fParkedFirst : fParkedLast->fNext) = aRecord;
    fParkedLast = aRecord;
  }

  IdRecord* makeRecord() {
    if (fUsedOfChunk == kChunk) {
      fChunks.push_back(std::make_unique<IdRecord[]>(kChunk));
      fUsedOfChunk = 0;
    }
    return &fChunks.back()[fUsedOfChunk++];
  }

  std::vector<std::unique_ptr<IdRecord[]>> fChunks;
  std::size_t fUsedOfChunk = kChunk;
  std::size_t fLive = 0;
  IdRecord* fFree = nullptr;
  IdRecord* fParkedFirst = nullptr;
  IdRecord* fParkedLast = nullptr;
};

// Never destroyed: objects and host objects that die at exit come after.
RecordPool& pool() {
  static RecordPool& sPool = *new RecordPool;
  return sPool;
}

/// The permanent record of null references of one deviant and mutability.
IdRecord* nullRecord(Deviant aDeviant, bool aIsImmutable) {
  static auto& sRecords = *new std::unordered_map<std::uintptr_t, IdRecord[2]>;
  IdRecord& record = sRecords[aDeviant.word()][aIsImmutable];
  record.fDeviant = aDeviant;
  record.fImmutable = aIsImmutable;
  return &record;
}

}  // namespace

void* DeviantRegistry::getId(ReferenceCountingIntf* aObject, Deviant aDeviant, bool aIsImmutable) {
  if (aObject == nullptr) return lum::tagId(nullRecord(aDeviant, aIsImmutable));
  bool locked = false;
  for (IdRecord* record = aObject->fIds; record != nullptr; record = record->fNext) {
    if (record->fDeviant != aDeviant) continue;
    if (record->fImmutable == aIsImmutable) return lum::tagId(record);
    locked = record->fLocked;
  }
  IdRecord* const record = pool().take();
  record->fObject = aObject;
  record->fDeviant = aDeviant;
  record->fNext = aObject->fIds;
  record->fImmutable = aIsImmutable;
  record->fLocked = locked;
  aObject->fIds = record;
  aObject->fIsRegistered = true;
  return lum::tagId(record);
}

void DeviantRegistry::setIsImmutable(ImmutableObject const& aView, bool aIsImmutable) {
  auto* const object = const_cast<NSInterface::ObjectIntf*>(aView.get());
  if (object == nullptr) return;
  // A lock without a record to stand in makes one; ids handed out later take it over.
  if (aIsImmutable) getId(object, aView.getDeviant(), true);
  ReferenceCountingIntf const& counted = *object;
  for (IdRecord* record = counted.fIds; record != nullptr; record = record->fNext)
    if (record->fDeviant == aView.getDeviant()) record->fLocked = aIsImmutable;
}

void DeviantRegistry::retract(ReferenceCountingIntf* aObject) noexcept {
  IdRecord* record = std::exchange(aObject->fIds, nullptr);
  aObject->fIsRegistered = false;
  while (record != nullptr) pool().giveBack(std::exchange(record, record->fNext));
}

std::size_t DeviantRegistry::liveRecords() noexcept { return pool().live(); }

}  // namespace Kelm
