#include "kelm/kernel/containers/sequence_suite.h"

#include <algorithm>
#include <random>

namespace sequence_suite {

std::string wordsOf(std::string const& aText) {
  std::string const prefix = "Assertion failed: ";
  if (!aText.starts_with(prefix)) return aText;
  return aText.substr(prefix.size(), aText.rfind(" at ") - prefix.size());
}

namespace {

using Numbers = std::vector<int>;

constexpr char kNotPositive[] = "sequence index must be positive";
constexpr char kOutOfBounds[] = "sequence index out of bounds";
constexpr char kEmpty[] = "sequence is empty";

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SequenceSuite);

TEST_P(SequenceSuite, RefusesIndicesOutsideTheSequence) {
  auto const subject = make({4, 5});
  auto const failuresAt = [&](int aIndex) {
    return std::vector<std::string>{
        failureOf([&] { subject->at(aIndex); }), failureOf([&] { subject->erase(aIndex); }),
        failureOf([&] { subject->replace(aIndex, 6); }), failureOf([&] { subject->insert(aIndex, 7); })};
  };
  std::vector<std::string> const negative(4, kNotPositive);
  std::vector<std::string> const beyond(4, kOutOfBounds);
  EXPECT_EQ(failuresAt(-1), negative);
  EXPECT_EQ(failuresAt(3), beyond);
  EXPECT_EQ(failureOf([&] { subject->at(2); }), kOutOfBounds);
  EXPECT_EQ(subject->contents(), (Numbers{4, 5}));
  subject->insert(2, 7);
  EXPECT_EQ(subject->contents(), (Numbers{4, 5, 7}));
}

TEST_P(SequenceSuite, EmptySequenceHasNoEnds) {
  auto const subject = make();
  EXPECT_TRUE(subject->empty());
  EXPECT_EQ(subject->size(), 0);
  EXPECT_EQ(failureOf([&] { subject->front(); }), kEmpty);
  EXPECT_EQ(failureOf([&] { subject->back(); }), kEmpty);
  EXPECT_EQ(failureOf([&] { subject->pop_front(); }), kEmpty);
  EXPECT_EQ(failureOf([&] { subject->pop_back(); }), kEmpty);
  EXPECT_EQ(failureOf([&] { subject->at(0); }), kOutOfBounds);
  EXPECT_EQ(failureOf([&] { subject->eraseAt(0); }), kOutOfBounds);
  EXPECT_EQ(subject->contents(), Numbers{});
}

TEST_P(SequenceSuite, KeepsInsertionOrder) {
  auto const subject = make({3, 1, 2});
  subject->push_front(7);
  subject->insert(2, 6);
  EXPECT_EQ(subject->contents(), (Numbers{7, 3, 6, 1, 2}));
  EXPECT_EQ(subject->front(), 7);
  EXPECT_EQ(subject->back(), 2);
  subject->replace(0, 0);
  EXPECT_EQ(subject->contents(), (Numbers{0, 3, 6, 1, 2}));
  subject->clear();
  EXPECT_TRUE(subject->empty());
}

TEST_P(SequenceSuite, RefusesDuplicatesOnlyWhenUnique) {
  auto const subject = make({1, 2, 1});
  EXPECT_EQ(subject->contents(), isUnique() ? (Numbers{1, 2}) : (Numbers{1, 2, 1}));
  EXPECT_EQ(subject->insertAt(1, 1), isUnique() ? 0 : 1);
  subject->replace(1, 1);
  subject->replace(0, 1);
  EXPECT_EQ(subject->contents(), isUnique() ? (Numbers{1, 2}) : (Numbers{1, 1, 2, 1}));
}

TEST_P(SequenceSuite, RemovesByValue) {
  auto const subject = make({1, 2, 1, 1});
  EXPECT_EQ(subject->removeAll(5), 0);
  EXPECT_EQ(subject->removeAll(1), isUnique() ? 1 : 3);
  EXPECT_FALSE(subject->contains(1));
  EXPECT_TRUE(subject->contains(2));
  EXPECT_EQ(subject->contents(), Numbers{2});
}

TEST_P(SequenceSuite, EditsAtIterators) {
  auto const subject = make({1, 2, 3, 4, 5});
  EXPECT_EQ(subject->eraseRange(2, 2), 2);
  EXPECT_EQ(subject->eraseRange(1, 3), 1);
  EXPECT_EQ(subject->contents(), (Numbers{1, 4, 5}));
  EXPECT_EQ(subject->insertAt(3, 6), 3);
  EXPECT_EQ(subject->eraseAt(0), 0);
  EXPECT_EQ(subject->contents(), (Numbers{4, 5, 6}));
  EXPECT_EQ(failureOf([&] { subject->eraseRange(2, 1); }), kOutOfBounds);
  EXPECT_EQ(subject->contents(), (Numbers{4, 5, 6}));
}

TEST_P(SequenceSuite, ShowsTheSameValuesEveryWay) {
  auto const subject = make();
  Numbers expected;
  for (int size = 0; size < 70; ++size) {
    EXPECT_EQ(subject->contents(), expected);
    EXPECT_EQ(subject->contentsFromEnd(), expected);
    EXPECT_EQ(subject->contentsInBlocks(), expected);
    subject->push_back(size);
    expected.push_back(size);
  }
}

struct Step {
  int fOperation;
  int fFirst;
  int fSecond;
  int fValue;
};

/// Does the step and tells what came of it.
std::string outcome(Subject& aSubject, Step const& aStep) {
  auto const& [operation, first, second, value] = aStep;
  int answer = 0;
  std::string const failure = failureOf([&] {
    switch (operation) {
      case 0:
        return aSubject.push_front(value);
      case 1:
        return aSubject.pop_back();
      case 2:
        return aSubject.pop_front();
      case 3:
        return aSubject.insert(first - 1, value);
      case 4:
        return aSubject.erase(first - 1);
      case 5:
        return aSubject.replace(first - 1, value);
      case 6:
        answer = aSubject.removeAll(value);
        return;
      case 7:
        answer = aSubject.insertAt(std::min(first, aSubject.size()), value);
        return;
      case 8:
        answer = aSubject.eraseAt(std::min(first, aSubject.size()));
        return;
      case 9:
        answer =
            aSubject.eraseRange(std::min(first, aSubject.size()), std::clamp(second, 0, aSubject.size()));
        return;
      case 10:
        answer = aSubject.at(first - 1);
        return;
      case 11:
        answer = aSubject.front();
        return;
      case 12:
        answer = aSubject.back();
        return;
      case 13:
        answer = aSubject.contains(value);
        return;
      case 14:
        answer = aSubject.indexOf(value, first);
        return;
      case 15:
        return aSubject.clear();
      case 16:
        return aSubject.move(first - 1, second);
      default:
        return aSubject.push_back(value);
    }
  });
  return failure.empty() ? std::to_string(answer) : failure;
}

/// `aValues` different values; lists grow to about as many.
void compareWithModel(Subject& aSubject, bool aIsUnique, int aValues, unsigned aSeed) {
  std::mt19937 random(aSeed);
  auto const below = [&](int aLimit) { return std::uniform_int_distribution(0, aLimit - 1)(random); };
  ModelSubject model(aIsUnique);
  for (int i = 0; i < 500; ++i) {
    // The rare clear leaves room to grow; greater numbers append.
    int const first = below(aValues + 4);
    Step const step{below(8 * aValues) == 0 ? 15 : below(15) + (below(2) != 0 ? 16 : 0), first,
                    first - 1 + below(4), below(aValues)};
    if (below(3) == 0) aSubject.share();
    std::vector<int> const before = model.contents();
    std::uint64_t const stamp = aSubject.stamp();
    ASSERT_EQ(outcome(aSubject, step), outcome(model, step)) << "seed " << aSeed << ", step " << i;
    ASSERT_EQ(aSubject.contents(), model.contents()) << "seed " << aSeed << ", step " << i;
    ASSERT_EQ(aSubject.size(), model.size());
    if (model.contents() != before) {
      ASSERT_NE(aSubject.stamp(), stamp) << "seed " << aSeed << ", step " << i;
    }
  }
}

TEST_P(SequenceSuite, BehavesAsTheModelUnderRandomOperations) {
  // Lists of elements look theirs up in another way once they are long.
  for (int const values : {10, 60})
    for (unsigned seed = 1; seed <= 6; ++seed)
      ASSERT_NO_FATAL_FAILURE(compareWithModel(*make(), isUnique(), values, seed));
}

}  // namespace
}  // namespace sequence_suite
