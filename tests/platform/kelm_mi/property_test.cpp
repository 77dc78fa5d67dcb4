#include <gtest/gtest.h>

#include <cstring>

#include "kelm_mi/KelmmiProperty.h"
#include "platform/kelm/support/failure.h"
#include "platform/kelm_mi/support/Script.h"
#include "platform/kelm_mi/support/TestMetamodel.h"
#include "platform/vesk/support/TestClasses.h"

namespace {

using namespace kelm_mi_test;
using namespace Kelm::mi;

/// Takes what a factory adds and gives it back at the end.
class RecordingClass final : public vesk::VeskClass {
 public:
  ~RecordingClass() override {
    for (auto* const property : fProperties) delete property;
    for (auto* const method : fMethods) delete method;
  }
  char const* getConstructorName() const override { return "new"; }
  void addSuperclass(vesk::VeskInterned const*, std::size_t, int, int) override {}
  void addProperty(vesk::VeskPropInfo* aProperty) override { fProperties.push_back(aProperty); }
  void addMethod(vesk::VeskMethodInfo* aMethod) override { fMethods.push_back(aMethod); }

  KelmmiProperty& property(std::size_t aIndex) const {
    return dynamic_cast<KelmmiProperty&>(*fProperties[aIndex]);
  }

  std::vector<vesk::VeskPropInfo*> fProperties;
  std::vector<vesk::VeskMethodInfo*> fMethods;
};

/// Keeps texts as string objects; the empty text is nothing.
class TextHelper final : public PropHelperBase {
 public:
  explicit TextHelper(bool* aGone = nullptr) : fGone(aGone) {}
  ~TextHelper() override {
    if (fGone != nullptr) *fGone = true;
  }
  VeskValue unboxAndReturn(Object aValue, char const* aTypeName) override {
    EXPECT_STREQ(aTypeName, "char");
    return tarnCreateString_UTF16(Kelm::asString(aValue)->data());
  }
  bool boxAndSet(Kelm::ClassObject* aObject, VeskValue& aValue, Kelm::IntrospectiveMethods const* aMethods,
                 unsigned aId) override {
    Kelm::String const text(tarn::get_ustring(aValue.array()));
    if (text.empty()) return false;
    aMethods->setEntry(aObject->get(), aObject->getDeviant(), aId, Object(text.record(), Deviant()));
    return true;
  }

 private:
  bool* fGone;
};

class PropertyTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { publishZoo(); }

  Kelm::ClassObject const fDog = makeBeast(dog());
  Kelm::ClassObject const fFriend = makeBeast(animal());
  Value const fView = show(fDog, false);
  Value const fReadOnlyView = show(fDog, true);
  Value const fOther = show(fFriend, false);
};

TEST_F(PropertyTest, flagsAndAccessFollowTheCodesOfTheFeature) {
  RecordingClass cls;
  KelmmiPropertyFactory const factory{&cls, "zoo.ImmutableAnimal", &kAccessors};
  factory.ClassObject("one", MultiplicitySingle, MutabilityChangeable, 1, "zoo.ImmutableAnimal", 0);
  factory.PrimitiveSequence("many", MultiplicityMany, MutabilityReadOnly, 2, "zoo.ImmutableSequenceOfString",
                            0);
  factory.DataType("kind", MultiplicityOptional, MutabilityReadOnly, 3, nullptr, new TextHelper, 0);
  EXPECT_EQ(cls.property(0).flags, KelmmiProperty::required);
  EXPECT_EQ(cls.property(1).flags, KelmmiProperty::multiValued | KelmmiProperty::readOnly);
  EXPECT_EQ(cls.property(2).flags, KelmmiProperty::readOnly);
  EXPECT_EQ(cls.property(0).getMemberSetAccess(), 0);
  EXPECT_EQ(cls.property(1).getMemberSetAccess(), 1);
  EXPECT_STREQ(cls.property(1).getDataType(), "zoo.ImmutableSequenceOfString");
  EXPECT_STREQ(cls.property(2).getDataType(), "");
}

