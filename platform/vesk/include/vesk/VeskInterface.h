#pragma once

#include <utility>

#include "vesk/fwd.h"
#include "vesk/interned.h"

namespace vesk {

/// The host's object for an instance of a class. It ends with its last reference, and its binding with it.
class UMLMM_API VeskInterface {
 public:
  virtual ~VeskInterface();

  /// The native id that is bound to the instance, whatever class is asked for; null while nothing is
  /// bound. An instance has one native id.
  virtual void* getNativeObject(VeskInterned className) = 0;

  /// Takes and drops one host reference; by default instances are not counted. The last `release` may run any
  /// code of the class that is bound, and throws what that throws.
  virtual void retain();
  virtual void release();
};

/// Owns one host reference to an instance, or none. Giving it back may run any code, and must not throw where
/// a VeskInterfacePtr ends.
class VeskInterfacePtr {
 public:
  constexpr VeskInterfacePtr() noexcept = default;
  /// Takes a reference of its own.
  explicit VeskInterfacePtr(VeskInterface* instance) : fInstance(instance) {
    if (fInstance) fInstance->retain();
  }
  /// Takes over a reference that the caller owns.
  [[nodiscard]] static VeskInterfacePtr adopt(VeskInterface* instance) noexcept {
    VeskInterfacePtr result;
    result.fInstance = instance;
    return result;
  }
  VeskInterfacePtr(VeskInterfacePtr const& other) : VeskInterfacePtr(other.fInstance) {}
  VeskInterfacePtr(VeskInterfacePtr&& other) noexcept : fInstance(std::exchange(other.fInstance, nullptr)) {}
  VeskInterfacePtr& operator=(VeskInterfacePtr other) noexcept {
    std::swap(fInstance, other.fInstance);
    return *this;
  }
  ~VeskInterfacePtr() {
    if (fInstance) fInstance->release();
  }

  VeskInterface& operator*() const noexcept { return *fInstance; }
  VeskInterface* operator->() const noexcept { return fInstance; }
  operator VeskInterface*() const noexcept { return fInstance; }

 private:
  VeskInterface* fInstance = nullptr;
};

}  // namespace vesk

/// The instance at an index, counted from 0, of an object array, null where none was put; throws a VeskError
/// of kind Range for an index outside of it, and of kind Match for an array that holds no objects.
UMLMM_API vesk::VeskInterfacePtr omGetArrayElement(tarnArray const* array, unsigned long index);
/// The same, for the array that holds the object of a running constructor.
UMLMM_API vesk::VeskInterfacePtr veskiGetArrayElement(tarnArray const* array, unsigned long index);
