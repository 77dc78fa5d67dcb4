#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "kelm/ElementList.h"
#include "kelm/ModelElementIntf.h"

namespace {

using Kelm::ElementList;

Kelm::Blocks::Owner const sBlocks = Kelm::Blocks::make();

/// As large as a small element with its slots.
class Element final : public Kelm::NSInterface::ModelElementIntf {
 public:
  ~Element() override = default;
  std::uint64_t fSlots[6] = {};
};

struct Elements {
  explicit Elements(std::size_t aCount) : fElements(aCount) {
    for (Element& element : fElements) fOrder.push_back(&element);
  }
  std::vector<Element> fElements;
  std::vector<ElementList::Element*> fOrder;
};

enum Order { kFromTheMiddle, kMixed };

/// Takes out half of the elements, one by one, and reports the time for each.
template <class List>
void eraseByElement(benchmark::State& aState) {
  auto const count = static_cast<std::size_t>(aState.range(0));
  Elements elements(count);
  auto order = elements.fOrder;
  if (aState.range(1) == kMixed)
    std::ranges::shuffle(order, std::mt19937(7));
  else
    std::ranges::rotate(order, order.begin() + static_cast<std::ptrdiff_t>(count / 4));
  order.resize(count / 2);
  for (auto _ : aState) {
    aState.PauseTiming();
    List* list = nullptr;
    for (auto* const element : elements.fOrder) List::append(list, *sBlocks, element);
    aState.ResumeTiming();
    for (auto* const element : order) list->erase(element);
    aState.PauseTiming();
    ElementList::destroy(list);
    aState.ResumeTiming();
  }
  aState.SetItemsProcessed(aState.iterations() * static_cast<std::int64_t>(order.size()));
}

void append(benchmark::State& aState) {
  Elements elements(static_cast<std::size_t>(aState.range(0)));
  for (auto _ : aState) {
    Kelm::PartList* list = nullptr;
    for (auto* const element : elements.fOrder) Kelm::PartList::append(list, *sBlocks, element);
    ElementList::destroy(list);
  }
  aState.SetItemsProcessed(aState.iterations() * aState.range(0));
}

BENCHMARK(append)->Arg(1'000)->Arg(100'000);
void everyOrder(benchmark::internal::Benchmark* aBenchmark) {
  aBenchmark->ArgNames({"count", "mixed"})->ArgsProduct({{1'000, 100'000}, {kFromTheMiddle, kMixed}});
}
BENCHMARK(eraseByElement<Kelm::PartList>)->Apply(everyOrder);
BENCHMARK(eraseByElement<Kelm::ReferenceList>)->Apply(everyOrder);

}  // namespace
