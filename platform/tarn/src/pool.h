#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::pool {

/// Pool 0 is the general heap; the others keep freed blocks of one size for the next array. Single thread.
struct Block {
  void* fMemory;
  std::uint8_t fPool;
};

/// An uninitialised block of at least `bytes`; throws the foundation's out-of-memory exception.
Block allocate(std::size_t bytes);
void release(Block block) noexcept;

}  // namespace tarn::pool
