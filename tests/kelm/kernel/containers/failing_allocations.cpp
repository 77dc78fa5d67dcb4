#include "kelm/kernel/containers/failing_allocations.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace sequence_suite {

int sAllocationFailsAt = 0;

}  // namespace sequence_suite

void* operator new(std::size_t aSize) {
  int& failsAt = sequence_suite::sAllocationFailsAt;
  if (failsAt > 0 && --failsAt == 0) throw std::bad_alloc();
  if (void* const memory = std::malloc(aSize)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t aSize, std::nothrow_t const&) noexcept {
  int& failsAt = sequence_suite::sAllocationFailsAt;
  return failsAt > 0 && --failsAt == 0 ? nullptr : std::malloc(aSize);
}
void operator delete(void* aMemory) noexcept { std::free(aMemory); }
void operator delete(void* aMemory, std::size_t) noexcept { std::free(aMemory); }
