// Changes of short and long lists, amortised over 1,000 of them, in a list that owns its elements and in one
// that merely refers to them; and iteration. Times are those of one change.

#include <algorithm>
#include <vector>

#include "Stopwatch.h"
#include "TestModel.h"
#include "plain.h"

namespace {

constexpr int kChanges = 1'000;

std::vector<umlmm::Class> makeClasses(TestModel const& aModel, int aCount) {
  std::vector<umlmm::Class> classes;
  for (int at = 0; at < aCount; ++at) classes.push_back(umlmm::Class::create(aModel));
  return classes;
}

/// The elements know their owner, and leave the one that they had.
struct Owning {
  explicit Owning(TestModel const& aModel) : fOwner(umlmm::Package::create(aModel)) {}
  umlmm::Package fOwner;
  Kelm::Sequence<umlmm::PackageableElement> fList = fOwner.getPackagedElement();
};
/// The elements know nothing of the list.
struct Referring {
  explicit Referring(TestModel const& aModel) : fOwner(umlmm::Comment::create(aModel)) {}
  umlmm::Comment fOwner;
  Kelm::Sequence<umlmm::Element> fList = fOwner.getAnnotatedElement();
};

/// A list of the length that the benchmark asks for.
template <class Kind>
struct Filled {
  explicit Filled(benchmark::State const& aState)
      : fClasses(makeClasses(fModel, static_cast<int>(aState.range(0)))), fSubject(fModel) {
    for (umlmm::Class const& value : fClasses) fSubject.fList.push_back(value);
  }
  /// A stretch in the middle: 1,000 elements, or half of a list that is not much longer.
  std::vector<umlmm::Class> middle() const {
    auto const length = static_cast<std::ptrdiff_t>(fClasses.size());
    auto const count = std::min<std::ptrdiff_t>(kChanges, length / 2);
    auto const first = fClasses.begin() + (length - count) / 2;
    return std::vector<umlmm::Class>(first, first + count);
  }

  TestModel fModel;
  std::vector<umlmm::Class> fClasses;
  Kind fSubject;
};

/// Times `aChange(list, class)` on each of the classes that `aSelect` answers for a fresh list.
template <class Kind, class Select, class Change>
void timeChanges(benchmark::State& aState, Select aSelect, Change aChange) {
  std::int64_t changes = 0;
  for (auto _ : aState) {
    Filled<Kind> filled(aState);
    std::vector<umlmm::Class> const selected = aSelect(filled);
    changes += static_cast<std::int64_t>(selected.size());
    Stopwatch const watch(aState);
    for (umlmm::Class const& value : selected) aChange(filled.fSubject.fList, value);
  }
  aState.SetItemsProcessed(changes);
}

template <class Kind>
void append(benchmark::State& aState) {
  timeChanges<Kind>(
      aState, [](Filled<Kind> const& aFilled) { return makeClasses(aFilled.fModel, kChanges); },
      [](auto const& aList, umlmm::Class const& aValue) { aList.push_back(aValue); });
}

void appendPlain(benchmark::State& aState) {
  for (auto _ : aState) {
    plain::Model model;
    plain::Element owner;
    std::vector<plain::Element*> list;
    std::vector<plain::Element*> added;
    auto const append = [&](plain::Element* aElement) {
      model.remove(aElement);
      aElement->fOwner = &owner;
      aElement->fPlace = list.size();
      list.push_back(aElement);
    };
    for (int at = 0; at < aState.range(0); ++at) append(model.create());
    for (int at = 0; at < kChanges; ++at) added.push_back(model.create());
    {
      Stopwatch const watch(aState);
      for (plain::Element* const element : added) append(element);
    }
    for (plain::Element const* const element : list) delete element;
  }
  aState.SetItemsProcessed(aState.iterations() * kChanges);
}

template <class Kind>
void eraseFromTheMiddle(benchmark::State& aState) {
  timeChanges<Kind>(
      aState, [](Filled<Kind> const& aFilled) { return aFilled.middle(); },
      [](auto const& aList, umlmm::Class const& aValue) { aList.removeAll(aValue); });
}

template <class Kind>
void destroyInTheMiddle(benchmark::State& aState) {
  timeChanges<Kind>(
      aState, [](Filled<Kind> const& aFilled) { return aFilled.middle(); },
      [](auto const&, umlmm::Class const& aValue) { aValue.destroy(); });
}

/// The worst case of holes in a list: each change is followed by a question for a position.
template <class Kind>
void eraseAndReadByPosition(benchmark::State& aState) {
  timeChanges<Kind>(
      aState, [](Filled<Kind> const& aFilled) { return aFilled.middle(); },
      [](auto const& aList, umlmm::Class const& aValue) {
        aList.removeAll(aValue);
        benchmark::DoNotOptimize(aList.at(aList.size() / 2));
      });
}

constexpr int kIterated = 1'000;

void iterate(benchmark::State& aState) {
  TestModel const model;
  Owning const subject(model);
  for (umlmm::Class const& value : makeClasses(model, kIterated)) subject.fList.push_back(value);
  for (auto _ : aState)
    for (umlmm::PackageableElement const& value : subject.fList.values())
      benchmark::DoNotOptimize(value.get());
  aState.SetItemsProcessed(aState.iterations() * kIterated);
}

void iteratePlain(benchmark::State& aState) {
  std::vector<plain::Element> elements(kIterated);
  std::vector<plain::Element*> list;
  for (plain::Element& element : elements) {
    element.fCount = 1;
    list.push_back(&element);
  }
  for (auto _ : aState)
    for (plain::Element* const element : list) benchmark::DoNotOptimize(plain::Counted(element).get());
  aState.SetItemsProcessed(aState.iterations() * kIterated);
}

void curve(benchmark::internal::Benchmark* aBenchmark) {
  aBenchmark->Arg(1'000)->Arg(10'000)->Arg(100'000)->UseManualTime()->Iterations(2);
}

BENCHMARK(append<Owning>)->Apply(curve);
BENCHMARK(append<Referring>)->Apply(curve);
BENCHMARK(appendPlain)->Apply(curve);
BENCHMARK(eraseFromTheMiddle<Owning>)->Apply(curve);
BENCHMARK(eraseFromTheMiddle<Referring>)->Apply(curve);
BENCHMARK(destroyInTheMiddle<Owning>)->Apply(curve);
BENCHMARK(destroyInTheMiddle<Referring>)->Apply(curve);
BENCHMARK(eraseAndReadByPosition<Owning>)->Apply(curve);
BENCHMARK(eraseAndReadByPosition<Referring>)->Apply(curve);
BENCHMARK(iterate);
BENCHMARK(iteratePlain);

}  // namespace
