#include "kelm/ElementList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <vector>

#include "platform/kelm/support/objects.h"

namespace {

using Kelm::ElementList;
using Element = ElementList::Element;
using Kinds = testing::Types<Kelm::PartList, Kelm::ReferenceList>;

Kelm::Blocks::Owner const sBlocks = Kelm::Blocks::make();

/// What was taken out of a list, and where it stood.
struct Erased {
  std::uint32_t fPosition;
  Element* fElement;
  Element* fPrevious;
};

/// A list beside the plain vector that tells what it should hold.
template <class List>
class Pair {
 public:
  ~Pair() { ElementList::destroy(fList); }

  void append() {
    List::append(fList, *sBlocks, make());
    fModel.push_back(&fElements.back());
  }
  void insert(std::uint32_t aPosition) {
    List::insert(fList, *sBlocks, aPosition, make());
    fModel.insert(fModel.begin() + aPosition, &fElements.back());
  }
  void erase(std::uint32_t aPosition) {
    EXPECT_TRUE(fList->erase(fModel[aPosition]));
    EXPECT_FALSE(fList->contains(fModel[aPosition]));
    fModel.erase(fModel.begin() + aPosition);
  }
  Erased take(std::uint32_t aPosition) {
    Element* const element = fModel[aPosition];
    Element* const previous = fList->before(element);
    EXPECT_EQ(previous, aPosition == 0 ? nullptr : fModel[aPosition - 1]);
    erase(aPosition);
    return {aPosition, element, previous};
  }
  void restore(Erased const& aErased) {
    fList->restore(aErased.fPrevious, aErased.fElement);
    fModel.insert(fModel.begin() + aErased.fPosition, aErased.fElement);
  }
  void move(std::uint32_t aFrom, std::uint32_t aTo) {
    std::vector<int> from{static_cast<int>(aFrom)};
    std::vector<int> to{static_cast<int>(aTo)};
    for (int at = from[0], end = to[0], step = aFrom < aTo ? 1 : -1; at != end; at += step) {
      from.push_back(at + step);
      to.push_back(at);
    }
    fList->rearrange(from, to);
    Element* const element = fModel[aFrom];
    fModel.erase(fModel.begin() + aFrom);
    fModel.insert(fModel.begin() + aTo, element);
  }
  void shuffle(std::mt19937& aRandom) {
    std::ranges::shuffle(fModel, aRandom);
    fList->reorder(fModel);
  }
  void clear() {
    fList->clear();
    fModel.clear();
  }
  void checkPosition(std::uint32_t aPosition) {
    EXPECT_EQ(fList->at(aPosition), fModel[aPosition]);
    EXPECT_EQ(fList->positionOf(fModel[aPosition]), aPosition);
  }
  void checkEntries() const {
    std::vector<Element*> entries(fList->begin(), fList->end());
    std::erase(entries, nullptr);
    EXPECT_EQ(entries, fModel);
    EXPECT_EQ(ElementList::size(fList), fModel.size());
  }
  void checkDense() {
    auto const elements = fList->dense();
    EXPECT_TRUE(std::ranges::equal(elements, fModel));
    EXPECT_EQ(elements.size(), static_cast<std::size_t>(fList->end() - fList->begin()));
  }
  std::uint32_t size() const { return static_cast<std::uint32_t>(fModel.size()); }
  List* list() const { return fList; }

 private:
  Element* make() { return &fElements.emplace_back(); }

