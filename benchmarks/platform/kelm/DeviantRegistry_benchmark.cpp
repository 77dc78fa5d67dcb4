#include <benchmark/benchmark.h>

#include "kelm/DeviantRegistry.h"

namespace {

using Kelm::DeviantRegistry;

/// The object's id, both ways, as each call of a script needs it.
void idAndBack(benchmark::State& aState) {
  Kelm::ReferenceCountingIntf object;
  for (auto _ : aState) {
    void* const id = DeviantRegistry::getId(&object, Kelm::Deviant(), false);
    benchmark::DoNotOptimize(DeviantRegistry::getVariantInfo(id));
  }
}

void makeRegisterAndDrop(benchmark::State& aState) {
  for (auto _ : aState) {
    Kelm::ReferenceCountingIntf object;
    benchmark::DoNotOptimize(DeviantRegistry::getId(&object, Kelm::Deviant(), false));
  }
}

BENCHMARK(idAndBack);
BENCHMARK(makeRegisterAndDrop);

}  // namespace
