// What elements take, and what reads allocate: counted, not timed.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "TestModel.h"
#include "kelm/meta.h"

namespace {

std::int64_t sAllocations = 0;

}  // namespace

extern "C" {

void* __libc_malloc(std::size_t aSize);

/// Stands before the library's own, for this program and all libraries that it loads.
__attribute__((visibility("default"))) void* malloc(std::size_t aSize) noexcept {
  ++sAllocations;
  return __libc_malloc(aSize);
}
}

namespace {

/// Bytes in blocks that programs hold.
std::size_t heap() noexcept {
  auto const info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

/// Counters: the element itself with its slots, and by how much the heap grows for each with its place in the
/// model.
template <class X>
void bytesPerElement(benchmark::State& aState) {
  constexpr int kCount = 100'000;
  // Never closed: the memory of its elements would serve the next.
  static auto const& model = *new TestModel();
  for (auto _ : aState) {
    std::size_t const before = heap();
    for (int at = 0; at < kCount; ++at) X::create(model);
    aState.counters["heap"] = static_cast<double>(heap() - before) / kCount;
  }
  aState.counters["element"] = X::create(model).get()->classTable()->fSize;
}

/// The most allocations of one read among all single features of the elements, each read once before. Derived
/// features are counted apart: some of them make a text or a sequence.
void allocationsPerRead(benchmark::State& aState) {
  TestModel const model;
  auto const owner = umlmm::Class::create(model);
  auto const property = umlmm::Property::create(model);
  auto const integer = umlmm::LiteralInteger::create(model);
  auto const unlimited = umlmm::LiteralUnlimitedNatural::create(model);
  auto const text = umlmm::LiteralString::create(model);
  owner.setName(umlmm::String(u"Order"));
  property.setName(umlmm::String(u"customer"));
  property.setType(owner);
  property.setDefaultValue(text);
  owner.getOwnedAttribute().push_back(property);
  text.setValue(umlmm::String(u"nobody"));
  integer.setValue(umlmm::Integer(1'000'000));
  unlimited.setValue(umlmm::UnlimitedNatural(7));

  std::int64_t worst = 0;
  std::int64_t reads = 0;
  auto const readAll = [&](Kelm::NSInterface::ModelElementIntf const* aElement) {
    for (auto const* const feature : aElement->getMetaClass().get()->allProperties()) {
      if (feature->isMultivalued() || feature->isDerived()) continue;
      auto const& methods = feature->accessors();
      auto const read = [&] { return methods.getEntry(aElement, model.deviant(), feature->getId()); };
      benchmark::DoNotOptimize(read());
      std::int64_t const before = sAllocations;
      benchmark::DoNotOptimize(read());
      worst = std::max(worst, sAllocations - before);
      ++reads;
    }
  };
  for (auto _ : aState) {
    readAll(owner.get());
    readAll(property.get());
    readAll(integer.get());
    readAll(unlimited.get());
    readAll(text.get());
  }
  aState.counters["allocations"] = static_cast<double>(worst);
  aState.counters["reads"] = static_cast<double>(reads);
}

BENCHMARK(bytesPerElement<umlmm::Comment>)->Iterations(1);
BENCHMARK(bytesPerElement<umlmm::Property>)->Iterations(1);
BENCHMARK(bytesPerElement<umlmm::Class>)->Iterations(1);
BENCHMARK(allocationsPerRead)->Iterations(1);

}  // namespace
