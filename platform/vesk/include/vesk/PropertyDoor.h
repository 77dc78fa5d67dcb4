#pragma once

#include <cstdint>
#include <string_view>

#include "vesk/fwd.h"

namespace vesk {

/// A short road to a property, beside its descriptor: values cross as they are, without arrays, and presence
/// with them. It serves what scripts mostly do. Where it answers false nothing has happened, and the
/// descriptor is to be asked, which does the rest or tells why not; what it throws the descriptor would
/// throw, too. A class info's hook opens it (ObjectHook::openDoor); it is good as long as the descriptor.
struct PropertyDoor {
  enum class Kind : std::uint8_t {
    Closed,
    Text,     ///< An absent one is the empty text. Read, it is lent until anything else is asked.
    Object,   ///< An instance, borrowed, that the host has bound before.
    Logical,  ///< The number is 0 or 1.
    Int32,
    Natural,  ///< The number is -1 for unlimited.
  };

  struct Value {
    bool fIsAbsent = false;
    std::int32_t fNumber = 0;
    host::Instance* fObject = nullptr;
    std::u16string_view fText;
    /// Beside a text that is lent, where the host may note what it has of it: 0 at first, and gone with it.
    /// Null for a text without one.
    std::uint32_t* fMark = nullptr;
  };

  [[nodiscard]] bool read(void const* id, Value& value) const { return fRead(*this, id, value); }
  [[nodiscard]] bool write(void const* id, Value const& value) const { return fWrite(*this, id, value); }

  bool (*fRead)(PropertyDoor const& door, void const* id, Value& value) = nullptr;
  /// Null where nothing is written this way.
  bool (*fWrite)(PropertyDoor const& door, void const* id, Value const& value) = nullptr;
  Kind fKind = Kind::Closed;

  // The rest is the library's own.
  bool fFlag = false;
  std::uint16_t fNumber = 0;
  VeskPropInfo const* fProperty = nullptr;
};

}  // namespace vesk
