#include "kelm/blocks.h"

#include <array>
#include <cstdint>
#include <new>

namespace Kelm {

#if defined(__SANITIZE_ADDRESS__)

// The sanitizer sees each block by itself.
void* allocateBlock(std::size_t aSize) { return ::operator new(aSize); }
void freeBlock(void* aMemory, std::size_t aSize) noexcept { ::operator delete(aMemory, aSize); }

#else

namespace {

constexpr std::size_t kStep = 8;
constexpr std::size_t kLargest = 1024;
/// Chunks stand at multiples of their size, so that a block's address tells its chunk.
constexpr std::size_t kChunk = std::size_t{16} * 1024;
/// As many are asked for at a time, which takes room for one more.
constexpr std::size_t kChunksInArea = 32;

struct Chunk {
  std::uint32_t fLive;
  /// Bytes that blocks were cut from, this head included.
  std::uint32_t fUsed;
  Chunk* fNext;

  char* at(std::size_t aOffset) noexcept { return reinterpret_cast<char*>(this) + aOffset; }
};
constexpr std::size_t kHead = 64;

/// A free block in the list of its size. It tells its size, as a chunk of free blocks alone is walked.
struct Free {
  Free* fNext;
  Free* fPrevious;
  std::size_t fSize;
};

/// By size in steps.
std::array<Free*, kLargest / kStep + 1> sFree;
/// Where new blocks are cut from.
Chunk* sCurrent = nullptr;
Chunk* sEmpty = nullptr;

Chunk& chunkOf(void* aBlock) noexcept {
  return *reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(aBlock) & ~(kChunk - 1));
}

void link(Free& aBlock) noexcept {
  Free*& first = sFree[aBlock.fSize / kStep];
  aBlock.fPrevious = nullptr;
  aBlock.fNext = first;
  if (first != nullptr) first->fPrevious = &aBlock;
  first = &aBlock;
}

void unlink(Free& aBlock) noexcept {
  (aBlock.fPrevious == nullptr ? sFree[aBlock.fSize / kStep] : aBlock.fPrevious->fNext) = aBlock.fNext;
  if (aBlock.fNext != nullptr) aBlock.fNext->fPrevious = aBlock.fPrevious;
}

void addChunk(Chunk& aChunk) noexcept {
  aChunk = {0, kHead, sEmpty};
  sEmpty = &aChunk;
}

Chunk* takeChunk() {
  if (sEmpty == nullptr) {
    auto const area = reinterpret_cast<std::uintptr_t>(::operator new((kChunksInArea + 1) * kChunk));
    std::uintptr_t const first = (area + kChunk - 1) & ~(kChunk - 1);
    for (std::size_t at = kChunksInArea; at > 0; --at)
      addChunk(*reinterpret_cast<Chunk*>(first + (at - 1) * kChunk));
  }
  Chunk* const chunk = sEmpty;
  sEmpty = chunk->fNext;
  return chunk;
}

/// The last block of a chunk is free: the others are unlinked, and the chunk serves anew.
void reclaim(Chunk& aChunk, Free const& aLast) noexcept {
  for (std::size_t offset = kHead; offset < aChunk.fUsed;) {
    Free& block = *reinterpret_cast<Free*>(aChunk.at(offset));
    offset += block.fSize;
    if (&block != &aLast) unlink(block);
  }
  if (&aChunk == sCurrent)
    aChunk.fUsed = kHead;
  else
    addChunk(aChunk);
}

}  // namespace

void* allocateBlock(std::size_t aSize) {
  if (aSize > kLargest) return ::operator new(aSize);
  std::size_t const steps = (aSize + kStep - 1) / kStep;
  if (Free* const block = sFree[steps]) {
    unlink(*block);
    ++chunkOf(block).fLive;
    return block;
  }
  std::size_t const size = steps * kStep;
  if (sCurrent == nullptr || sCurrent->fUsed + size > kChunk) sCurrent = takeChunk();
  void* const block = sCurrent->at(sCurrent->fUsed);
  sCurrent->fUsed += static_cast<std::uint32_t>(size);
  ++sCurrent->fLive;
  return block;
}

void freeBlock(void* aMemory, std::size_t aSize) noexcept {
  if (aSize > kLargest) return ::operator delete(aMemory, aSize);
  auto& block = *static_cast<Free*>(aMemory);
  block.fSize = (aSize + kStep - 1) / kStep * kStep;
  Chunk& chunk = chunkOf(aMemory);
  if (--chunk.fLive == 0)
    reclaim(chunk, block);
  else
    link(block);
}

#endif

}  // namespace Kelm