  List* fList = nullptr;
  std::vector<Element*> fModel;
  std::deque<TestElement> fElements;
};

template <class List>
class Lists : public testing::Test {};
TYPED_TEST_SUITE(Lists, Kinds);

struct Mix {
  std::uint32_t fSize;
  int fRounds;
};

TYPED_TEST(Lists, DoWhatAVectorDoes) {
  std::mt19937 random(4711);
  auto const below = [&](std::uint32_t aLimit) { return static_cast<std::uint32_t>(random() % aLimit); };
  for (Mix const mix : {Mix{2, 500}, Mix{20, 2000}, Mix{60, 4000}, Mix{700, 6000}}) {
    Pair<TypeParam> pair;
    pair.append();
    for (int round = 0; round < mix.fRounds; ++round) {
      std::uint32_t const size = pair.size();
      if (size == 0 || below(2 * mix.fSize) >= size) {
        below(3) == 0 ? pair.insert(below(size + 1)) : pair.append();
      } else {
        pair.erase(below(4) == 0 ? (below(2) == 0 ? 0 : size - 1) : below(size));
      }
      if (pair.size() == 0) continue;
      std::uint32_t const what = below(40);
      if (what < 3) pair.checkPosition(below(pair.size()));
      if (what == 3) pair.move(below(pair.size()), below(pair.size()));
      if (what == 4) pair.checkDense();
      if (what == 5 && below(20) == 0) pair.shuffle(random);
      if (what == 6 && below(20) == 0) pair.clear();
      if (what < 20) pair.checkEntries();
    }
    pair.checkEntries();
  }
}

// Erased in any order, near and far from each other, and put back in the opposite order.
TYPED_TEST(Lists, TakeBackWhatWasErased) {
  std::mt19937 random(4711);
  for (std::uint32_t const size : {1U, 7U, 40U, 2'000U}) {
    for (int const share : {0, 50, 100}) {
      Pair<TypeParam> pair;
      for (std::uint32_t i = 0; i < size; ++i) pair.append();
      std::vector<Erased> erased;
      while (pair.size() > size / 4) {
        bool const isFirst = static_cast<int>(random() % 100) < share;
        erased.push_back(
            pair.take(isFirst ? pair.size() / 8 : static_cast<std::uint32_t>(random()) % pair.size()));
      }
      for (; !erased.empty(); erased.pop_back()) pair.restore(erased.back());
      pair.checkEntries();
      pair.checkPosition(size / 2);
    }
  }
}

TYPED_TEST(Lists, CanBeEmptiedFromBothEndsAndFilledAgain) {
  Pair<TypeParam> pair;
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 100; ++i) pair.append();
    while (pair.size() > 50) pair.erase(0);
    pair.checkPosition(20);
    while (pair.size() > 0) pair.erase(pair.size() - 1);
    pair.checkEntries();
  }
}

TYPED_TEST(Lists, CloseHolesThatATrimmedFrontLeavesBehind) {
  Pair<TypeParam> pair;
  for (int i = 0; i < 31; ++i) pair.append();  // as many as fit
  pair.erase(20);
  pair.erase(3);
  for (int i = 0; i < 9; ++i) pair.erase(0);
  pair.append();
  pair.checkPosition(pair.size() - 1);
  pair.checkDense();
}

TYPED_TEST(Lists, DoNotFindWhatTheyDoNotHold) {
  Pair<TypeParam> pair;
  for (int i = 0; i < 100; ++i) pair.append();
  for (std::int32_t const hint : {0, 50, 99, 100, -1, INT32_MAX, INT32_MIN}) {
    TestElement stranger;
    Kelm::ElementState::hint(stranger) = hint;
    EXPECT_EQ(pair.list()->find(&stranger), ElementList::kNotFound);
    EXPECT_EQ(pair.list()->positionOf(&stranger), ElementList::kNotFound);
    EXPECT_FALSE(pair.list()->erase(&stranger));
  }
  EXPECT_EQ(ElementList::size(nullptr), 0u);
}

TYPED_TEST(Lists, TheStampTellsOfEveryChange) {
  Pair<TypeParam> pair;
  for (int i = 0; i < 50; ++i) pair.append();
  std::uint32_t stamp = pair.list()->stamp();
  auto const changed = [&] { return std::exchange(stamp, pair.list()->stamp()) != pair.list()->stamp(); };
  pair.checkPosition(20);
  pair.checkEntries();
  EXPECT_FALSE(changed());
  pair.insert(20);
  EXPECT_TRUE(changed());
  pair.erase(20);
  EXPECT_TRUE(changed());
  pair.checkPosition(30);
  EXPECT_TRUE(changed()) << "closing a hole moves entries";
  pair.move(3, 4);
  EXPECT_TRUE(changed());
}

