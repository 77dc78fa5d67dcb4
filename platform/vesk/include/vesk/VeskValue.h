#pragma once

#include <cstdint>

#include "vesk/fwd.h"

namespace vesk {

/// One slot for an argument, a result or a property value: a host array, or for "logical scalar" and "int32
/// scalar" the raw value widened to the whole slot. The slot does not own the array, and does not know which
/// of them it holds: that is told by the type it belongs to (host/Type.h).
class VeskValue {
 public:
  constexpr VeskValue() noexcept = default;
  /// Takes nothing over.
  VeskValue(tarnArray* array) noexcept : fWord(reinterpret_cast<std::uint64_t>(array)) {}

  [[nodiscard]] static constexpr VeskValue ofLogical(bool value) noexcept {
    return VeskValue(std::uint64_t{value}, Raw{});
  }
  [[nodiscard]] static constexpr VeskValue ofInt32(std::int32_t value) noexcept {
    return VeskValue(static_cast<std::uint64_t>(std::int64_t{value}), Raw{});
  }
  /// What a front alone understands.
  [[nodiscard]] static constexpr VeskValue ofWord(std::uint64_t word) noexcept {
    return VeskValue(word, Raw{});
  }

  // Each for a slot that holds such a value; nothing checks it.
  [[nodiscard]] tarnArray* array() const noexcept { return reinterpret_cast<tarnArray*>(fWord); }
  [[nodiscard]] constexpr bool logical() const noexcept { return fWord != 0; }
  [[nodiscard]] constexpr std::int32_t int32() const noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(fWord));
  }
  [[nodiscard]] constexpr std::uint64_t word() const noexcept { return fWord; }

 private:
  struct Raw {};
  constexpr VeskValue(std::uint64_t word, Raw) noexcept : fWord(word) {}

  std::uint64_t fWord = 0;
};

static_assert(sizeof(VeskValue) == sizeof(void*));

}  // namespace vesk
