// Questions that go over large models, against the same walks over a graph of plain structs. The sizes count
// elements.

#include "Stopwatch.h"
#include "graphs.h"

namespace {

using graphs::Metamodel;
using graphs::Structs;

/// Asks one question; `aAsk` answers how many elements it found, which is what the time is divided by. A
/// change before each question makes sure that no answer is remembered.
template <class Change, class Ask>
void time(benchmark::State& aState, Change aChange, Ask aAsk) {
  std::int64_t found = 0;
  for (auto _ : aState) {
    aChange();
    Stopwatch const watch(aState);
    found += static_cast<std::int64_t>(aAsk());
  }
  aState.SetItemsProcessed(found);
}

// Both go over what was found, as answers may be worked out only then.

template <class Ask>
void timePlain(benchmark::State& aState, Ask aAsk) {
  time(
      aState, [] {},
      [&] {
        auto const answer = aAsk();
        for (auto const& node : answer) benchmark::DoNotOptimize(node.get()->fOwner);
        return answer.size();
      });
}

template <class Changed, class Ask>
void timeMetamodel(benchmark::State& aState, Changed const& aChanged, Ask aAsk) {
  time(
      aState, [&] { aChanged.setName(umlmm::String(u"renamed")); },
      [&] {
        auto const answer = aAsk();
        for (auto const& element : answer.values()) benchmark::DoNotOptimize(element.get());
        return answer.size();
      });
}

int sizeOf(benchmark::State const& aState) { return static_cast<int>(aState.range(0)); }

void allOwnedElements(benchmark::State& aState) {
  Metamodel model;
  graphs::Tree const tree(model, sizeOf(aState));
  timeMetamodel(aState, tree.fRoot, [&] { return tree.fRoot.allOwnedElements(); });
}
void allOwnedElementsPlain(benchmark::State& aState) {
  Structs model;
  graphs::Tree const tree(model, sizeOf(aState));
  timePlain(aState, [&] { return model.allOwnedElements(tree.fRoot); });
}

void qualifiedNames(benchmark::State& aState) {
  Metamodel model;
  graphs::Tree const tree(model, sizeOf(aState));
  time(
      aState, [] {},
      [&] {
        for (auto const& named : tree.fNamed) benchmark::DoNotOptimize(named.getQualifiedName());
        return tree.fNamed.size();
      });
}
void qualifiedNamesPlain(benchmark::State& aState) {
  Structs model;
  graphs::Tree const tree(model, sizeOf(aState));
  time(
      aState, [] {},
      [&] {
        for (auto const* const named : tree.fNamed) benchmark::DoNotOptimize(Structs::qualifiedName(named));
        return tree.fNamed.size();
      });
}

void members(benchmark::State& aState) {
  Metamodel model;
  auto const package = graphs::wide(model, sizeOf(aState));
  timeMetamodel(aState, package, [&] { return package.getMember(); });
}
void membersPlain(benchmark::State& aState) {
  Structs model;
  auto* const package = graphs::wide(model, sizeOf(aState));
  timePlain(aState, [&] { return model.members(package); });
}

void inheritedMembers(benchmark::State& aState) {
  Metamodel model;
  auto const special = graphs::chain(model, sizeOf(aState));
  timeMetamodel(aState, special, [&] { return special.getInheritedMember(); });
}
void inheritedMembersPlain(benchmark::State& aState) {
  Structs model;
  auto* const special = graphs::chain(model, sizeOf(aState));
  timePlain(aState, [&] { return model.inheritedMembers(special); });
}

void allParents(benchmark::State& aState) {
  Metamodel model;
  auto const special = graphs::lattice(model, sizeOf(aState));
  timeMetamodel(aState, special, [&] { return special.allParents(); });
}
void allParentsPlain(benchmark::State& aState) {
  Structs model;
  auto* const special = graphs::lattice(model, sizeOf(aState));
  timePlain(aState, [&] { return model.allParents(special); });
}

void sizes(benchmark::internal::Benchmark* aBenchmark) {
  aBenchmark->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->UseManualTime()->Iterations(3);
}

BENCHMARK(allOwnedElements)->Apply(sizes);
BENCHMARK(allOwnedElementsPlain)->Apply(sizes);
BENCHMARK(qualifiedNames)->Apply(sizes);
BENCHMARK(qualifiedNamesPlain)->Apply(sizes);
BENCHMARK(members)->Apply(sizes);
BENCHMARK(membersPlain)->Apply(sizes);
BENCHMARK(inheritedMembers)->Apply(sizes);
BENCHMARK(inheritedMembersPlain)->Apply(sizes);
BENCHMARK(allParents)->Apply(sizes);
BENCHMARK(allParentsPlain)->Apply(sizes);

}  // namespace
