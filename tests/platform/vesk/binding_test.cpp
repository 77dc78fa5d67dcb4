#include <gtest/gtest.h>

#include <optional>

#include "lum/host_word.h"
#include "support/TestClasses.h"
#include "vesk/VeskError.h"
#include "vesk/host/Instance.h"

namespace {

using namespace vesk::testing;
using vesk::VeskError;
using vesk::VeskInterfacePtr;
using vesk::VeskInterned;
using vesk::VeskValue;
using vesk::factory::basic::BindingRegistry;
using vesk::host::Instance;
using vesk::internal::intern;

struct IdRecord {
  lum::HostWord fWord;
};

/// Runs with ids that are records with a host word, and with plain addresses.
class BindingTest : public testing::TestWithParam<bool> {
 protected:
  static void SetUpTestSuite() {
    if (!vesk::host::findPackage("bind")) addClasses("bind", {{"A", nullptr}, {"B", nullptr}});
  }
  BindingTest() {
    TestClass::sReleased.clear();
    TestClass::sOnRelease = nullptr;
  }
  ~BindingTest() override {
    TestClass::sOnRelease = nullptr;
    EXPECT_EQ(BindingRegistry::size(), fBound);
    EXPECT_EQ(Instance::liveCount(), fLive);
    EXPECT_EQ(tarn::liveArrayCount(), fArrays);
    for (IdRecord const& record : fRecords) EXPECT_EQ(record.fWord.fHost, nullptr);
  }

  void* id(int index) {
    return GetParam() ? lum::tagId(&fRecords[index].fWord) : static_cast<void*>(&fRecords[index]);
  }

