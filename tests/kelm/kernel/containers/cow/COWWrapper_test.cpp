#include "kelm/kernel/containers/cow/COWWrapper.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "kelm/kernel/containers/values.h"

namespace {

using sequence_suite::Fragile;
using Values = std::vector<Fragile>;
using Wrapper = Performance::COWWrapperContainerSequential<Values>;
using Data = Performance::COWWrapperTypedData<Values>;
using Token = Performance::COWDataAccessToken<Values>;

TEST(COWWrapper, DetachingLeavesTheSharedEmptyDataToTheOthers) {
  int const before = Data::getSharedNull()->fCount;
  Wrapper first;
  Wrapper second;
  EXPECT_EQ(second.shareCount(), before + 2);
  first.detach_helper();
  EXPECT_FALSE(first.isShared());
  EXPECT_EQ(second.shareCount(), before + 1);
  EXPECT_EQ(&second.read(), &Data::getSharedNull()->fValue);
  Values const* const own = &first.read();
  first.detach_helper();
  EXPECT_EQ(&first.read(), own);
}

TEST(COWWrapper, FailedDetachKeepsThePayload) {
  Wrapper first;
  first.detachWithRoom(3).assign(3, Fragile(1));
  Wrapper const second(first);
  int const alive = Fragile::sAlive;
  for (int failAt = 1; failAt <= 3; ++failAt) {
    Fragile::sFailAt = failAt;
    EXPECT_THROW(first.detach_helper(), std::runtime_error);
    Fragile::sFailAt = failAt;
    EXPECT_THROW(first.detachWithRoom(1), std::runtime_error);
    EXPECT_EQ(first.shareCount(), 2);
    EXPECT_EQ(&first.read(), &second.read());
    EXPECT_EQ(Fragile::sAlive, alive);
  }
}

TEST(COWWrapper, TokenRecordsAccessToOneWrapperAtATime) {
  Wrapper first;
  Wrapper second;
  {
    Token token;
    Values& values = first.publicDataRef(token);
    EXPECT_EQ(&values, &first.read());
    EXPECT_FALSE(first.isShared());
    first.publicDataRef(token);
    EXPECT_EQ(first.accessCount(), 1u);
    second.publicDataRef(token);
    EXPECT_EQ(first.accessCount(), 0u);
    EXPECT_EQ(second.accessCount(), 1u);
  }
  EXPECT_EQ(second.accessCount(), 0u);
}

TEST(COWWrapper, ThreadsShareAPayloadAndReleaseIt) {
  using Numbers = std::vector<int>;
  Performance::COWWrapperContainerSequential<Numbers> original;
  original.detachWithRoom(2).assign({1, 2});
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&original] {
      for (int round = 0; round < 2000; ++round) {
        auto copy = original;
        if (round % 2 == 0) copy.detachWithRoom(1).push_back(round);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(original.shareCount(), 1);
  EXPECT_EQ(original.read(), (Numbers{1, 2}));
}

}  // namespace
