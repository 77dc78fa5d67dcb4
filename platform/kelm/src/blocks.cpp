#include "kelm/blocks.h"

#include <mutex>
#include <new>
#include <utility>

namespace Kelm {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

// The sanitizer sees each block by itself.
void* Blocks::allocate(std::size_t aSize) { return ::operator new(aSize); }
void Blocks::free(void* aMemory, std::size_t aSize) noexcept { ::operator delete(aMemory, aSize); }
void Blocks::leave() noexcept { delete this; }

#else

namespace {

/// Chunks stand at multiples of their size, so that a block's address tells its chunk.
constexpr std::size_t kChunk = std::size_t{16} * 1024;
/// As many are asked for at a time, which takes room for one more.
constexpr std::size_t kChunksInArea = 32;
constexpr std::size_t kHead = 64;

}  // namespace

struct Blocks::Chunk {
  std::uint32_t fLive;
  /// Bytes that blocks were cut from, the head included.
  std::uint32_t fUsed;
  /// Who cuts blocks from it; null in the supply.
  Blocks* fOwner;
  Chunk* fNext;

  static Chunk& of(void* aBlock) noexcept {
    return *reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(aBlock) & ~(kChunk - 1));
  }
  char* at(std::size_t aOffset) noexcept { return reinterpret_cast<char*>(this) + aOffset; }
};

/// A free block in the list of its size. It tells its size, as a chunk of free blocks alone is walked.
struct Blocks::Free {
  Free* fNext;
  Free* fPrevious;
  std::size_t fSize;
};

/// The chunks that no model has at present.
class Blocks::Supply {
 public:
  Chunk& take(Blocks& aOwner) {
    std::lock_guard const guard(fLock);
    if (fEmpty == nullptr) addArea();
    Chunk& chunk = *fEmpty;
    fEmpty = chunk.fNext;
    chunk.fOwner = &aOwner;
    return chunk;
  }

  void give(Chunk& aChunk) noexcept {
    std::lock_guard const guard(fLock);
    add(aChunk);
  }

 private:
  void add(Chunk& aChunk) noexcept {
    aChunk = {0, kHead, nullptr, fEmpty};
    fEmpty = &aChunk;
  }

  void addArea() {
    auto const area = reinterpret_cast<std::uintptr_t>(::operator new((kChunksInArea + 1) * kChunk));
    std::uintptr_t const first = (area + kChunk - 1) & ~(kChunk - 1);
    for (std::size_t at = kChunksInArea; at > 0; --at)
      add(*reinterpret_cast<Chunk*>(first + (at - 1) * kChunk));
  }

  std::mutex fLock;
  Chunk* fEmpty = nullptr;
};

constinit Blocks::Supply Blocks::sSupply;

void Blocks::link(Free& aBlock) noexcept {
  Free*& first = fFree[aBlock.fSize / kStep];
  aBlock.fPrevious = nullptr;
  aBlock.fNext = first;
  if (first != nullptr) first->fPrevious = &aBlock;
  first = &aBlock;
}

void Blocks::unlink(Free& aBlock) noexcept {
  (aBlock.fPrevious == nullptr ? fFree[aBlock.fSize / kStep] : aBlock.fPrevious->fNext) = aBlock.fNext;
  if (aBlock.fNext != nullptr) aBlock.fNext->fPrevious = aBlock.fPrevious;
}

/// The last block of a chunk is free: the others are unlinked, and the chunk serves anew.
void Blocks::reclaim(Chunk& aChunk, Free const& aLast) noexcept {
  for (std::size_t offset = kHead; offset < aChunk.fUsed;) {
    Free& block = *reinterpret_cast<Free*>(aChunk.at(offset));
    offset += block.fSize;
    if (&block != &aLast) unlink(block);
  }
  if (&aChunk == fCurrent) {
    aChunk.fUsed = kHead;
    return;
  }
  sSupply.give(aChunk);
  if (--fChunks == 0 && fIsLeft) delete this;
}

void Blocks::leave() noexcept {
  fIsLeft = true;
  Chunk* const current = std::exchange(fCurrent, nullptr);
  if (current != nullptr && current->fLive == 0) {
    sSupply.give(*current);
    --fChunks;
  }
  if (fChunks == 0) delete this;
}

void* Blocks::allocate(std::size_t aSize) {
  if (aSize > kLargest) return ::operator new(aSize);
  std::size_t const steps = (aSize + kStep - 1) / kStep;
  if (Free* const block = fFree[steps]) {
    unlink(*block);
    ++Chunk::of(block).fLive;
    return block;
  }
  std::size_t const size = steps * kStep;
  if (fCurrent == nullptr || fCurrent->fUsed + size > kChunk) {
    fCurrent = &sSupply.take(*this);
    ++fChunks;
  }
  void* const block = fCurrent->at(fCurrent->fUsed);
  fCurrent->fUsed += static_cast<std::uint32_t>(size);
  ++fCurrent->fLive;
  return block;
}

void Blocks::free(void* aMemory, std::size_t aSize) noexcept {
  if (aSize > kLargest) return ::operator delete(aMemory, aSize);
  auto& block = *static_cast<Free*>(aMemory);
  block.fSize = (aSize + kStep - 1) / kStep * kStep;
  Chunk& chunk = Chunk::of(aMemory);
  if (--chunk.fLive == 0)
    chunk.fOwner->reclaim(chunk, block);
  else
    chunk.fOwner->link(block);
}

#endif

}  // namespace Kelm
