#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "kelm/kernel/containers/failing_allocations.h"
#include "kelm/kernel/containers/values.h"

// Every operation is run with its first copy failing, then its second, and so on until a run has no failure;
// the same with allocations. After each failure everything must stand as before.

namespace sequence_suite {
namespace {

/// Holds all spare blocks of a free list, so that the next one asked for comes from the allocator.
template <class Blocks>
class Drained {
 public:
  Drained() {
    for (void*& block : fBlocks) block = Blocks::take();
  }
  ~Drained() {
    for (void* const block : fBlocks) Blocks::give(block);
  }

 private:
  std::array<void*, Blocks::kKept> fBlocks;
};

template <class T, class Implementation, bool Shared>
struct Case {
  using Value = T;
  using Sequence = Implementation;
  static constexpr bool kIsShared = Shared;
};

/// [1, 2, 3, 2] (or [1, 2, 3] where duplicates are refused) behind a proxy, with positions in it.
template <class Case>
class Stage {
 public:
  using T = typename Case::Value;
  using Implementation = typename Case::Sequence;

  Stage() : fTarget(new Implementation()), fSequence(new Proxy(fTarget), {}) {
    for (int const value : {1, 2, 3, 2}) fSequence.push_back(T(value));
    fSecond = fSequence.begin();
    fSecond.next();
    fEnd = fSequence.end();
    if constexpr (Case::kIsShared) fCopy = std::make_unique<Implementation>(*fTarget);
  }

  /// Everything that a failure must leave alone.
  std::vector<int> state() const {
    std::vector<int> result{Fragile::sAlive, fSequence.size(), fSequence.get()->numRef()};
    for (int i = 0; i < fSequence.size(); ++i) result.push_back(fSequence.at(i).value());
    for (int const value : {1, 2, 3, 9}) result.push_back(fSequence.contains(T(value)));
    result.push_back(fSecond.current().value());
    if constexpr (requires { fTarget->shareCount(); }) result.push_back(fTarget->shareCount());
    return result;
  }

  using Proxy = Kelm::GenericReferenceCountingSequenceProxy;
  Implementation* fTarget;
  Kelm::Sequence<T> fSequence;
  Kelm::Iterator<T> fSecond;
  Kelm::Iterator<T> fEnd;
  std::unique_ptr<Implementation> fCopy;
  T fNew{9};
};

template <class Case>
struct Operation {
  char const* fName;
  void (*fRun)(Stage<Case>& aStage);
};

template <class Case>
Operation<Case> const kOperations[] = {
    {"push_back", [](auto& s) { s.fSequence.push_back(s.fNew); }},
    {"push_front", [](auto& s) { s.fSequence.push_front(s.fNew); }},
    {"insert", [](auto& s) { s.fSequence.insert(2, s.fNew); }},
    {"insert at iterator", [](auto& s) { s.fSequence.insert(s.fSecond, s.fNew); }},
    {"replace", [](auto& s) { s.fSequence.replace(1, s.fNew); }},
    {"erase", [](auto& s) { s.fSequence.erase(0); }},
    {"erase at iterator", [](auto& s) { s.fSequence.erase(s.fSecond); }},
    {"erase range", [](auto& s) { s.fSequence.erase(s.fSecond, s.fEnd); }},
    {"removeAll", [](auto& s) { s.fSequence.removeAll(typename Case::Value(2)); }},
    {"pop_back", [](auto& s) { s.fSequence.pop_back(); }},
    {"pop_front", [](auto& s) { s.fSequence.pop_front(); }},
    {"splice",
     [](auto& s) {
       using Access = Kelm::Generic::RefAccess<typename Case::Value>;
       s.fTarget->splice({}, 1, 2, {Access::make(s.fNew), Access::make(typename Case::Value(2))});
     }},
    {"assign",
     [](auto& s) {
       using Access = Kelm::Generic::RefAccess<typename Case::Value>;
       typename Case::Sequence other;
       for (auto const& value : {s.fNew, typename Case::Value(3)})
         other.generic_push_back({}, Access::make(value));
       bool isDone = false;
       s.fSequence.get()->specialized_assign(&other, {}, isDone);
     }},
    {"clear", [](auto& s) { s.fSequence.clear(); }},
    {"begin", [](auto& s) { s.fSequence.begin(); }},
    {"end", [](auto& s) { s.fSequence.end(); }},
    {"at", [](auto& s) { s.fSequence.at(1); }},
    {"contains", [](auto& s) { s.fSequence.contains(s.fNew); }},
    {"values",
     [](auto& s) {
       for (auto const& value : s.fSequence.values()) static_cast<void>(value);
     }},
};

/// Sweeps the failure that `aFailsAt` arms through one operation; answers how many runs failed.
template <class Case>
int sweep(Operation<Case> const& aOperation, int& aFailsAt) {
  for (int failAt = 1;; ++failAt) {
    Stage<Case> stage;
    std::vector<int> const before = stage.state();
    bool failed = false;
    bool fired = false;
    {
      Drained<Kelm::detail::SmallBlocks<16>> const holders;
      Drained<Kelm::detail::SmallBlocks<80>> const iterators;
      aFailsAt = failAt;
      try {
        aOperation.fRun(stage);
      } catch (std::exception const&) {
        failed = true;
      }
      fired = aFailsAt == 0;
      aFailsAt = 0;
    }
    EXPECT_EQ(failed, fired) << aOperation.fName << ", failure " << failAt;
    if (!failed) return failAt - 1;
    EXPECT_EQ(stage.state(), before) << aOperation.fName << ", failure " << failAt;
  }
}

template <class Case>
class FailingCopies : public testing::Test {};

using Cases = testing::Types<
    Case<Movable, Kelm::ListQImpl<Movable>, false>, Case<Movable, Kelm::ListQImpl<Movable>, true>,
    Case<Fragile, Kelm::ListQImpl<Fragile>, false>, Case<Fragile, Kelm::ListQImpl<Fragile>, true>,
    Case<Movable, Repeating<Movable>, false>, Case<Movable, Unique<Movable>, false>,
    Case<Fragile, Repeating<Fragile>, false>, Case<Fragile, Unique<Fragile>, false>>;
TYPED_TEST_SUITE(FailingCopies, Cases);

TYPED_TEST(FailingCopies, LeaveEverythingAsItWas) {
  int const alive = Fragile::sAlive;
  int failures = 0;
  for (auto const& operation : kOperations<TypeParam>) failures += sweep(operation, Fragile::sFailAt);
  EXPECT_GT(failures, 10);
  EXPECT_EQ(Fragile::sAlive, alive);
}

TYPED_TEST(FailingCopies, SoDoFailingAllocations) {
  int const alive = Fragile::sAlive;
  int failures = 0;
  for (auto const& operation : kOperations<TypeParam>) failures += sweep(operation, sAllocationFailsAt);
  EXPECT_GT(failures, 10);
  EXPECT_EQ(Fragile::sAlive, alive);
}

}  // namespace
}  // namespace sequence_suite
