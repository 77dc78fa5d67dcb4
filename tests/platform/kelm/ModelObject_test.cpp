#include "kelm/ModelObject.h"

#include <gtest/gtest.h>

#include "kelm/ModelCache.h"
#include "platform/kelm/support/failure.h"
#include "platform/kelm/support/objects.h"

namespace {

using Kelm::Model;
using Kelm::ModelObject;

constexpr char kGone[] = "The object does not exist in this variant of the model";

/// Drops elements as the metamodel does: marks them and gives their counts back.
class Dropping : public testing::Test {
 protected:
  Dropping() {
    Kelm::dropElements = [](ModelObject& aModel) {
      if (aModel.roots() == nullptr) return;
      for (auto* const element : *aModel.roots()) {
        if (element == nullptr) continue;
        Kelm::ElementState::model(*element) = nullptr;
        element->decRef();
      }
    };
    TestElement::sDeleted = 0;
  }
  ~Dropping() override { Kelm::dropElements = nullptr; }

  static TestElement* newRoot(ModelObject& aModel) {
    auto* const element = new TestElement;
    element->incRef();
    aModel.addRoot(element);
    return element;
  }
};

TEST_F(Dropping, AModelGoesWithItsLastHandleAndTakesItsElementsAlong) {
  Model model = Kelm::NSInterface::FactoryIntf::createNewModel();
  EXPECT_EQ(model.get()->numRef(), 1);
  EXPECT_TRUE(model.isvalid());
  EXPECT_TRUE(model.getModelUri().empty());
  newRoot(model.object());
  Kelm::Object const kept(newRoot(model.object()), model.getDeviant());
  EXPECT_TRUE(kept.isvalid());
  EXPECT_EQ(model.object().roots()->size(), 2u);

  model = Model();
  EXPECT_EQ(TestElement::sDeleted, 1);
  EXPECT_FALSE(kept.isvalid());
  EXPECT_EQ(kept.getDeviant().variant()->fModel, nullptr);
}

TEST_F(Dropping, AClosedModelAnswersNoMore) {
  Model const model = Kelm::NSInterface::FactoryIntf::createNewModel();
  Kelm::ModelCache::instance().bindModel(u"closing", model);
  newRoot(model.object());
  Model const readOnly(model.get(), model.object().readOnlyDeviant());
  std::uint64_t const revision = model.object().revision();

  EXPECT_NE(failureOf([&] { Kelm::Object(readOnly.get(), readOnly.getDeviant()).destroy(); }), "");
  EXPECT_TRUE(model.object().isOpen());
  Kelm::Object(model.get(), model.getDeviant()).destroy();
  EXPECT_EQ(TestElement::sDeleted, 1);
  EXPECT_EQ(model.object().roots(), nullptr);
  EXPECT_NE(model.object().revision(), revision);
  EXPECT_TRUE(Kelm::ModelCache::instance().findModel(u"closing").isNull());
  for (Model const& view : {model, readOnly}) {
    EXPECT_FALSE(view.isvalid());
    EXPECT_TRUE(tells(failureOf([&] { view.getModelUri(); }), kGone, "kelm/Kelm/Model"));
  }
  EXPECT_NE(failureOf([&] { model.setModelUri(std::u16string(u"x")); }), "");
  model.object().close();
}

TEST_F(Dropping, VariantsShareTheModel) {
  OpenModel const model;
  OpenModel const other;
  model.fModel.setModelUri(std::u16string(u"shared"));
  Model const readOnly(model.fModel.get(), model.object().readOnlyDeviant());
  EXPECT_EQ(model.object().readOnlyDeviant(), readOnly.getDeviant());
  EXPECT_EQ(readOnly.getModelUri().text(), u"shared");
  EXPECT_NE(failureOf([&] { readOnly.setModelUri(std::u16string(u"x")); }), "");
  EXPECT_TRUE(tells(failureOf([&] { Model(model.fModel.get(), other.base()).getModelUri(); }), kGone,
                    "kelm/Kelm/Model"));
  EXPECT_STREQ(readOnly.get()->getVeskName(true), "Kelm.ImmutableModel");
  EXPECT_STREQ(readOnly.get()->getVeskName(false), "Kelm.Model");
  EXPECT_TRUE(tells(failureOf([] { Model().object(); }),
                    "Cannot access NULL ref. Use isValid() before calling methods", "kelm/Kelm/Model_h"));
}

TEST_F(Dropping, ARootThatLeavesKeepsItsCount) {
  OpenModel const model;
  TestElement* const root = newRoot(model.object());
  model.object().removeRoot(root);
  EXPECT_EQ(model.object().roots()->size(), 0u);
  EXPECT_EQ(root->numRef(), 1);
  root->decRef();
  EXPECT_EQ(TestElement::sDeleted, 1);
}

TEST_F(Dropping, TheCompanionGoesWithTheModel) {
  static int sGone = 0;
  struct Companion : Kelm::ModelCompanion {
    ~Companion() override { ++sGone; }
  };
  {
    Model const model = Kelm::NSInterface::FactoryIntf::createNewModel();
    model.object().setCompanion(new Companion);
    model.object().setCompanion(new Companion);
    EXPECT_EQ(sGone, 1);
  }
  EXPECT_EQ(sGone, 2);
}

TEST(Initialize, RunsEachCallbackOnce) {
  static int sEarly = 0;
  static int sLate = 0;
  Kelm::addStartupCallback([] {
    ++sEarly;
    Kelm::addStartupCallback([] { ++sLate; });
  });
  EXPECT_EQ(sEarly, 0);
  Kelm::initialize();
  Kelm::initialize();
  EXPECT_EQ(sEarly, 1);
  EXPECT_EQ(sLate, 1);
  Kelm::addStartupCallback([] { ++sLate; });
  EXPECT_EQ(sLate, 2);
}

}  // namespace
