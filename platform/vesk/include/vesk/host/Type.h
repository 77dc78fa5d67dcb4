#pragma once

#include <cstdint>

#include "tarn/tarn.h"
#include "vesk/VeskValue.h"
#include "vesk/interned.h"

namespace vesk::host {

/// How a value of a type travels in a VeskValue.
enum class Carrier : std::uint8_t {
  Void,             ///< no value at all
  RawLogical,       ///< 0 or 1 in the slot itself
  RawInt32,         ///< sign-extended number in the slot itself
  Front,            ///< a word that only the front understands and that it keeps alive itself
  Text,             ///< char array
  NaturalText,      ///< char array with a natural number or "*"
  OptionalLogical,  ///< logical array, no element if absent
  OptionalInt32,    ///< int32 array, no element if absent
  Object,           ///< object array: the type is a class
};

/// Whether slots of this carrier hold an array that has to be given back.
[[nodiscard]] constexpr bool holdsArray(Carrier carrier) noexcept { return carrier >= Carrier::Text; }

/// A data type or a class, as signatures and properties name it. Types live as long as the process; a name
/// leads to its type through its interned record.
struct Type {
  VeskInterned fName;
  Carrier fCarrier;
  void* fFront = nullptr;  ///< what a front keeps for the type

  [[nodiscard]] bool isClass() const noexcept { return fCarrier == Carrier::Object; }
};

/// Makes a data type known. A second registration of a name with the same carrier does nothing; with
/// another carrier it is an error. Known from the start: "void", "logical scalar", "int32 scalar".
UMLMM_API Type& registerDataType(char const* name, Carrier carrier);

/// Whether a name has the form of a class name: it has a package before a dot, or starts with a capital.
[[nodiscard]] UMLMM_API bool isClassName(VeskInterned name) noexcept;

/// The type of a name, out of line part of typeOf: loads the package of a class if it has to; throws
/// "Class 'N' is not defined" or "Data type 'n' is not defined".
UMLMM_API Type& resolveType(VeskInterned name);

/// The type of a name that a signature or property uses.
[[nodiscard]] inline Type& typeOf(VeskInterned name) {
  internal::InternedRecord* record = name.record();
  if (record && record->fType) [[likely]]
    return *record->fType;
  return resolveType(name);
}

/// A new value of the type that means "absent"; the type must travel as an array.
[[nodiscard]] UMLMM_API tarnArray* makeEmpty(Type const& type);

/// Gives back the array in a value of this type, if it holds one.
inline void destroyValue(Type const& type, VeskValue value) {
  if (holdsArray(type.fCarrier)) tarnDestroyArray(value.array());
}

/// Owns a value until it is given on.
class OwnedValue {
 public:
  OwnedValue(Type const& type, VeskValue value) noexcept : fType(&type), fValue(value) {}
  OwnedValue(OwnedValue&& other) noexcept : fType(other.fType), fValue(other.release()) {}
  OwnedValue& operator=(OwnedValue&&) = delete;
  ~OwnedValue() { destroyValue(*fType, fValue); }

  [[nodiscard]] Type const& type() const noexcept { return *fType; }
  [[nodiscard]] VeskValue value() const noexcept { return fValue; }
  VeskValue release() noexcept {
    VeskValue value = fValue;
    fValue = VeskValue();
    return value;
  }

 private:
  Type const* fType;
  VeskValue fValue;
};

}  // namespace vesk::host
