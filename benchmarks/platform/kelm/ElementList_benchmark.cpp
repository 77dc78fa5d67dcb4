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
void eraseByElement(benchmark::State& aState) {
  auto const count = static_cast<std::size_t>(aState.range(0));
  bool const owning = aState.range(1) != 0;
  Elements elements(count);
  auto order = elements.fOrder;
  if (aState.range(2) == kMixed)
    std::ranges::shuffle(order, std::mt19937(7));
  else
    std::ranges::rotate(order, order.begin() + static_cast<std::ptrdiff_t>(count / 4));
  order.resize(count / 2);
  for (auto _ : aState) {
    aState.PauseTiming();
    ElementList* list = nullptr;
    for (auto* const element : elements.fOrder) ElementList::append(list, *sBlocks, element, owning);
    aState.ResumeTiming();
    for (auto* const element : order) list->erase(element, owning);
    aState.PauseTiming();
    ElementList::destroy(list);
    aState.ResumeTiming();
  }
  aState.SetItemsProcessed(aState.iterations() * static_cast<std::int64_t>(order.size()));
}

void append(benchmark::State& aState) {
  Elements elements(static_cast<std::size_t>(aState.range(0)));
  for (auto _ : aState) {
    ElementList* list = nullptr;
    for (auto* const element : elements.fOrder) ElementList::append(list, *sBlocks, element, true);
    ElementList::destroy(list);
  }
  aState.SetItemsProcessed(aState.iterations() * aState.range(0));
}

BENCHMARK(append)->Arg(1'000)->Arg(100'000);
BENCHMARK(eraseByElement)
    ->ArgNames({"count", "owning", "mixed"})
    ->ArgsProduct({{1'000, 100'000}, {1, 0}, {kFromTheMiddle, kMixed}});

}  // namespace
