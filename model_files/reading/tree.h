#pragma once

#include <bit>
#include <pugixml.hpp>

namespace umlmm::files {

/// Whether the node or attribute is one. The parser's own question is a call into its library, and there are
/// several for each tag: together they took a twentieth of a reading.
template <class Handle>
bool isThere(Handle aHandle) noexcept {
  static_assert(sizeof(Handle) == sizeof(void const*));
  return std::bit_cast<void const*>(aHandle) != nullptr;
}

}  // namespace umlmm::files
