// What the sequence kernel costs: every operation through a typed handle on a counted sequence, against the
// same operation on a bare container and against a baseline that does what the type-erased interface can't
// avoid: it allocates, fills, copies from and frees one value holder behind two virtual calls. Ends with a
// table of ratios to the bound, 2 * (bare + baseline), and with exit code 1 if one is over it. An iteration
// may also allocate one iterator.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kelm/kernel/containers/sequence/SequenceImplementations.h"

namespace {

struct Value {
  int fValue = 0;
  int value() const { return fValue; }
  friend bool operator==(Value const& aLeft, Value const& aRight) { return aLeft.fValue == aRight.fValue; }
  friend bool operator<(Value const& aLeft, Value const& aRight) { return aLeft.fValue < aRight.fValue; }
};

constexpr int kSizes[] = {1'000, 1'000'000};
/// Steps through all indices of either size in an order that no cache foresees.
constexpr int kStride = 7'919;

namespace index = boost::multi_index;
using BareIndex = index::multi_index_container<
    Value, index::indexed_by<index::random_access<>, index::ordered_non_unique<index::identity<Value>>,
                             index::ordered_non_unique<index::identity<Value>>>>;

struct BareVector {
  explicit BareVector(int aSize) {
    for (int i = 0; i < aSize; ++i) fValues.push_back({i});
  }
  int at(int aIndex) { return fValues.at(static_cast<std::size_t>(aIndex)).fValue; }
  void push_back(Value aValue) { fValues.push_back(aValue); }
  void pop_back() { fValues.pop_back(); }
  void insert(int aIndex, Value aValue) { fValues.insert(fValues.begin() + aIndex, aValue); }
  void erase(int aIndex) { fValues.erase(fValues.begin() + aIndex); }
  bool contains(Value aValue) { return std::find(fValues.begin(), fValues.end(), aValue) != fValues.end(); }
  int removeAll(Value aValue) { return static_cast<int>(std::erase(fValues, aValue)); }
  long sum() {
    long result = 0;
    for (Value const& value : fValues) result += value.fValue;
    return result;
  }
  std::vector<Value> fValues;
};

struct BareMultiIndex {
  explicit BareMultiIndex(int aSize) {
    for (int i = 0; i < aSize; ++i) fValues.push_back({i});
  }
  int at(int aIndex) { return fValues.at(static_cast<std::size_t>(aIndex)).fValue; }
  void push_back(Value aValue) { fValues.push_back(aValue); }
  void pop_back() { fValues.pop_back(); }
  void insert(int aIndex, Value aValue) { fValues.insert(fValues.begin() + aIndex, aValue); }
  void erase(int aIndex) { fValues.erase(fValues.begin() + aIndex); }
  bool contains(Value aValue) { return fValues.get<2>().find(aValue) != fValues.get<2>().end(); }
  int removeAll(Value aValue) { return static_cast<int>(fValues.get<1>().erase(aValue)); }
  long sum() {
    long result = 0;
    for (Value const& value : fValues) result += value.fValue;
    return result;
  }
  BareIndex fValues;
};

/// The operations through a handle, the values of an iteration one by one or in blocks.
template <Kelm::SequenceImpl Kind, bool InBlocks>
struct Handle : Kelm::Sequence<Value> {
  explicit Handle(int aSize)
      : Kelm::Sequence<Value>(Kelm::SequenceCreator::create<Value>({{}, Kind, false, true})) {
    for (int i = 0; i < aSize; ++i) push_back({i});
  }
  int at(int aIndex) { return Kelm::Sequence<Value>::at(aIndex).fValue; }
  long sum() {
    long result = 0;
    if constexpr (InBlocks) {
      for (Value const& value : values()) result += value.fValue;
    } else {
      auto const last = end();
      for (auto at = begin(); at != last; at.next()) result += at.current().fValue;
    }
    return result;
  }
};
using List = Handle<Kelm::STD_VECTOR, false>;
using ListInBlocks = Handle<Kelm::STD_VECTOR, true>;
using MultiIndex = Handle<Kelm::MULTI_INDEX, false>;
using MultiIndexInBlocks = Handle<Kelm::MULTI_INDEX, true>;

/// The baseline: one holder made, read and freed behind two virtual calls.
struct Holder {
  Value fValue;
  unsigned fCount;
};
struct Maker {
  virtual ~Maker() = default;
  virtual Holder* make(int aValue) = 0;
};
struct Inner : Maker {
  Holder* make(int aValue) override { return new Holder{{aValue}, 1}; }
};
struct Outer : Maker {
  explicit Outer(Maker* aInner) : fInner(aInner) {}
  Holder* make(int aValue) override { return fInner->make(aValue); }
  std::unique_ptr<Maker> fInner;
};

void baseline(benchmark::State& aState) {
  std::unique_ptr<Maker> const maker = std::make_unique<Outer>(new Inner());
  Maker* called = maker.get();
  for (auto _ : aState) {
    benchmark::DoNotOptimize(called);
    Holder* holder = called->make(7);
    benchmark::DoNotOptimize(holder);
    Value value = holder->fValue;
    benchmark::DoNotOptimize(value);
    delete holder;
  }
}

/// The allocation of one iterator.
void iteratorAllocation(benchmark::State& aState) {
  using Size = std::array<char, 80>;
  for (auto _ : aState) {
    auto iterator = std::make_unique<Size>();
    benchmark::DoNotOptimize(iterator.get());
  }
}

/// Answers 0. A step that reads makes its answer of what it read, so that the next one has to wait for it:
/// what counts is how long an operation takes, not how many of them a processor overlaps.
template <class Container>
using Step = int (*)(Container& aContainer, int aSize, int aIndex);

/// Runs a step with indices all over the container; the time is that of one step.
template <class Container>
void run(benchmark::State& aState, int aSize, Step<Container> aStep) {
  Container container(aSize);
  int at = 0;
  for (auto _ : aState) {
    at = (at + kStride + aStep(container, aSize, at)) % aSize;
  }
}

template <class Container>
void registerAll(std::string const& aName, bool aIterationOnly) {
  auto const add = [&](std::string const& aOperation, Step<Container> aStep) {
    for (int const size : kSizes) {
      std::string const name = aOperation + "/" + aName + "/" + std::to_string(size);
      benchmark::RegisterBenchmark(name.c_str(),
                                   [=](benchmark::State& aState) { run<Container>(aState, size, aStep); });
    }
  };
  add("iterate", [](auto& c, int, int) {
    benchmark::DoNotOptimize(c.sum());
    return 0;
  });
  if (aIterationOnly) return;
  add("at", [](auto& c, int, int aIndex) { return c.at(aIndex) - aIndex; });
  add("push_back", [](auto& c, int, int aIndex) {
    c.push_back({aIndex});
    c.pop_back();
    return 0;
  });
  add("insert in the middle", [](auto& c, int aSize, int aIndex) {
    c.insert(aSize / 2, {aIndex});
    c.erase(aSize / 2);
    return 0;
  });
  add("contains", [](auto& c, int, int aIndex) { return c.contains({aIndex}) - 1; });
  add("removeAll", [](auto& c, int, int aIndex) {
    int const removed = c.removeAll({aIndex});
    c.push_back({aIndex});
    return removed - 1;
  });
}

/// Keeps the best time of each benchmark, in nanoseconds.
class Collector : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(std::vector<Run> const& aRuns) override {
    for (Run const& run : aRuns) {
      if (run.run_type != Run::RT_Iteration) continue;
      auto const [entry, first] = fBest.emplace(run.run_name.function_name, run.GetAdjustedCPUTime());
      if (!first) entry->second = std::min(entry->second, run.GetAdjustedCPUTime());
    }
    ConsoleReporter::ReportRuns(aRuns);
  }
  double best(std::string const& aName) const {
    auto const entry = fBest.find(aName);
    return entry == fBest.end() ? std::numeric_limits<double>::quiet_NaN() : entry->second;
  }

 private:
  std::map<std::string, double> fBest;
};

/// Prints cost and ratio to the bound for what was run; false if one is over the bound.
bool holdsBounds(Collector const& aTimes) {
  constexpr std::pair<char const*, char const*> kPairs[] = {{"list", "vector"},
                                                            {"list in blocks", "vector"},
                                                            {"multi-index", "bare multi-index"},
                                                            {"multi-index in blocks", "bare multi-index"}};
  constexpr char const* kOperations[] = {"at",       "push_back", "insert in the middle",
                                         "contains", "removeAll", "iterate"};
  bool holds = true;
  std::printf("\n%-24s %-22s %9s %14s %14s %8s\n", "operation", "sequence", "size", "bare ns", "handle ns",
              "of bound");
  for (std::string const operation : kOperations) {
    for (auto const& [handle, bare] : kPairs) {
      for (int const size : kSizes) {
        std::string const end = std::string("/").append(std::to_string(size));
        double const bareTime = aTimes.best(operation + "/" + bare + end);
        double const time = aTimes.best(operation + "/" + handle + end);
        bool const iterates = operation == "iterate";
        double const holders = aTimes.best("baseline") * (iterates ? size : 1);
        double const bound = 2 * (bareTime + holders) + (iterates ? aTimes.best("iterator allocation") : 0);
        if (!(time > 0 && bound > 0)) continue;
        holds = holds && time <= bound;
        std::printf("%-24s %-22s %9d %14.1f %14.1f %8.2f\n", operation.c_str(), handle, size, bareTime, time,
                    time / bound);
      }
    }
  }
  return holds;
}

}  // namespace

int main(int aCount, char** aArguments) {
  benchmark::Initialize(&aCount, aArguments);
  benchmark::RegisterBenchmark("baseline", baseline);
  benchmark::RegisterBenchmark("iterator allocation", iteratorAllocation);
  registerAll<BareVector>("vector", false);
  registerAll<List>("list", false);
  registerAll<ListInBlocks>("list in blocks", true);
  registerAll<BareMultiIndex>("bare multi-index", false);
  registerAll<MultiIndex>("multi-index", false);
  registerAll<MultiIndexInBlocks>("multi-index in blocks", true);
  Collector times;
  benchmark::RunSpecifiedBenchmarks(&times);
  return holdsBounds(times) ? 0 : 1;
}
