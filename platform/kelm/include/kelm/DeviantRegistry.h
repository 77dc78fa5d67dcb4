#pragma once

#include <atomic>
#include <cstddef>
#include <utility>

#include "kelm/Deviant.h"
#include "kelm/Object.h"
#include "lum/host_word.h"

namespace Kelm {

/// What an id points at. Records come from a pool that is never given back, so that a stale id can be asked
/// safely; one is used again only when it is retracted and no host object hangs on it.
struct IdRecord : lum::HostWord {
  ReferenceCountingIntf* fObject;
  Deviant fDeviant;
  /// Of the same object, or of the pool.
  IdRecord* fNext;
  bool fImmutable;
  /// The lock of (object, deviant): set, no id of the pair may write.
  std::atomic<bool> fLocked;
};

/// Gives every object in a variant, seen changeable or read-only, one opaque id, and the way back. An id is
/// the address of its record with the lowest bit set; it counts nothing, so whoever keeps one keeps the
/// object too. The registry serves all threads, each for the objects that it uses; immortal ones are
/// everybody's.
class UMLMM_API DeviantRegistry {
 public:
  /// Equal for equal arguments as long as the object lives. A null object is allowed: it has one permanent id
  /// for each deviant and flag. Takes time for each id that the object has, mostly one or two.
  static void* getId(ReferenceCountingIntf* aObject, Deviant aDeviant, bool aIsImmutable);
  /// The id of these arguments if there is one by now, or null.
  static void* findId(ReferenceCountingIntf const& aObject, Deviant aDeviant, bool aIsImmutable) noexcept {
    for (IdRecord* record = first(aObject); record != nullptr; record = record->fNext)
      if (record->fDeviant == aDeviant && record->fImmutable == aIsImmutable) return lum::tagId(record);
    return nullptr;
  }
  /// Object and deviant of an id; a null object for a null, retracted or untagged id, and for that of a null
  /// object. The object is not counted.
  static std::pair<ReferenceCountingIntf*, Deviant> getVariantInfo(void const* aId) noexcept {
    IdRecord const* const record = recordOf(aId);
    if (record == nullptr) return {nullptr, Deviant()};
    return {record->fObject, record->fDeviant};
  }
  /// Whether no write may go through the id; false for a null id.
  static bool isImmutable(void const* aId) noexcept {
    IdRecord const* const record = recordOf(aId);
    return record != nullptr && (record->fImmutable || record->fLocked.load(std::memory_order_relaxed));
  }
  /// Locks or unlocks the object of `aView` in its deviant, for ids handed out before and after; nothing for
  /// a null one. Read-only ids stay read-only. C++ handles know nothing of the lock: it binds the host alone.
  static void setIsImmutable(ImmutableObject const& aView, bool aIsImmutable);
  /// Forgets the ids of a dying object; they answer a null object until their records are used again.
  static void retract(ReferenceCountingIntf* aObject) noexcept;

  /// Number of records that name a living object.
  static std::size_t liveRecords() noexcept;

 private:
  static IdRecord* first(ReferenceCountingIntf const& aObject) noexcept {
    return aObject.fIds.load(std::memory_order_acquire);
  }
  static bool addTo(ReferenceCountingIntf const& aObject, IdRecord& aRecord) noexcept;
  static IdRecord* recordOf(void const* aId) noexcept {
    return lum::isTaggedId(aId) ? static_cast<IdRecord*>(lum::hostWordOf(aId)) : nullptr;
  }
};

}  // namespace Kelm
