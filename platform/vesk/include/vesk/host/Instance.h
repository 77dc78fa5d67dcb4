#pragma once

#include <cstddef>
#include <cstdint>

#include "tarn/tarn.h"
#include "vesk/VeskInterface.h"
#include "vesk/VeskValue.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::host {

/// An instance of a class: nothing but its class, the native id bound to it and the 1 by 1 array by which
/// it travels.
///
/// A front that keeps instances inside its own objects derives from this class, overrides retain and
/// release with the counting of its objects, constructs the instance in place and, when its object dies,
/// calls finish and then the destructor. Instances of the host itself live on the heap.
class UMLMM_API Instance : public VeskInterface {
 public:
  enum class State : std::uint8_t { Unbound, Bound, Released };

  /// An unbound instance that belongs to one host reference, the maker's.
  explicit Instance(ClassRecord& cls) noexcept : fClass(&cls) {
    tarnInitEmbedded(&fArray, static_cast<VeskInterface*>(this));
    ++sLiveCount;
  }
  Instance(Instance const&) = delete;
  Instance& operator=(Instance const&) = delete;
  ~Instance() override;

  void* getNativeObject(VeskInterned) final { return fId; }
  void retain() override { ++fCount; }
  /// At the last reference: finish, then delete. Throws what finish throws, after the memory is freed.
  void release() override;

  [[nodiscard]] ClassRecord& classRecord() const noexcept { return *fClass; }
  [[nodiscard]] void* nativeId() const noexcept { return fId; }
  [[nodiscard]] State state() const noexcept { return fState; }
  [[nodiscard]] bool isBound() const noexcept { return fState == State::Bound; }

  /// The array of the instance, without a reference: valid as long as the caller holds the instance.
  [[nodiscard]] tarnArray* array() noexcept { return &fArray; }
  /// The same with one more reference, which destroying the array drops.
  [[nodiscard]] VeskValue newReference() {
    retain();
    return &fArray;
  }
  /// The instance whose own array this is, or the first element of any other object array; null for an
  /// empty array and for an element that is no Instance of the host.
  [[nodiscard]] static Instance* fromArray(tarnArray const* array) noexcept;

  /// Called by the binding registry.
  void bind(void* id) noexcept {
    fId = id;
    fState = State::Bound;
  }

  /// The end of the instance: marks it released and, if it was bound, lets its class release the native
  /// side, once. Passes on what the class throws.
  void finish();

  /// The instance that runs finish and has this id, or null.
  [[nodiscard]] static Instance* findReleasing(void const* id) noexcept;
  /// How many instances exist; for leak checks.
  [[nodiscard]] static std::size_t liveCount() noexcept { return sLiveCount; }

 private:
  static std::size_t sLiveCount;

  ClassRecord* fClass;
  void* fId = nullptr;
  tarnArray fArray;
  std::uint32_t fCount = 1;
  State fState = State::Unbound;
};

static_assert(sizeof(Instance) == 7 * sizeof(void*), "a front relies on the size of an instance");

/// Makes an unbound instance with one reference for the caller.
using InstanceMaker = Instance* (*)(ClassRecord& cls);

/// Sets the maker of instances; null restores the host's own.
UMLMM_API void setInstanceMaker(InstanceMaker maker) noexcept;
[[nodiscard]] UMLMM_API Instance* makeInstance(ClassRecord& cls);

}  // namespace vesk::host
