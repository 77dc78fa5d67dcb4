#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "lum/visibility.h"

namespace Kelm {

/// Memory for the elements of one model and their lists, in blocks of 24 bytes and more. Blocks of all sizes
/// are cut from the same chunks, so that what is made together lies together. A freed block serves the next
/// of its size, and a chunk of free blocks alone serves all sizes again, so a long-running script neither
/// grows nor waits for the allocator.
///
/// It belongs to its model and thus to one thread at a time, whichever that is. Only whole chunks go from one
/// model to another, through a guarded supply. It outlives its model for as long as a block is in use.
class UMLMM_API Blocks {
 public:
  /// Ends the model's hold.
  struct Leaver {
    void operator()(Blocks* aBlocks) const noexcept { aBlocks->leave(); }
  };
  using Owner = std::unique_ptr<Blocks, Leaver>;

  static Owner make() { return Owner(new Blocks); }

  /// `aSize` bytes, which must be 24 or more, aligned to 8 and not cleared; raises `std::bad_alloc`. More
  /// than 1024 come from the allocator.
  void* allocate(std::size_t aSize);
  /// `aMemory` comes from the blocks of any model that this thread uses, `aSize` is what was asked for.
  static void free(void* aMemory, std::size_t aSize) noexcept;

 private:
  struct Chunk;
  struct Free;
  class Supply;

  static constexpr std::size_t kStep = 8;
  static constexpr std::size_t kLargest = 1024;

  Blocks() noexcept = default;
  ~Blocks() = default;
  void leave() noexcept;
  void link(Free& aBlock) noexcept;
  void unlink(Free& aBlock) noexcept;
  void reclaim(Chunk& aChunk, Free const& aLast) noexcept;

  static Supply sSupply;

  /// By size in steps.
  std::array<Free*, kLargest / kStep + 1> fFree{};
  /// Where new blocks are cut from.
  Chunk* fCurrent = nullptr;
  std::uint32_t fChunks = 0;
  bool fIsLeft = false;
};

}  // namespace Kelm
