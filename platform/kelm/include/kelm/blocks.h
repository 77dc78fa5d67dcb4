#pragma once

#include <cstddef>

#include "lum/visibility.h"

namespace Kelm {

/// Memory for elements and their lists, of 24 bytes and more. Blocks of all sizes are cut from the same
/// chunks, so that what is made together lies together. A freed block serves the next of its size, and a
/// chunk of free blocks alone serves all sizes again, so a long-running script neither grows nor waits for
/// the allocator.
UMLMM_API void* allocateBlock(std::size_t aSize);
UMLMM_API void freeBlock(void* aMemory, std::size_t aSize) noexcept;

}  // namespace Kelm
