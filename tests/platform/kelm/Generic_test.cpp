#include "kelm/Generic.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/kelm/support/failure.h"

namespace {

using Kelm::Deviant;
using namespace Kelm::Generic;

bool equalInts(void const* aLeft, void const* aRight) {
  return *static_cast<int const*>(aLeft) == *static_cast<int const*>(aRight);
}

int sHolders = 0;

struct Holder {
  int fValue;
  int fCount = 0;
};

void manage(void* aHolder, bool aIncrement) {
  auto* const holder = static_cast<Holder*>(aHolder);
  if (aIncrement) {
    ++holder->fCount;
  } else if (--holder->fCount == 0) {
    delete holder;
    --sHolders;
  }
}

Ref refOf(int aValue) {
  ++sHolders;
  return Ref(new Holder{aValue}, 0, manage, equalInts);
}

/// A sequence with nothing but what the inherited operations stand on.
class Numbers final : public SequenceIntf {
 public:
  explicit Numbers(std::vector<int> aValues, std::type_info const& aType = typeid(int))
      : fValues(std::move(aValues)), fType(aType) {}
  std::type_info const& valueType() const override { return fType; }

  Ref generic_at(Deviant const&, int aIndex) const override { return refOf(fValues.at(aIndex)); }
  int generic_size(Deviant const&) const override { return static_cast<int>(fValues.size()); }
  void generic_clear(Deviant const&) override { fValues.clear(); }
  void generic_push_back(Deviant const&, Ref aValue) override {
    fValues.push_back(*static_cast<int const*>(aValue.fHolder));
  }

  Ref generic_front(Deviant const&) const override { return {}; }
  Ref generic_back(Deviant const&) const override { return {}; }
  IteratorPtr generic_begin(Deviant const&) const override { return {}; }
  IteratorPtr generic_end(Deviant const&) const override { return {}; }
  void generic_insert(Deviant const&, int, Ref) override {}
  IteratorPtr generic_insert(Deviant const&, IteratorIntf const*, Ref) override { return {}; }
  IteratorPtr generic_erase(Deviant const&, IteratorIntf const*) override { return {}; }
  IteratorPtr generic_erase(Deviant const&, IteratorIntf const*, IteratorIntf const*) override { return {}; }
  void generic_erase(Deviant const&, int) override {}
  void generic_pop_back(Deviant const&) override {}
  void generic_pop_front(Deviant const&) override {}
  void generic_push_front(Deviant const&, Ref) override {}
  void generic_replace(Deviant const&, int, Ref) override {}
  bool generic_contains(Deviant const&, Ref) const override { return false; }
  char const* generic_getVeskName(bool, bool, char const*) const override { return ""; }
  int generic_removeAll(Deviant const&, Ref) override { return 0; }
  std::uint64_t stamp(Deviant const&) const override { return 1; }
  int readBlock(Deviant const&, int aIndex, int aCount, Loan* aOut) const override {
    int const count = blockLength(aIndex, aCount, fValues.size());
    for (int i = 0; i < count; ++i) aOut[i] = {const_cast<int*>(&fValues[aIndex + i]), 0};
    return count;
  }

  std::vector<int> fValues;

 private:
  std::type_info const& fType;
};

std::vector<int> upTo(int aCount) {
  std::vector<int> values;
  for (int i = 0; i < aCount; ++i) values.push_back(i);
  return values;
}

bool equal(std::vector<int> aLeft, std::vector<int> aRight) {
  Numbers left(std::move(aLeft));
  Numbers const right(std::move(aRight));
  bool result = false;
  left.specialized_equal(&right, Deviant(), result);
  return result;
}

TEST(Ref, CountsItsHolder) {
  {
    Ref const first = refOf(7);
    Ref copy = first;
    EXPECT_EQ(static_cast<Holder*>(first.fHolder)->fCount, 2);
    Ref moved = std::move(copy);
    EXPECT_EQ(static_cast<Holder*>(first.fHolder)->fCount, 2);
    moved = refOf(8);
    EXPECT_EQ(static_cast<Holder*>(first.fHolder)->fCount, 1);
    EXPECT_EQ(sHolders, 2);
  }
  EXPECT_EQ(sHolders, 0);
}

TEST(SequenceIntf, EqualityComparesSizesAndValuesInOrder) {
  EXPECT_TRUE(equal({}, {}));
  EXPECT_TRUE(equal(upTo(100), upTo(100)));
  EXPECT_FALSE(equal(upTo(100), upTo(99)));
  EXPECT_FALSE(equal({1, 2}, {2, 1}));
  std::vector<int> late = upTo(100);
  late.back() = 0;
  EXPECT_FALSE(equal(upTo(100), late));
  EXPECT_EQ(sHolders, 0);

  Numbers numbers({1});
  bool result = false;
  numbers.specialized_equal(&numbers, Deviant(), result);
  EXPECT_TRUE(result);
  numbers.specialized_equal(nullptr, Deviant(), result);
  EXPECT_FALSE(result);
}

TEST(SequenceIntf, ValuesOfAnotherTypeAreNeitherEqualNorAssigned) {
  Numbers numbers({1, 2});
  Numbers others({1, 2}, typeid(float));
  bool result = true;
  numbers.specialized_equal(&others, Deviant(), result);
  EXPECT_FALSE(result);
  bool done = false;
  EXPECT_NE(failureOf([&] { numbers.specialized_assign(&others, Deviant(), done); }).find("Incorrect type"),
            std::string::npos);
  EXPECT_FALSE(done);
  EXPECT_EQ(numbers.fValues, (std::vector<int>{1, 2}));
}

TEST(SequenceIntf, AssignmentReplacesTheContents) {
  Numbers target({9, 9, 9});
  Numbers const source(upTo(70));
  bool done = false;
  target.specialized_assign(&source, Deviant(), done);
  EXPECT_TRUE(done);
  EXPECT_EQ(target.fValues, source.fValues);
  target.specialized_assign(&target, Deviant(), done);
  EXPECT_EQ(target.fValues, source.fValues);
  EXPECT_FALSE(target.generic_empty(Deviant()));
  target.generic_rearrange(Deviant(), std::vector{0, 1, 69}, std::vector{69, 0, 1});
  EXPECT_EQ(target.fValues[0] * 10000 + target.fValues[1] * 100 + target.fValues[69], 16900);
  target.specialized_assign(nullptr, Deviant(), done);
  EXPECT_TRUE(target.generic_empty(Deviant()));
  EXPECT_EQ(sHolders, 0);
}

TEST(SequenceIntf, SearchGoesOnFromAnyIndex) {
  Numbers numbers(upTo(100));
  numbers.fValues[90] = 40;
  Ref const wanted = refOf(40);
  EXPECT_EQ(numbers.indexOf(Deviant(), wanted, 0), 40);
  EXPECT_EQ(numbers.indexOf(Deviant(), wanted, 41), 90);
  EXPECT_EQ(numbers.indexOf(Deviant(), wanted, 91), -1);
  EXPECT_EQ(numbers.indexOf(Deviant(), wanted, 200), -1);
  EXPECT_TRUE(tells(failureOf([&] { static_cast<void>(numbers.indexOf(Deviant(), wanted, -1)); }),
                    "sequence index must be positive", "kelm/kernel/containers/sequence/SequenceProxy"));
}

}  // namespace
