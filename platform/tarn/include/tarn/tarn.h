#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "lum/visibility.h"

/// What the elements of an array are.
enum tarnClassId : std::uint8_t {
  charClassId = 1,     ///< UTF-16 code units, two bytes each; surrogates are kept as they come
  objectClassId = 2,   ///< instances of the host, one pointer each; null or one reference held
  logicalClassId = 3,  ///< one byte each, 0 or 1
  int32ClassId = 12,   ///< four bytes each
};

/// The header of a host array. An array with no elements means "absent" throughout the system.
///
/// A small header so that an instance can hold its own 1 by 1 array: three words, the last of which is
/// the data itself when they fit (eight bytes: one instance, four code units, two numbers).
struct UMLMM_API tarnArray_tag {
  enum Flag : std::uint8_t {
    InlineDimensions = 1,  ///< two dimensions in fRows and fColumns; otherwise fDimensions holds the vector
    InlineData = 2,        ///< the data is the word fData itself
    Opaque = 4,            ///< dimensions not decided yet; fBytes holds the size of the data
    Embedded = 8,          ///< part of an instance: destroying the array drops one reference to it
  };
  struct Sizes {
    std::uint32_t fRows, fColumns;
  };

  tarnClassId fClassId;
  mutable std::uint8_t fFlags;
  std::uint8_t fPool;  ///< which pool the block belongs to
  mutable std::uint32_t fDimensionCount;
  union {
    mutable Sizes fSizes;
    std::size_t* fDimensions;
    std::size_t fBytes;
  };
  union {
    void* fData;
    unsigned char fWord[8];
  };

  /// Decides the dimensions of an array that was made from its data alone: one row.
  void _complete_opaque_dimensions() const;
};

using tarnArray = tarnArray_tag;

/// How arrays hold on to the instances in them; set once by the class system.
struct tarnElementHooks {
  void (*retain)(void* element);
  void (*release)(void* element);
};
UMLMM_API void tarnSetElementHooks(tarnElementHooks hooks) noexcept;

// Every array made here belongs to the caller, who gives it back by tarnDestroyArray. Out of memory, and
// sizes beyond any memory, raise foundation's bad_alloc. Arrays, their pools and counts are the host's: one
// thread at a time. Data lie in the array's own block and stay where they are until it is destroyed.

/// A char row of zero-terminated UTF-8 text, not null; 0 by 0 for the empty text.
[[nodiscard]] UMLMM_API tarnArray* tarnCreateString(char const* text);
/// A char row of zero-terminated UTF-16 text, not null; 0 by 0 for the empty text.
[[nodiscard]] UMLMM_API tarnArray* tarnCreateString_UTF16(char16_t const* text);
/// A char row of `length` code units, zeros included; all zeros, for the caller to fill, if `text` is null.
[[nodiscard]] UMLMM_API tarnArray* tarnCreateStringOfLength(char16_t const* text, std::size_t length);
/// A zero-filled matrix of logicalClassId or int32ClassId; complexity is 0.
[[nodiscard]] UMLMM_API tarnArray* tarnCreateNumericMatrix(std::uint64_t rows, std::uint64_t columns,
                                                           int classId, int complexity);
/// A matrix of null instances.
[[nodiscard]] UMLMM_API tarnArray* tarnCreateObjectMatrix(std::uint64_t rows, std::uint64_t columns);
/// A 0 by 0 array.
[[nodiscard]] UMLMM_API tarnArray* tarnCreateEmpty(tarnClassId classId);
/// A zero-filled array of any number of dimensions, none counting as one element.
[[nodiscard]] UMLMM_API tarnArray* tarnCreateArray(std::size_t const* dimensions, std::size_t count,
                                                   tarnClassId classId);
/// A zero-filled array of which only the size of its data is known yet, below 4 GiB: asking for its elements
/// makes it one row of them.
[[nodiscard]] UMLMM_API tarnArray* tarnCreateOpaque(std::size_t bytes, tarnClassId classId);

/// Makes `array`, memory that the caller keeps, the 1 by 1 array of the instance it lies in.
inline void tarnInitEmbedded(tarnArray* array, void* instance) noexcept {
  array->fClassId = objectClassId;
  array->fFlags = tarnArray_tag::InlineDimensions | tarnArray_tag::InlineData | tarnArray_tag::Embedded;
  array->fPool = 0;
  array->fDimensionCount = 2;
  array->fSizes = {1, 1};
  array->fData = instance;
}

/// Gives an array back with the references that it holds; null is allowed. Destroying the array that is
/// part of an instance drops one reference to the instance. A last reference that goes may run any code.
UMLMM_API void tarnDestroyArray(tarnArray* array);

/// The text of a char array as zero-terminated UTF-8, to be given back by tarnFree; empty for null and for an
/// array of another class. A surrogate without its partner is written as three bytes; a zero in the text ends
/// it for whoever reads it as zero-terminated.
[[nodiscard]] UMLMM_API char* tarnArrayToString_UTF8(tarnArray const* array);
[[nodiscard]] UMLMM_API char* tarnArray2String(tarnArray const* array);
UMLMM_API void tarnFree(void* text) noexcept;

/// Puts an instance into an object array, which takes a reference of its own and drops that of what stood
/// there; null is allowed. Neither the class of the array nor the index, from 0, is checked.
UMLMM_API void tarnSetObject(tarnArray* array, std::size_t index, void* instance);

namespace tarn {

[[nodiscard]] UMLMM_API std::size_t productOfDimensions(tarnArray const* array);

/// The product of the dimensions.
[[nodiscard]] inline std::size_t numberOfElements(tarnArray const* array) {
  if (array->fFlags & tarnArray_tag::Opaque) array->_complete_opaque_dimensions();
  if (array->fFlags & tarnArray_tag::InlineDimensions)
    return std::size_t{array->fSizes.fRows} * array->fSizes.fColumns;
  return productOfDimensions(array);
}

[[nodiscard]] inline void* data(tarnArray* array) noexcept {
  return array->fFlags & tarnArray_tag::InlineData ? static_cast<void*>(array->fWord) : array->fData;
}
[[nodiscard]] inline void const* data(tarnArray const* array) noexcept {
  return data(const_cast<tarnArray*>(array));
}

template <class T>
[[nodiscard]] T* dataAs(tarnArray* array) noexcept {
  return static_cast<T*>(data(array));
}
template <class T>
[[nodiscard]] T const* dataAs(tarnArray const* array) noexcept {
  return static_cast<T const*>(data(array));
}

/// The text of a char array, which stays the array's; empty for null and for an array of another class.
[[nodiscard]] inline std::u16string_view textOf(tarnArray const* array) {
  if (!array || array->fClassId != charClassId) return {};
  std::size_t const length = numberOfElements(array);
  return {dataAs<char16_t>(array), length};
}
/// A copy of it.
[[nodiscard]] UMLMM_API std::u16string get_ustring(tarnArray const* array);

/// How many arrays exist that are not part of an instance; for leak checks.
[[nodiscard]] UMLMM_API std::size_t liveArrayCount() noexcept;

}  // namespace tarn
