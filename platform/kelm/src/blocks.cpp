#include "engine/memory.h"

#include <array>
#include <new>

namespace umlmm::engine {

#if defined(__SANITIZE_ADDRESS__)

// The sanitizer sees each element as a block of its own.
void* allocateElement(std::size_t aSize) { return ::operator new(aSize); }
void freeElement(void* aMemory, std::size_t aSize) noexcept { ::operator delete(aMemory, aSize); }

#else

namespace {

constexpr std::size_t kStep = 8;
constexpr std::size_t kLargest = 1024;
constexpr std::size_t kChunk = std::size_t{64} * 1024;

struct Free {
  Free* fNext;
};

/// Free blocks of one size, and the rest of the chunk that new ones are cut from.
struct Pool {
  Free* fFree = nullptr;
  char* fRest = nullptr;
  std::size_t fLeft = 0;
};

std::array<Pool, kLargest / kStep + 1> sPools;

}  // namespace

void* allocateElement(std::size_t aSize) {
  if (aSize > kLargest) return ::operator new(aSize);
  Pool& pool = sPools[(aSize + kStep - 1) / kStep];
  if (Free* const block = pool.fFree) {
    pool.fFree = block->fNext;
    return block;
  }
  std::size_t const size = (aSize + kStep - 1) / kStep * kStep;
  if (pool.fLeft < size) {
    pool.fRest = static_cast<char*>(::operator new(kChunk));
    pool.fLeft = kChunk;
  }
  void* const block = pool.fRest;
  pool.fRest += size;
  pool.fLeft -= size;
  return block;
}

void freeElement(void* aMemory, std::size_t aSize) noexcept {
  if (aSize > kLargest) return ::operator delete(aMemory, aSize);
  Pool& pool = sPools[(aSize + kStep - 1) / kStep];
  auto* const block = static_cast<Free*>(aMemory);
  block->fNext = pool.fFree;
  pool.fFree = block;
}

#endif

}  // namespace umlmm::engine
