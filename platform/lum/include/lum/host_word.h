#pragma once

#include <cstdint>
#include <utility>

namespace lum {

/// First member of a record whose address serves as an id: one word in which the host keeps what it
/// bound to the id, null while nothing is bound. The word is the host's; the record's owner may read it
/// to learn whether the record is still in use.
struct HostWord {
  void* fHost = nullptr;
};

/// Where the host keeps something of its own with an object of a library, such as what scripts have attached
/// to it. The object's owner calls `clear`, outside of any change, when the object's life ends.
struct HostPlace {
  void* fWhat = nullptr;
  void (*fDrop)(void* what) noexcept = nullptr;

  void clear() noexcept {
    if (void* const what = std::exchange(fWhat, nullptr)) fDrop(what);
  }
};

/// An id made from a record has the lowest bit set, which no ordinary object address has. Whoever follows one
/// trusts that its record is still there: owners of such records keep them for the life of the process.
[[nodiscard]] inline bool isTaggedId(void const* id) noexcept {
  return (reinterpret_cast<std::uintptr_t>(id) & 1) != 0;
}

[[nodiscard]] inline void* tagId(HostWord* word) noexcept { return reinterpret_cast<char*>(word) + 1; }

/// The word behind a tagged id.
[[nodiscard]] inline HostWord* hostWordOf(void const* id) noexcept {
  return reinterpret_cast<HostWord*>(const_cast<char*>(static_cast<char const*>(id)) - 1);
}

}  // namespace lum
