#include "kelm/DeviantRegistry.h"

#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kelm/threads.h"

namespace Kelm {

namespace {

/// All id records. A retracted record whose host word is still set is parked: the host may ask its id again.
/// Records without a host object are handed out first, then parked ones that have lost theirs, then new ones.
class RecordPool {
 public:
  IdRecord* take() {
    SharedGuard const guard(fGuard);
    IdRecord* record = takeFree();
    if (record == nullptr) record = takeParked();
    if (record == nullptr) record = makeRecord();
    ++fLive;
    return record;
  }

  void giveBack(IdRecord* aRecord) noexcept {
    SharedGuard const guard(fGuard);
    --fLive;
    aRecord->fObject = nullptr;
    aRecord->fDeviant = Deviant();
    if (aRecord->fHost == nullptr)
      pushFree(aRecord);
    else
      park(aRecord);
  }

  std::size_t live() noexcept {
    SharedGuard const guard(fGuard);
    return fLive;
  }

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

  std::mutex fGuard;
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
  constinit static std::mutex sGuard;
  SharedGuard const guard(sGuard);
  static auto& sRecords = *new std::unordered_map<std::uintptr_t, IdRecord[2]>;
  auto const [entry, isNew] = sRecords.try_emplace(aDeviant.word());
  if (isNew)
    for (bool const immutable : {false, true}) {
      entry->second[immutable].fDeviant = aDeviant;
      entry->second[immutable].fImmutable = immutable;
    }
  return &entry->second[aIsImmutable];
}

}  // namespace

void* DeviantRegistry::getId(ReferenceCountingIntf* aObject, Deviant aDeviant, bool aIsImmutable) {
  if (aObject == nullptr) return lum::tagId(nullRecord(aDeviant, aIsImmutable));
  IdRecord* made = nullptr;
  for (;;) {
    IdRecord* const known = first(*aObject);
    bool locked = false;
    for (IdRecord* record = known; record != nullptr; record = record->fNext) {
      if (record->fDeviant != aDeviant) continue;
      if (record->fImmutable == aIsImmutable) {
        if (made != nullptr) pool().giveBack(made);
        return lum::tagId(record);
      }
      locked = record->fLocked.load(std::memory_order_relaxed);
    }
    if (made == nullptr) made = pool().take();
    made->fObject = aObject;
    made->fDeviant = aDeviant;
    made->fNext = known;
    made->fImmutable = aIsImmutable;
    made->fLocked.store(locked, std::memory_order_relaxed);
    if (!addTo(*aObject, *made)) continue;
    if (known == nullptr) aObject->fIsRegistered = true;
    return lum::tagId(made);
  }
}

/// False if another thread was first, with whatever id.
bool DeviantRegistry::addTo(ReferenceCountingIntf const& aObject, IdRecord& aRecord) noexcept {
  if (!isSingleThreaded()) {
    IdRecord* known = aRecord.fNext;
    return aObject.fIds.compare_exchange_strong(known, &aRecord, std::memory_order_acq_rel);
  }
  aObject.fIds.store(&aRecord, std::memory_order_relaxed);
  return true;
}

void DeviantRegistry::setIsImmutable(ImmutableObject const& aView, bool aIsImmutable) {
  auto* const object = const_cast<NSInterface::ObjectIntf*>(aView.get());
  if (object == nullptr) return;
  // A lock without a record to stand in makes one; ids handed out later take it over.
  if (aIsImmutable) getId(object, aView.getDeviant(), true);
  for (IdRecord* record = first(*object); record != nullptr; record = record->fNext)
    if (record->fDeviant == aView.getDeviant())
      record->fLocked.store(aIsImmutable, std::memory_order_relaxed);
}

void DeviantRegistry::retract(ReferenceCountingIntf* aObject) noexcept {
  IdRecord* record = first(*aObject);
  aObject->fIds.store(nullptr, std::memory_order_relaxed);
  aObject->fIsRegistered = false;
  while (record != nullptr) pool().giveBack(std::exchange(record, record->fNext));
}

std::size_t DeviantRegistry::liveRecords() noexcept { return pool().live(); }

}  // namespace Kelm