TEST_F(PropertyTest, aMetaPropertyIsAStaticMethodThatAsksItsGetter) {
  RecordingClass cls;
  KelmmiPropertyFactory const factory{&cls, "zoo.AnimalMetaProperty", &kAccessors};
  static unsigned sAsked = 0;
  factory.addMetaProperty(
      "Herd",
      [](unsigned aId) {
        sAsked = aId;
        return Kelm::ImmutableProperty(kAccessors.metaPropertyTable[aId].fProperty, Kelm::metaDeviant());
      },
      Herd);
  vesk::VeskMethodInfo const& method = *cls.fMethods.at(0);
  EXPECT_TRUE(method.isStatic());
  int count = 0;
  VeskValue result;
  method.invoke(nullptr, count, &result, 0, nullptr);
  Value const property(OwnedValue(classNamed("Kelm.ImmutableProperty"), result));
  EXPECT_EQ(count, 1);
  EXPECT_EQ(sAsked, Herd);
  EXPECT_EQ(get(property, "name").text(), "herd");
}

TEST_F(PropertyTest, aReferenceIsAsChangeableAsTheInstanceItIsReadFrom) {
  EXPECT_TRUE(get(fView, "friend").isEmpty());
  set(fView, "friend", fOther);
  EXPECT_EQ(get(fView, "friend").object(), fOther.object());
  EXPECT_EQ(get(fView, "friend").className(), "zoo.Animal");
  EXPECT_EQ(get(fReadOnlyView, "friend").className(), "zoo.ImmutableAnimal");
  EXPECT_EQ(get(fReadOnlyView, "friend").native(), fFriend.get());
  setEmpty(fView, "friend");
  EXPECT_TRUE(get(fView, "friend").isEmpty());
}

TEST_F(PropertyTest, whatMayNotBeWrittenIsRefusedAndNothingChanges) {
  set(fView, "friend", fOther);
  std::string const immutable = failureOf([&] { setEmpty(fReadOnlyView, "friend"); });
  EXPECT_NE(immutable.find("asMutable"), std::string::npos);
  std::string const readOnly = failureOf([&] { setEmpty(fView, "fixed"); });
  EXPECT_TRUE(
      tells(readOnly, "You cannot set a read-only property", "kelm_mi/marshal/KelmmiClassObjectProperty"));
  // A dog leads; an animal that is none does not.
  EXPECT_NE(failureOf([&] { set(fView, "leader", fOther); }).find("zoo.ImmutableDog"), std::string::npos);
  set(fOther, "leader", fView);
  EXPECT_EQ(get(fOther, "leader").className(), "zoo.Dog");
  EXPECT_EQ(get(fView, "friend").native(), fFriend.get());
  Kelm::ClassObject const none;
  Value const invalid(
      OwnedValue(classNamed("zoo.Animal"), ReferenceBoxer::box(none, false, classNamed("zoo.Animal").fName)));
  EXPECT_NE(failureOf([&] { get(invalid, "friend"); }).find("NULL ref"), std::string::npos);
  EXPECT_NE(failureOf([&] { set(fView, "friend", invalid); }).find("zoo.ImmutableAnimal"), std::string::npos);
}

TEST_F(PropertyTest, aSequenceIsLiveAndAsChangeableAsTheInstance) {
  Value const herd = get(fView, "herd");
  EXPECT_EQ(herd.className(), "zoo.SequenceOfAnimal");
  EXPECT_EQ(get(fView, "herd").object(), herd.object());
  EXPECT_EQ(get(fReadOnlyView, "herd").className(), "zoo.ImmutableSequenceOfImmutableAnimal");
  EXPECT_EQ(get(fView, "flock").className(), "zoo.ImmutableSequenceOfAnimal");
  call(herd, "append", {fOther.object()});
  Value const seen = get(fReadOnlyView, "herd");
  EXPECT_EQ(call(seen, "size").int32(), 1);
  EXPECT_EQ(call(seen, "at", {1}).className(), "zoo.ImmutableAnimal");
}

