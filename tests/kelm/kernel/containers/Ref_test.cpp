#include "kelm/kernel/containers/Ref.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "kelm/kernel/containers/values.h"

namespace sequence_suite {
namespace {

using Kelm::Generic::Ref;
using Kelm::Generic::RefAccess;

TEST(Ref, CopiesShareOneHolderUntilTheLastGoes) {
  auto ref = std::make_unique<Ref>(RefAccess<Fragile>::make(Fragile(7)));
  EXPECT_EQ(Fragile::sAlive, 1);
  EXPECT_EQ(ref->fReserved, 0u);
  {
    Ref const copy(*ref);
    EXPECT_EQ(copy.fHolder, ref->fHolder);
    EXPECT_EQ(static_cast<Kelm::Generic::ValueHolder<Fragile>*>(copy.fHolder)->fCount, 2u);
    ref.reset();
    EXPECT_EQ(RefAccess<Fragile>::get(copy).fValue, 7);
  }
  EXPECT_EQ(Fragile::sAlive, 0);
}

TEST(Ref, FailedCopyLeavesNoHolder) {
  Fragile const value(7);
  Fragile::sFailAt = 1;
  EXPECT_THROW(RefAccess<Fragile>::make(value), std::runtime_error);
  EXPECT_EQ(Fragile::sAlive, 1);
}

TEST(Ref, ComparesValues) {
  auto const equal = [](Ref const& aLeft, Ref const& aRight) {
    return aLeft.fEquals(aLeft.fHolder, aRight.fHolder);
  };
  EXPECT_TRUE(equal(RefAccess<Number>::make({3}), RefAccess<Number>::make({3})));
  EXPECT_FALSE(equal(RefAccess<Number>::make({3}), RefAccess<Number>::make({4})));
  EXPECT_TRUE(equal(RefAccess<Text>::make(Text(u"a")), RefAccess<Text>::make(Text(u"a"))));
  EXPECT_FALSE(equal(RefAccess<Text>::make(Text(u"a")), RefAccess<Text>::make(Text(u"ab"))));
}

TEST(Ref, ObjectTravelsAsItselfWithItsDeviant) {
  Thing thing;
  Kelm::Variant const variant{};
  Kelm::Deviant const deviant(&variant);
  {
    Ref const ref = RefAccess<Kelm::ImmutableObject>::make(Kelm::ImmutableObject(&thing, deviant));
    EXPECT_EQ(ref.fHolder, static_cast<Kelm::NSInterface::ObjectIntf*>(&thing));
    EXPECT_EQ(thing.fCount, 1);
    Kelm::Object const again = RefAccess<Kelm::Object>::get(ref);
    EXPECT_EQ(again.get(), &thing);
    EXPECT_EQ(again.getDeviant(), deviant);
    EXPECT_EQ(thing.fCount, 2);
  }
  EXPECT_EQ(thing.fCount, 0);
  Ref const null = RefAccess<Kelm::Object>::make(Kelm::Object(nullptr, deviant));
  EXPECT_TRUE(RefAccess<Kelm::Object>::get(Ref(null)).isNull());
}

TEST(Ref, MayEndOnAnotherThread) {
  for (int round = 0; round < 3; ++round) {
    std::vector<Ref> refs;
    for (int i = 0; i < 300; ++i) refs.push_back(RefAccess<Number>::make({i}));
    std::thread([&refs] {
      refs.clear();
      for (int i = 0; i < 300; ++i) refs.push_back(RefAccess<Number>::make({i}));
    }).join();
    for (int i = 0; i < 300; ++i) EXPECT_EQ(RefAccess<Number>::get(refs[i]).fValue, i);
  }
}

}  // namespace
}  // namespace sequence_suite
