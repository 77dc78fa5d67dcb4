// What threads with models of their own do beside each other. A program of its own: once a process has had a
// second thread, texts are counted atomically in all of it.

#include <benchmark/benchmark.h>

#include "TestModel.h"

namespace {

void createInOwnModels(benchmark::State& aState) {
  constexpr int kCount = 10'000;
  for (auto _ : aState) {
    TestModel const model;
    for (int at = 0; at < kCount; ++at) umlmm::Class::create(model);
  }
  aState.SetItemsProcessed(aState.iterations() * kCount);
}

}  // namespace

BENCHMARK(createInOwnModels)->Threads(1)->Threads(2)->UseRealTime();
