#include "kelm/kernel/containers/iterator/Iterator.h"

#include <gtest/gtest.h>

#include "kelm/kernel/containers/failures.h"
#include "kelm/kernel/containers/values.h"

namespace sequence_suite {
namespace {

using List = Kelm::ListQImpl<Number>;

template <class Implementation>
class IteratorSuite : public testing::Test {
 protected:
  static Kelm::Sequence<Number> make(std::initializer_list<int> aValues) {
    auto const sequence = counted<Number, Implementation>();
    for (int const value : aValues) sequence.push_back({value});
    return sequence;
  }
  static std::string outOfBounds() {
    return failureAt("sequence index out of bounds",
                     std::is_same_v<Implementation, List>
                         ? "sequence/list/ListQImplForPrimitives"
                         : "sequence/multi_index/MultiIndexImplForPrimitives");
  }
};
using Implementations = testing::Types<List, Repeating<Number>, Unique<Number>>;
TYPED_TEST_SUITE(IteratorSuite, Implementations);

TYPED_TEST(IteratorSuite, CopiesMoveAlone) {
  auto const sequence = this->make({1, 2});
  auto const first = sequence.begin();
  auto copy = first;
  copy.next();
  EXPECT_EQ(first.current().fValue, 1);
  EXPECT_EQ(copy.current().fValue, 2);
  EXPECT_FALSE(copy == first);
  copy = first;
  EXPECT_TRUE(copy == first);
  EXPECT_EQ(copy.get()->numRef(), 1);
}

TYPED_TEST(IteratorSuite, RefusesForeignAndNullPositions) {
  auto const sequence = this->make({1, 2});
  auto const other = this->make({1, 2}).begin();
  EXPECT_EQ(failureText([&] { sequence.erase(other); }), this->outOfBounds());
  EXPECT_EQ(failureText([&] { sequence.insert(other, {3}); }), this->outOfBounds());
  EXPECT_EQ(failureText([&] { sequence.erase(sequence.begin(), other); }), this->outOfBounds());
  Kelm::Iterator<Number> const null;
  std::string const nullReference =
      failureAt("Cannot access NULL ref. Use isValid() before calling methods", "iterator/Iterator");
  EXPECT_EQ(failureText([&] { sequence.erase(null); }), nullReference);
  EXPECT_EQ(failureText([&] { sequence.erase(null, sequence.end()); }), nullReference);
  EXPECT_EQ(failureText([&] { sequence.insert(null, {3}); }), nullReference);
  EXPECT_EQ(failureText([&] { null.getId(); }), nullReference);
  EXPECT_EQ(failureText([&] { null.next(); }), nullReference);
  EXPECT_FALSE(sequence.begin().get()->equal(nullptr));
  EXPECT_EQ(sequence.size(), 2);
}

TYPED_TEST(IteratorSuite, OutlivesTheHandlesOfItsSequence) {
  Kelm::Iterator<Number> position;
  {
    auto const sequence = this->make({1, 2});
    position = sequence.begin();
    EXPECT_EQ(sequence.get()->numRef(), 2);
    Kelm::Iterator<Number> const clone = position;
    EXPECT_EQ(sequence.get()->numRef(), 3);
  }
  position.next();
  EXPECT_EQ(position.current().fValue, 2);
}

TYPED_TEST(IteratorSuite, RaisesOnceItsElementIsGone) {
  auto const sequence = this->make({1, 2, 3});
  auto last = sequence.end();
  last.previous();
  sequence.clear();
  EXPECT_EQ(failureText([&] { last.current(); }), this->outOfBounds());
  EXPECT_EQ(failureText([&] { last.next(); }), this->outOfBounds());
  EXPECT_EQ(failureText([&] { last.previous(); }), this->outOfBounds());
  EXPECT_EQ(failureText([&] { sequence.erase(last); }), this->outOfBounds());
  EXPECT_EQ(failureText([&] { sequence.insert(last, {9}); }), this->outOfBounds());
}

TYPED_TEST(IteratorSuite, FollowsASplice) {
  auto const sequence = this->make({1, 2, 3});
  auto const first = sequence.begin();
  auto const end = sequence.end();
  auto third = end;
  third.previous();
  using Access = Kelm::Generic::RefAccess<Number>;
  ASSERT_TRUE(sequence.get()->splice({}, 0, 2, {Access::make({7}), Access::make({8}), Access::make({9})}));
  EXPECT_EQ(failureText([&] { first.current(); }), this->outOfBounds());
  EXPECT_EQ(third.current().fValue, 3);
  ASSERT_TRUE(sequence.get()->splice({}, 0, 4, {}));
  EXPECT_EQ(failureText([&] { third.current(); }), this->outOfBounds());
  EXPECT_EQ(sequence.insert(end, {5}).current().fValue, 5);
  EXPECT_EQ(sequence.size(), 1);
}

TYPED_TEST(IteratorSuite, HasOneIdForEachMutability) {
  auto const sequence = this->make({1});
  auto const position = sequence.begin();
  Kelm::ImmutableIterator<Number> const immutable(position.get(), position.getDeviant());
  EXPECT_EQ(position.getId(), position.getId());
  EXPECT_NE(position.getId(), immutable.getId());
  EXPECT_EQ(Kelm::DeviantRegistry::getVariantInfo(position.getId()).first,
            Kelm::queryInterface<Kelm::ReferenceCountingIntf>(position.get()));
}

TEST(Iterator, OfMultiIndexFollowsItsElementThroughChanges) {
  auto const sequence = counted<Number, Repeating<Number>>();
  for (int i = 0; i < 50; ++i) sequence.push_back({i});
  auto const position = sequence.begin();
  for (int i = 0; i < 20; ++i) position.next();
  for (int i = 0; i < 30; ++i) sequence.push_front({100 + i});
  EXPECT_EQ(position.current().fValue, 20);
  for (int i = 0; i < 45; ++i) sequence.pop_front();
  sequence.erase(sequence.end().get() == nullptr ? 0 : sequence.size() - 1);
  position.previous();
  EXPECT_EQ(position.current().fValue, 19);
  sequence.insert(position, {7});
  EXPECT_EQ(sequence.removeAll({19}), 1);
  EXPECT_NE(failureText([&] { position.current(); }), "");
}

TEST(Iterator, OfListKeepsItsMeaningAsAnArgumentWhenTheListDetaches) {
  List list;
  Kelm::Sequence<Number> const sequence(&list, {});
  for (int const value : {1, 2, 3}) sequence.push_back({value});
  auto const second = sequence.begin();
  second.next();
  List const copy(list);
  EXPECT_EQ(sequence.insert(second, {9}).current().fValue, 9);
  EXPECT_EQ(sequence.at(1).fValue, 9);
  EXPECT_EQ(copy.generic_size({}), 3);
  EXPECT_EQ(second.current().fValue, 2) << "moved along with its element";
}

TEST(Iterator, OfDifferentKindsAreNeverEqual) {
  auto const list = counted<Number, List>().begin();
  auto const repeating = counted<Number, Repeating<Number>>().begin();
  auto const unique = counted<Number, Unique<Number>>().begin();
  EXPECT_FALSE(list == repeating);
  EXPECT_FALSE(repeating == list);
  EXPECT_FALSE(repeating == unique);
}

}  // namespace
}  // namespace sequence_suite
