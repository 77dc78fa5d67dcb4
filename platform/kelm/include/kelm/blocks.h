#pragma once

#include <cstddef>

namespace umlmm::engine {

/// Memory for elements, by size: freed blocks serve the next element of their size, so a long-running script
/// that makes and destroys elements neither grows nor waits for the allocator.
void* allocateElement(std::size_t aSize);
void freeElement(void* aMemory, std::size_t aSize) noexcept;

}  // namespace umlmm::engine
