#include "kelm/DeviantRegistry.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <set>
#include <vector>

#include "platform/kelm/support/failure.h"
#include "platform/kelm/support/objects.h"

namespace {

using Kelm::Deviant;
using Kelm::DeviantRegistry;

Deviant const kNone;

lum::HostWord& hostOf(void* aId) { return *lum::hostWordOf(aId); }

TEST(DeviantRegistry, AnIdIsOneForObjectDeviantAndMutability) {
  OpenModel const model;
  Deviant const readOnly = model.object().readOnlyDeviant();
  CountedObject one;
  CountedObject other;
  std::set<void*> ids;
  for (auto* const object : {&one, &other})
    for (Deviant const deviant : {model.base(), readOnly})
      for (bool const immutable : {false, true}) {
        void* const id = DeviantRegistry::getId(object, deviant, immutable);
        EXPECT_TRUE(ids.insert(id).second);
        EXPECT_TRUE(lum::isTaggedId(id));
        EXPECT_EQ(DeviantRegistry::getId(object, deviant, immutable), id);
        EXPECT_EQ(DeviantRegistry::isImmutable(id), immutable);
        EXPECT_EQ(DeviantRegistry::getVariantInfo(id).first, object);
        EXPECT_EQ(DeviantRegistry::getVariantInfo(id).second, deviant);
      }
  EXPECT_TRUE(one.fIsRegistered);
}

TEST(DeviantRegistry, NullReferencesHaveOnePermanentIdForDeviantAndMutability) {
  OpenModel const model;
  void* const id = DeviantRegistry::getId(nullptr, model.base(), true);
  EXPECT_NE(id, nullptr);
  EXPECT_EQ(DeviantRegistry::getId(nullptr, model.base(), true), id);
  EXPECT_NE(DeviantRegistry::getId(nullptr, model.base(), false), id);
  EXPECT_NE(DeviantRegistry::getId(nullptr, kNone, true), id);
  EXPECT_EQ(DeviantRegistry::getVariantInfo(id).first, nullptr);
  EXPECT_EQ(DeviantRegistry::getVariantInfo(id).second, model.base());

  EXPECT_EQ(DeviantRegistry::getVariantInfo(nullptr).first, nullptr);
  EXPECT_FALSE(DeviantRegistry::isImmutable(nullptr));
  // The registry of the host mixes its ids with addresses of other things.
  alignas(2) char marker[2] = {};
  EXPECT_EQ(DeviantRegistry::getVariantInfo(marker).first, nullptr);
  EXPECT_FALSE(DeviantRegistry::isImmutable(marker));
}

TEST(DeviantRegistry, TheLockHoldsForAllIdsOfAPair) {
  OpenModel const model;
  CountedObject object;
  object.incRef();
  Kelm::ImmutableObject const view(&object, model.base());
  Kelm::ImmutableObject const otherView(&object, kNone);

  DeviantRegistry::setIsImmutable(view, true);
  void* const late = DeviantRegistry::getId(&object, model.base(), false);
  void* const readOnly = DeviantRegistry::getId(&object, model.base(), true);
  EXPECT_TRUE(DeviantRegistry::isImmutable(late)) << "made after the lock";
  EXPECT_FALSE(DeviantRegistry::isImmutable(DeviantRegistry::getId(&object, kNone, false)));

  DeviantRegistry::setIsImmutable(view, false);
  EXPECT_FALSE(DeviantRegistry::isImmutable(late));
  EXPECT_TRUE(DeviantRegistry::isImmutable(readOnly)) << "a read-only view stays one";

  DeviantRegistry::setIsImmutable(otherView, true);
  EXPECT_FALSE(DeviantRegistry::isImmutable(late));
  EXPECT_EQ(failureOf([] { DeviantRegistry::setIsImmutable(Kelm::ImmutableObject(), true); }), "");
}

TEST(DeviantRegistry, ADyingObjectTakesItsIdsAlong) {
  std::size_t const before = DeviantRegistry::liveRecords();
  void* id = nullptr;
  {
    CountedObject object;
    id = DeviantRegistry::getId(&object, kNone, false);
    DeviantRegistry::getId(&object, kNone, true);
    EXPECT_EQ(DeviantRegistry::liveRecords(), before + 2);
    DeviantRegistry::retract(&object);
    EXPECT_FALSE(object.fIsRegistered);
    id = DeviantRegistry::getId(&object, kNone, false);
  }
  EXPECT_EQ(DeviantRegistry::liveRecords(), before);
  EXPECT_EQ(DeviantRegistry::getVariantInfo(id).first, nullptr);
  EXPECT_EQ(DeviantRegistry::getVariantInfo(id).second, kNone);
}

TEST(DeviantRegistry, AnIdWithAHostObjectIsNotGivenToAnotherObject) {
  int host = 0;
  std::vector<void*> stale;
  for (int i = 0; i < 10; ++i) {
    CountedObject object;
    stale.push_back(DeviantRegistry::getId(&object, kNone, false));
    hostOf(stale.back()).fHost = &host;
  }
  {
    std::vector<std::unique_ptr<CountedObject>> objects;
    for (int i = 0; i < 2000; ++i) {
      objects.push_back(std::make_unique<CountedObject>());
      void* const id = DeviantRegistry::getId(objects.back().get(), kNone, false);
      EXPECT_EQ(hostOf(id).fHost, nullptr);
    }
    for (void* const id : stale) EXPECT_EQ(DeviantRegistry::getVariantInfo(id).first, nullptr);
  }
  for (void* const id : stale) hostOf(id).fHost = nullptr;
}

/// Makes objects with two ids each and lets them go, `aKept` of them always bound after their death.
void live(int aRounds, std::size_t aKept) {
  int host = 0;
  std::vector<void*> bound;
  for (int round = 0; round < aRounds; ++round) {
    CountedObject object;
    hostOf(DeviantRegistry::getId(&object, kNone, false)).fHost = nullptr;
    bound.push_back(DeviantRegistry::getId(&object, kNone, true));
    hostOf(bound.back()).fHost = &host;
    if (bound.size() > aKept) {
      hostOf(bound.front()).fHost = nullptr;
      bound.erase(bound.begin());
    }
  }
  for (void* const id : bound) hostOf(id).fHost = nullptr;
}

TEST(DeviantRegistry, RecordsAreUsedAgainForEver) {
  live(2000, 300);
  std::size_t const records = DeviantRegistry::liveRecords();
  std::size_t const memory = mallinfo2().uordblks;
  live(100'000, 0);
  live(100'000, 300);
  EXPECT_EQ(DeviantRegistry::liveRecords(), records);
  EXPECT_LE(mallinfo2().uordblks, memory);
}

TEST(DeviantAssertions, OnlyAReadOnlyVariantForbidsChanges) {
  OpenModel const model;
  CountedObject object;
  EXPECT_EQ(failureOf([&] { model.base().internal_assertWritable(&object); }), "");
  EXPECT_EQ(failureOf([] { kNone.internal_assertWritable(nullptr); }), "");
  EXPECT_EQ(failureOf([] { Deviant::ofValue(0xFFFFFFFF).internal_assertWritable(nullptr); }), "");
  EXPECT_TRUE(tells(failureOf([&] { model.object().readOnlyDeviant().internal_assertWritable(nullptr); }),
                    "The object cannot be changed in a read-only variant of its model",
                    "kelm/Kelm/DeviantAssertions"));
}

}  // namespace