  IdRecord fRecords[3];
  tarnArray* fArray = nullptr;
  std::size_t fBound = BindingRegistry::size();
  std::size_t fLive = Instance::liveCount();
  std::size_t fArrays = tarn::liveArrayCount();
};

INSTANTIATE_TEST_SUITE_P(Ids, BindingTest, testing::Bool(),
                         [](auto const& info) { return info.param ? "Tagged" : "Plain"; });

TEST_P(BindingTest, AnIdHasOneInstanceUntilItsLastReferenceGoes) {
  bool created = false;
  VeskValue const first = BindingRegistry::announce(id(0), intern("bind.A"), created);
  EXPECT_TRUE(created);
  VeskValue const second = BindingRegistry::announce(id(0), intern("bind.B"), created);
  EXPECT_FALSE(created);
  EXPECT_EQ(first.array(), second.array());
  Instance* instance = BindingRegistry::find(id(0));
  EXPECT_EQ(&instance->classRecord(), &classNamed("bind.A"));
  EXPECT_EQ(instance->getNativeObject(intern("any name")), id(0));
  EXPECT_NE(BindingRegistry::announce(id(1), intern("bind.A"), created).array(), first.array());

  tarnDestroyArray(first.array());
  EXPECT_TRUE(TestClass::sReleased.empty());
  tarnDestroyArray(second.array());
  EXPECT_EQ(TestClass::sReleased, std::vector<void*>{id(0)});
  EXPECT_EQ(BindingRegistry::find(id(0)), nullptr);

  VeskValue const again = BindingRegistry::announce(id(0), intern("bind.B"), created);
  EXPECT_TRUE(created);
  EXPECT_EQ(&BindingRegistry::find(id(0))->classRecord(), &classNamed("bind.B"));
  tarnDestroyArray(again.array());
  tarnDestroyArray(BindingRegistry::find(id(1))->array());
}

TEST_P(BindingTest, ElementsOfArraysAreOwned) {
  tarnArray* own = BindingRegistry::announce(id(0), intern("bind.A")).array();
  tarnArray* list = tarnCreateObjectMatrix(1, 2);
  tarnSetObject(list, 1, *tarn::dataAs<void*>(own));
  {
    VeskInterfacePtr const element = omGetArrayElement(own, 0);
    VeskInterfacePtr const listed = veskiGetArrayElement(list, 1);
    tarnDestroyArray(own);
    EXPECT_EQ(Instance::fromArray(own), static_cast<vesk::VeskInterface*>(listed));
    EXPECT_EQ(element->getNativeObject(VeskInterned()), id(0));
    EXPECT_EQ(static_cast<vesk::VeskInterface*>(omGetArrayElement(list, 0)), nullptr);
    EXPECT_THROW(omGetArrayElement(list, 2), VeskError);
    tarnDestroyArray(list);
    EXPECT_TRUE(TestClass::sReleased.empty());
  }
  EXPECT_EQ(TestClass::sReleased.size(), 1u);
  tarnArray* text = tarnCreateString("text");
  EXPECT_THROW(omGetArrayElement(text, 0), VeskError);
  tarnDestroyArray(text);
}

TEST_P(BindingTest, AnIdAnnouncedDuringItsReleaseGetsANewInstance) {
  std::optional<VeskValue> reborn;
  TestClass::sOnRelease = [&](void* released) {
    TestClass::sOnRelease = nullptr;
    EXPECT_EQ(BindingRegistry::find(released), nullptr);
    reborn = BindingRegistry::announce(released, intern("bind.B"));
  };
  tarnDestroyArray(BindingRegistry::announce(id(0), intern("bind.A")).array());
  ASSERT_TRUE(reborn);
  EXPECT_EQ(Instance::fromArray(reborn->array()), BindingRegistry::find(id(0)));
  tarnDestroyArray(reborn->array());
  EXPECT_EQ(TestClass::sReleased.size(), 2u);
}

TEST_P(BindingTest, AnInstanceReleasesItsIdOnceEvenIfTheReleaseTakesAndDropsReferences) {
  TestClass::sOnRelease = [&](void*) { VeskInterfacePtr const again(Instance::fromArray(fArray)); };
  fArray = BindingRegistry::announce(id(0), intern("bind.A")).array();
  tarnDestroyArray(fArray);
  EXPECT_EQ(TestClass::sReleased.size(), 1u);
}

TEST_P(BindingTest, AFailingReleaseStillFreesTheInstanceAndItsBinding) {
  TestClass::sOnRelease = [](void*) { throw std::domain_error("decRef"); };
  Instance* instance = Instance::fromArray(BindingRegistry::announce(id(0), intern("bind.A")).array());
  EXPECT_THROW(instance->release(), std::domain_error);
  EXPECT_EQ(Instance::liveCount(), fLive);
  EXPECT_EQ(BindingRegistry::find(id(0)), nullptr);
}

TEST_P(BindingTest, ConstructorsBindTheirObjectOnce) {
  auto const made = VeskInterfacePtr::adopt(vesk::host::makeInstance(classNamed("bind.A")));
  auto const other = VeskInterfacePtr::adopt(vesk::host::makeInstance(classNamed("bind.A")));
  auto* instance = static_cast<Instance*>(static_cast<vesk::VeskInterface*>(made));
  auto* second = static_cast<Instance*>(static_cast<vesk::VeskInterface*>(other));
  EXPECT_EQ(instance->getNativeObject(intern("bind.A")), nullptr);
  BindingRegistry::announceForConstructor(id(0), intern("bind.A"), instance->array(), true);
  EXPECT_EQ(instance->getNativeObject(intern("bind.A")), id(0));
  EXPECT_THROW(BindingRegistry::announceForConstructor(id(0), intern("bind.A"), second->array(), true),
               VeskError);
  EXPECT_THROW(BindingRegistry::announceForConstructor(id(1), intern("bind.A"), instance->array(), true),
               VeskError);
  EXPECT_EQ(second->state(), Instance::State::Unbound);
}

TEST_P(BindingTest, TheNullNameServesABoundIdOnly) {
  EXPECT_THROW(BindingRegistry::announce(id(0), VeskInterned()), VeskError);
  EXPECT_THROW(BindingRegistry::announce(id(0), intern("bind.Missing")), VeskError);
  EXPECT_THROW(BindingRegistry::announce(id(0), intern("nowhere.A")), VeskError);
  VeskValue const bound = BindingRegistry::announce(id(0), intern("bind.A"));
  VeskValue const same = BindingRegistry::announce(static_cast<void const*>(id(0)), VeskInterned());
  EXPECT_EQ(bound.array(), same.array());
  tarnDestroyArray(bound.array());
  tarnDestroyArray(same.array());
}

TEST_P(BindingTest, TheNullIdIsTheEmptyValueOfTheType) {
  vesk::host::registerDataType("testlogical", vesk::host::Carrier::OptionalLogical);
  vesk::factory::detail::initStringDataTypes();
  struct Row {
    char const* fName;
    int fClassId;
  };
  for (auto [name, classId] :
       {Row{"bind.A", objectClassId}, Row{"testlogical", logicalClassId}, Row{"char", charClassId}}) {
    bool created = true;
    tarnArray* empty = BindingRegistry::announce(static_cast<void*>(nullptr), intern(name), created).array();
    EXPECT_FALSE(created);
    EXPECT_EQ(empty->fClassId, classId) << name;
    EXPECT_EQ(tarn::numberOfElements(empty), 0u);
    tarnDestroyArray(empty);
  }
  EXPECT_THROW(BindingRegistry::announce(static_cast<void*>(nullptr), intern("logical scalar")), VeskError);
}

/// What a front does: instances that lie in objects of its own and are counted there.
struct FrontObject {
  class Embedded : public Instance {
   public:
    Embedded(vesk::host::ClassRecord& cls, FrontObject* object) : Instance(cls), fObject(object) {}
    void retain() override { ++fObject->fCount; }
    void release() override {
      if (--fObject->fCount) return;
      finish();
      delete fObject;
    }

   private:
    FrontObject* fObject;
  };

  explicit FrontObject(vesk::host::ClassRecord& cls) : fInstance(cls, this) {}

  int fCount = 1;
  Embedded fInstance;
};

TEST_P(BindingTest, AFrontKeepsInstancesInItsOwnObjects) {
  vesk::host::setInstanceMaker(
      [](vesk::host::ClassRecord& cls) -> Instance* { return &(new FrontObject(cls))->fInstance; });
  tarnArray* array = BindingRegistry::announce(id(0), intern("bind.A")).array();
  vesk::host::setInstanceMaker(nullptr);
  EXPECT_EQ(BindingRegistry::announce(id(0), intern("bind.A")).array(), array);
  tarnDestroyArray(array);
  EXPECT_NE(BindingRegistry::find(id(0)), nullptr);
  tarnDestroyArray(array);
  EXPECT_EQ(TestClass::sReleased.size(), 1u);
}

}  // namespace
