#include "kelm/ModelCache.h"

#include <gtest/gtest.h>

#include <map>

#include "platform/kelm/support/failure.h"
#include "platform/kelm/support/objects.h"

namespace {

using Kelm::Model;
using Kelm::ModelCache;

/// Opens untitled models under the names that the cache proposes and closes all at the end.
class Naming : public testing::Test {
 protected:
  ~Naming() override {
    while (!fOpen.empty()) close(fOpen.begin()->first);
    EXPECT_EQ(cache().size(), fBefore);
  }
  static ModelCache& cache() { return ModelCache::instance(); }

  std::u16string open(std::u16string const& aBase) {
    std::u16string const uri = cache().getNextAvailableModelUri(aBase);
    Model const model = Kelm::NSInterface::FactoryIntf::createNewModel();
    model.setModelUri(uri);
    cache().bindModel(uri, model);
    fOpen[uri] = model;
    return uri;
  }
  void close(std::u16string const& aUri) {
    fOpen.at(aUri).object().close();
    fOpen.erase(aUri);
  }

  std::size_t fBefore = cache().size();
  std::map<std::u16string, Model> fOpen;
};

TEST_F(Naming, TakesTheBaseAndThenTheFirstFreeNumber) {
  EXPECT_EQ(ModelCache::UNTITLED, u"untitled");
  EXPECT_EQ(open(u"new"), u"new");
  EXPECT_EQ(cache().getNextAvailableModelUri(u"new"), u"new1");
  for (char16_t const* const uri : {u"new1", u"new2", u"new3"}) EXPECT_EQ(open(u"new"), uri);
  close(u"new2");
  EXPECT_EQ(open(u"new"), u"new2");
  EXPECT_EQ(open(u"new"), u"new4");
  close(u"new");
  EXPECT_EQ(open(u"new"), u"new");
}

TEST_F(Naming, NumbersOfOtherBasesAreFreedToo) {
  open(u"a");
  for (int i = 1; i <= 12; ++i) open(u"a");
  EXPECT_EQ(open(u"a1"), u"a13") << "a1 to a12 are bound, and so is a1 with 1 and 2 behind it"
                                 << " but not with 3";
  close(u"a12");
  EXPECT_EQ(cache().getNextAvailableModelUri(u"a"), u"a12");
  EXPECT_EQ(cache().getNextAvailableModelUri(u"a1"), u"a12");
}

TEST_F(Naming, ManyModelsAreNamedInLinearTime) {
  for (int i = 0; i < 20'000; ++i) open(u"many");
  EXPECT_EQ(cache().getNextAvailableModelUri(u"many"), u"many20000");
  for (int i = 0; i < 20'000; ++i) {
    close(u"many19999");
    ASSERT_EQ(open(u"many"), u"many19999");
  }
}

TEST_F(Naming, AUriNamesOneModel) {
  std::u16string const uri = open(u"taken");
  OpenModel const other;
  EXPECT_TRUE(tells(failureOf([&] { cache().bindModel(uri, other.fModel); }),
                    "A model with the uri 'taken' exists", "kelm/Kelm/ModelCache"));
  EXPECT_EQ(cache().findModel(uri).get(), fOpen.at(uri).get());
  cache().bindModel(uri, fOpen.at(uri));
  EXPECT_EQ(failureOf([&] { cache().unbindModel(other.object()); }), "");
  EXPECT_TRUE(cache().findModel(u"nobody").isNull());
}

TEST_F(Naming, ABoundModelMovesWithItsUri) {
  open(u"old");
  open(u"other");
  Model const model = fOpen.at(u"old");
  EXPECT_NE(failureOf([&] { model.setModelUri(std::u16string(u"other")); }), "");
  EXPECT_EQ(model.getModelUri().text(), u"old");
  model.setModelUri(std::u16string(u"new"));
  EXPECT_EQ(cache().findModel(u"new").get(), model.get());
  EXPECT_TRUE(cache().findModel(u"old").isNull());
  model.object().close();
  EXPECT_TRUE(cache().findModel(u"new").isNull());
  fOpen.erase(u"old");
}

TEST(ModelCache, HoldsACount) {
  Model model = Kelm::NSInterface::FactoryIntf::createNewModel();
  Kelm::ModelObject& object = model.object();
  ModelCache::instance().bindModel(u"counted", model);
  EXPECT_EQ(object.numRef(), 2);
  model = Model();
  EXPECT_TRUE(object.isOpen());
  ModelCache::instance().unbindModel(object);
  EXPECT_TRUE(ModelCache::instance().findModel(u"counted").isNull());
}

}  // namespace
