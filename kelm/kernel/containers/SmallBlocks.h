#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

namespace Kelm::detail {

/// Free list of memory blocks of one size, one list a thread: what a thread gave back it gets again without
/// asking the allocator. A list keeps at most `kKept` blocks, and none once its thread ends. A block may come
/// from one thread, or one library's copy of the list, and go to another.
template <std::size_t Size>
class SmallBlocks {
  static_assert(Size >= sizeof(void*));

 public:
  static constexpr std::uint32_t kKept = 128;

  /// `Size` bytes, aligned as `operator new` does; raises `std::bad_alloc`.
  [[nodiscard]] static void* take() {
    List& list = sList;
    if (list.fFirst == nullptr) [[unlikely]]
      return ::operator new(Size);
    Block* const block = list.fFirst;
    list.fFirst = block->fNext;
    ++list.fFree;
    return block;
  }

  /// `aBlock` comes from `take`, in whatever thread.
  static void give(void* aBlock) noexcept {
    List& list = sList;
    if (list.fFree == 0) [[unlikely]] {
      if (!open(list)) {
        ::operator delete(aBlock);
        return;
      }
    }
    --list.fFree;
    list.fFirst = ::new (aBlock) Block{list.fFirst};
  }

 private:
  struct Block {
    Block* fNext;
  };
  enum class State : std::uint8_t { Unused, Open, Closed };
  struct List {
    Block* fFirst;
    /// How many more blocks the list takes.
    std::uint32_t fFree;
    State fState;
  };
  /// Empties the list when its thread ends.
  struct Closer {
    ~Closer() {
      sList.fState = State::Closed;
      sList.fFree = 0;
      while (Block* const block = sList.fFirst) {
        sList.fFirst = block->fNext;
        ::operator delete(block);
      }
    }
  };

  /// Gets an unused list going; false for a full or closed one.
  [[gnu::noinline]] static bool open(List& aList) noexcept {
    if (aList.fState != State::Unused) return false;
    static thread_local Closer const closer;
    static_cast<void>(&closer);
    aList.fState = State::Open;
    aList.fFree = kKept;
    return true;
  }

  // Trivial, so that it may be used by whatever is destroyed after the thread's other objects.
  static inline constinit thread_local List sList{nullptr, 0, State::Unused};
};

/// Memory for `Size` bytes, from the free list of the next greater multiple of 16.
template <std::size_t Size>
using BlocksFor = SmallBlocks<(Size + 15) / 16 * 16>;

}  // namespace Kelm::detail