TEST(ElementList, MayHoldAnElementTwiceWhenItDoesNotOwnIt) {
  std::deque<TestElement> elements(100);
  Kelm::ReferenceList* list = nullptr;
  for (TestElement& element : elements) Kelm::ReferenceList::append(list, *sBlocks, &element);
  EXPECT_EQ(list->positionOf(&elements[40]), 40u);
  Kelm::ReferenceList::append(list, *sBlocks, &elements[40]);
  EXPECT_TRUE(list->erase(&elements[40]));
  EXPECT_EQ(list->positionOf(&elements[40]), 99u);
  EXPECT_TRUE(list->erase(&elements[40]));
  EXPECT_FALSE(list->contains(&elements[40]));
  ElementList::destroy(list);
}

TYPED_TEST(Lists, CanBeGivenRoomFirst) {
  TypeParam* list = nullptr;
  TestElement element;
  for (int i = 0; i < 100; ++i) {
    TypeParam::reserve(list, *sBlocks, 1);
    ElementList const* const before = list;
    TypeParam::insert(list, *sBlocks, 0, &element);
    EXPECT_EQ(list, before) << "a list with room stays where it is";
  }
  ElementList::destroy(list);
}

/// Steps for each erase by element when `aCount` elements, met by `aOrder`, go one after the other.
template <class List, class Order>
double stepsForEachErase(std::uint32_t aCount, Order aOrder) {
  std::vector<TestElement> elements(aCount);
  List* list = nullptr;
  for (TestElement& element : elements) List::append(list, *sBlocks, &element);
  std::vector<Element*> order;
  for (TestElement& element : elements) order.push_back(&element);
  aOrder(order);
  order.resize(aCount / 2);
  std::uint32_t const before = list->steps();
  for (Element* const element : order) EXPECT_TRUE(list->erase(element));
  double const steps = static_cast<double>(list->steps() - before);
  ElementList::destroy(list);
  return steps / (aCount / 2);
}

TYPED_TEST(Lists, ErasingByElementCostsTheSameInALongList) {
  auto const middle = [](std::vector<Element*>& aElements) {
    std::ranges::rotate(aElements, aElements.begin() + aElements.size() / 4);
  };
  auto const mixed = [](std::vector<Element*>& aElements) {
    std::ranges::shuffle(aElements, std::mt19937(7));
  };
  auto const backwards = [](std::vector<Element*>& aElements) { std::ranges::reverse(aElements); };
  EXPECT_LE(stepsForEachErase<TypeParam>(100'000, middle), 2 * stepsForEachErase<TypeParam>(1'000, middle));
  EXPECT_LE(stepsForEachErase<TypeParam>(100'000, mixed), 2 * stepsForEachErase<TypeParam>(1'000, mixed));
  EXPECT_LE(stepsForEachErase<TypeParam>(100'000, backwards), 3);
}

TYPED_TEST(Lists, PositionsBetweenErasesKeepLookupsShort) {
  constexpr int kRounds = 1000;
  Pair<TypeParam> pair;
  for (int i = 0; i < 2000; ++i) pair.append();
  pair.list()->contains(pair.list()->at(0));
  int renewals = 0;
  for (int round = 0; round < kRounds; ++round) {
    Element* const element = pair.list()->at(pair.size() / 2);
    std::uint32_t const before = pair.list()->steps();
    EXPECT_TRUE(pair.list()->contains(element));
    if (pair.list()->steps() - before > 300) ++renewals;
    pair.erase(pair.size() / 2);
  }
  EXPECT_LE(renewals, kRounds / 200);
}

}  // namespace
