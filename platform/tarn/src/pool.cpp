#include "pool.h"

#include <cstdlib>
#include <iterator>
#include <new>

#include "foundation/except.h"
#include "lum/lum.h"

namespace tarn::pool {

namespace {

struct FreeBlock {
  FreeBlock* fNext;
};

struct FreeList {
  std::size_t fBytes;
  FreeBlock* fFirst;
  unsigned fLength;
};

// A header with its inline data, and headers followed by short texts. A few hundred blocks serve any script;
// more would only hold memory back.
constexpr unsigned kMaxLength = 256;
FreeList sLists[] = {{0, nullptr, 0}, {24, nullptr, 0}, {64, nullptr, 0}, {160, nullptr, 0}};

// Recycled blocks would hide uses after the end from the sanitizer.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kIsRecycling = false;
#else
constexpr bool kIsRecycling = true;
#endif

std::uint8_t poolFor(std::size_t bytes) noexcept {
  for (std::size_t pool = 1; pool < std::size(sLists); ++pool)
    if (bytes <= sLists[pool].fBytes) return static_cast<std::uint8_t>(pool);
  return 0;
}

}  // namespace

Block allocate(std::size_t bytes) {
  std::uint8_t const pool = poolFor(bytes);
  FreeList& list = sLists[pool];
  if (FreeBlock* first = list.fFirst) {
    list.fFirst = first->fNext;
    --list.fLength;
    return {first, pool};
  }
  void* memory = std::malloc(pool ? list.fBytes : bytes);
  if (!memory) throw foundation::core::except::bad_alloc();
  return {memory, pool};
}

void release(Block block) noexcept {
  FreeList& list = sLists[block.fPool];
  if (!kIsRecycling || block.fPool == 0 || list.fLength == kMaxLength) {
    lumFree(block.fMemory);
    return;
  }
  list.fFirst = new (block.fMemory) FreeBlock{list.fFirst};
  ++list.fLength;
}

}  // namespace tarn::pool
