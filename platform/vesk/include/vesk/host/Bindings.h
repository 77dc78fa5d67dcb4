#pragma once

#include <cstddef>

#include "lum/host_word.h"
#include "lum/visibility.h"
#include "vesk/fwd.h"

/// The table from native ids to instances, as the binding registry and the end of an instance need it. It
/// does not hold the instances, nor the native objects. Tagged ids need no memory here.
namespace vesk::host::bindings {

[[nodiscard]] UMLMM_API Instance* lookUpUntagged(void const* id) noexcept;
/// The instance of an id, also one whose release is running; null for none.
[[nodiscard]] inline Instance* lookUp(void const* id) noexcept {
  return lum::isTaggedId(id) ? static_cast<Instance*>(lum::hostWordOf(id)->fHost) : lookUpUntagged(id);
}
/// Binds, in place of an earlier instance.
UMLMM_API void store(void* id, Instance& instance);
UMLMM_API void erase(void const* id) noexcept;
[[nodiscard]] UMLMM_API std::size_t size() noexcept;

}  // namespace vesk::host::bindings
