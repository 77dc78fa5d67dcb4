#include "vesk/VeskInterface.h"

#include "tarn/tarn.h"
#include "vesk/VeskError.h"

namespace vesk {

VeskInterface::~VeskInterface() = default;
void VeskInterface::retain() {}
void VeskInterface::release() {}

namespace {

// Arrays know their elements by address alone; this library tells them how to hold instances.
[[maybe_unused]] bool const sAreHooksSet = [] {
  tarnSetElementHooks({[](void* element) { static_cast<VeskInterface*>(element)->retain(); },
                       [](void* element) { static_cast<VeskInterface*>(element)->release(); }});
  return true;
}();

[[noreturn, gnu::noinline]] void throwRange(unsigned long index, std::size_t count) {
  throw VeskError(
      "Index " + std::to_string(index) + " exceeds the " + std::to_string(count) + " elements of the array",
      VeskError::Kind::Range);
}

VeskInterfacePtr elementOf(tarnArray const* array, unsigned long index) {
  if (!array || array->fClassId != objectClassId)
    throw VeskError("The array does not hold objects", VeskError::Kind::Match);
  std::size_t const count = tarn::numberOfElements(array);
  if (index >= count) throwRange(index, count);
  return VeskInterfacePtr(static_cast<VeskInterface*>(tarn::dataAs<void*>(array)[index]));
}

}  // namespace

}  // namespace vesk

vesk::VeskInterfacePtr omGetArrayElement(tarnArray const* array, unsigned long index) {
  return vesk::elementOf(array, index);
}

vesk::VeskInterfacePtr veskiGetArrayElement(tarnArray const* array, unsigned long index) {
  return vesk::elementOf(array, index);
}
