#include <cstring>
#include <limits>

#include "foundation/except.h"
#include "pool.h"
#include "tarn/tarn.h"

namespace {

static_assert(sizeof(tarnArray) == 3 * sizeof(void*));

tarnElementHooks sHooks = {nullptr, nullptr};
std::size_t sLiveArrays = 0;

std::size_t elementSize(tarnClassId classId) noexcept {
  switch (classId) {
    case charClassId:
      return sizeof(char16_t);
    case objectClassId:
      return sizeof(void*);
    case int32ClassId:
      return sizeof(std::int32_t);
    case logicalClassId:
      break;
  }
  return 1;
}

// Beyond any memory, and small enough that no later sum overflows.
constexpr std::size_t kLargestSize = std::size_t{1} << 39;

std::size_t checkedProduct(std::size_t a, std::size_t b) {
  std::size_t product = 0;
  if (__builtin_mul_overflow(a, b, &product) || product > kLargestSize)
    throw foundation::core::except::bad_alloc();
  return product;
}

bool fitsInline(std::uint64_t size) noexcept { return size <= std::numeric_limits<std::uint32_t>::max(); }

/// Header, room for `vectorLength` dimensions and data in one block. Inline data are zero,
/// data behind the header and dimensions are left to the caller.
tarnArray* makeArray(tarnClassId classId, std::size_t bytes, std::size_t vectorLength) {
  bool const isInline = bytes <= sizeof(tarnArray::fWord);
  std::size_t const vectorBytes = vectorLength * sizeof(std::size_t);
  std::size_t const rest = vectorBytes + (isInline ? 0 : bytes);
  auto const block = tarn::pool::allocate(sizeof(tarnArray) + rest);
  auto* array = new (block.fMemory) tarnArray;
  char* tail = reinterpret_cast<char*>(array + 1);
  array->fClassId = classId;
  array->fFlags = isInline ? tarnArray::InlineData : 0;
  array->fPool = block.fPool;
  array->fDimensionCount = static_cast<std::uint32_t>(vectorLength);
  array->fDimensions = reinterpret_cast<std::size_t*>(tail);
  array->fData = isInline ? nullptr : tail + vectorBytes;
  ++sLiveArrays;
  return array;
}

tarnArray* zeroed(tarnArray* array, std::size_t bytes) noexcept {
  if (!(array->fFlags & tarnArray::InlineData)) std::memset(array->fData, 0, bytes);
  return array;
}

void setSizes(tarnArray const* array, std::size_t rows, std::size_t columns) noexcept {
  array->fFlags |= tarnArray::InlineDimensions;
  array->fDimensionCount = 2;
  array->fSizes = {static_cast<std::uint32_t>(rows), static_cast<std::uint32_t>(columns)};
}

void releaseElements(tarnArray* array) {
  void* const* elements = tarn::dataAs<void*>(array);
  for (std::size_t i = 0, count = tarn::numberOfElements(array); i < count; ++i)
    if (elements[i]) sHooks.release(elements[i]);
}

tarnArray* makeMatrix(std::uint64_t rows, std::uint64_t columns, tarnClassId classId) {
  std::size_t const dimensions[] = {rows, columns};
  return tarnCreateArray(dimensions, 2, classId);
}

}  // namespace

void tarnArray_tag::_complete_opaque_dimensions() const {
  if (!(fFlags & Opaque)) return;
  std::size_t const count = fBytes / elementSize(fClassId);
  fFlags &= static_cast<std::uint8_t>(~Opaque);
  setSizes(this, count ? 1 : 0, count);
}

void tarnSetElementHooks(tarnElementHooks hooks) noexcept { sHooks = hooks; }

tarnArray* tarnCreateStringOfLength(char16_t const* text, std::size_t length) {
  if (!fitsInline(length)) throw foundation::core::except::bad_alloc();
  tarnArray* array = makeArray(charClassId, length * sizeof(char16_t), 0);
  setSizes(array, length ? 1 : 0, length);
  if (text && length)
    std::memcpy(tarn::data(array), text, length * sizeof(char16_t));
  else
    zeroed(array, length * sizeof(char16_t));
  return array;
}

tarnArray* tarnCreateString_UTF16(char16_t const* text) {
  return tarnCreateStringOfLength(text, std::char_traits<char16_t>::length(text));
}

tarnArray* tarnCreateNumericMatrix(std::uint64_t rows, std::uint64_t columns, int classId, int) {
  return makeMatrix(rows, columns, static_cast<tarnClassId>(classId));
}

tarnArray* tarnCreateObjectMatrix(std::uint64_t rows, std::uint64_t columns) {
  return makeMatrix(rows, columns, objectClassId);
}

tarnArray* tarnCreateEmpty(tarnClassId classId) {
  tarnArray* array = makeArray(classId, 0, 0);
  setSizes(array, 0, 0);
  return array;
}

tarnArray* tarnCreateArray(std::size_t const* dimensions, std::size_t count, tarnClassId classId) {
  std::size_t elements = 1;
  for (std::size_t i = 0; i < count; ++i) elements = checkedProduct(elements, dimensions[i]);
  std::size_t const bytes = checkedProduct(elements, elementSize(classId));
  bool const isMatrix = count == 2 && fitsInline(dimensions[0]) && fitsInline(dimensions[1]);
  tarnArray* array = zeroed(makeArray(classId, bytes, isMatrix ? 0 : count), bytes);
  if (isMatrix)
    setSizes(array, dimensions[0], dimensions[1]);
  else if (count)
    std::memcpy(array->fDimensions, dimensions, count * sizeof(*dimensions));
  return array;
}

tarnArray* tarnCreateOpaque(std::size_t bytes, tarnClassId classId) {
  if (!fitsInline(bytes)) throw foundation::core::except::bad_alloc();
  tarnArray* array = zeroed(makeArray(classId, bytes, 0), bytes);
  array->fFlags |= tarnArray::Opaque;
  array->fBytes = bytes;
  return array;
}

void tarnDestroyArray(tarnArray* array) {
  if (!array) return;
  if (array->fFlags & tarnArray::Embedded) {
    sHooks.release(array->fData);
    return;
  }
  if (array->fClassId == objectClassId) releaseElements(array);
  --sLiveArrays;
  tarn::pool::release({array, array->fPool});
}

void tarnSetObject(tarnArray* array, std::size_t index, void* instance) {
  void*& place = tarn::dataAs<void*>(array)[index];
  if (instance) sHooks.retain(instance);
  void* const old = place;
  place = instance;
  if (old) sHooks.release(old);
}

namespace tarn {

std::size_t productOfDimensions(tarnArray const* array) {
  std::size_t product = 1;
  for (std::uint32_t i = 0; i < array->fDimensionCount; ++i) product *= array->fDimensions[i];
  return product;
}

std::size_t liveArrayCount() noexcept { return sLiveArrays; }

}  // namespace tarn