TEST_F(PropertyTest, assigningASequenceReplacesAllValues) {
  Value const given = callOn("zoo.SequenceOfAnimal", "make", {Empty()});
  call(given, "append", {fOther.object()});
  call(given, "append", {fView.object()});
  set(fView, "herd", given);
  EXPECT_EQ(beast(fDog).fHerd.size(), 2);
  set(fView, "herd", get(fView, "herd"));
  EXPECT_EQ(beast(fDog).fHerd.size(), 2);
  EXPECT_NE(failureOf([&] { setEmpty(fReadOnlyView, "herd"); }).find("asMutable"), std::string::npos);
  EXPECT_TRUE(tells(failureOf([&] { setEmpty(fView, "flock"); }), "You cannot set a read-only property",
                    "kelm_mi/marshal/KelmmiSequenceProperty"));
  setEmpty(fView, "herd");
  EXPECT_TRUE(beast(fDog).fHerd.empty());
}

TEST_F(PropertyTest, aDataTypeGoesThroughItsHelperAndAnEmptyValueUnsets) {
  bool gone = false;
  {
    RecordingClass cls;
    KelmmiPropertyFactory const factory{&cls, "zoo.ImmutableAnimal", &kAccessors};
    factory.DataType("kind", MultiplicityOptional, MutabilityChangeable, Kind, "char", new TextHelper(&gone),
                     0);
    KelmmiProperty& kind = cls.property(0);
    auto const read = [&] {
      VeskValue const value = kind.getValue(fView.object());
      std::u16string const text = tarn::get_ustring(value.array());
      kind.releaseValue(fView.object(), value);
      return text;
    };
    tarnArray* const text = tarnCreateString("grey");
    kind.setValue(fView.object(), text);
    tarnDestroyArray(text);
    EXPECT_EQ(read(), u"grey");
    tarnArray* const empty = tarnCreateEmpty(charClassId);
    kind.setValue(fView.object(), empty);
    tarnDestroyArray(empty);
    EXPECT_FALSE(beast(fDog).fValues.contains(Kind));
    EXPECT_EQ(read(), u"");
  }
  EXPECT_TRUE(gone);
}

TEST(BindingTest, hostObjectsHoldOneCountAndGiveItBack) {
  publishZoo();
  int const alive = Beast::sAlive;
  std::size_t const arrays = tarn::liveArrayCount();
  {
    Value const view = show(makeBeast(dog()), false);
    Value const other = show(makeBeast(animal()), false);
    EXPECT_EQ(Beast::sAlive, alive + 2);
    set(view, "friend", other);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(get(view, "friend").native(), other.native());
    EXPECT_EQ(other.native()->numRef(), 2);
  }
  EXPECT_EQ(Beast::sAlive, alive);
  EXPECT_EQ(tarn::liveArrayCount(), arrays);
}

/// The place of a virtual operation among those of its class, as a pointer to member has it.
template <class Member>
std::size_t slotOf(Member aMember) {
  std::size_t words[2];
  static_assert(sizeof aMember == sizeof words);
  std::memcpy(words, &aMember, sizeof words);
  return words[0] / sizeof(void*);
}

TEST_F(PropertyTest, theTwoReadersStandBehindTheHostsOperations) {
  std::size_t const last = slotOf(&vesk::VeskPropInfo::getSarnArrays);
  EXPECT_EQ(slotOf(&vesk::VeskPropInfo::getInterfaces), last - 1);
  EXPECT_EQ(slotOf(&Kelm::mi::KelmmiProperty::getSingleValuedValue), last + 1);
  EXPECT_EQ(slotOf(&Kelm::mi::KelmmiProperty::getMultiValuedValue), last + 2);
}

}  // namespace
