#include <gtest/gtest.h>

#include <map>
#include <utility>

#include "frame/addTypedMethod.h"
#include "kelm/DeviantRegistry.h"
#include "uml_metamodel_mi/support/Recording.h"
#include "uml_metamodel_mi/support/Thing.h"
#include "vesk/factory/BindingRegistry.h"

namespace Kelm::mi {
namespace {

using umlmm::testing::announceThings;
using umlmm::testing::Array;
using umlmm::testing::RecordingClass;
using umlmm::testing::textOf;
using umlmm::testing::Thing;
using vesk::VeskValue;
using vesk::factory::basic::BindingRegistry;

/// A reference class of the test: shown as "FrameThing".
class ThingRef : public ImmutableObject {
 public:
  using ImmutableObject::ImmutableObject;
  Thing const* thing() const { return static_cast<Thing const*>(get()); }
  int countNow() const { return isNull() ? -1 : thing()->fCount; }
  void fail() const { throw std::runtime_error("failed"); }
};

}  // namespace

template <>
struct ScriptClass<ThingRef> : NamedScriptClass<"FrameThing", false> {};

namespace {

int free0() { return 7; }
int free1(ThingRef const& aSelf) { return aSelf.countNow(); }
bool negate(bool aValue) { return !aValue; }
int subtract(int aLeft, int aRight) { return aLeft - aRight; }
String twice(String const& aText) {
  return String(std::u16string(aText.text()) + std::u16string(aText.text()));
}
void nothing(ThingRef const&) {}
int countInside(ThingRef aByValue) { return aByValue.countNow(); }
ThingRef same(ThingRef const& aSelf) { return aSelf; }
Thing sMade;
ThingRef make(ThingRef const& aModel) { return ThingRef(&sMade, aModel.getDeviant()); }
bool needsObject(ThingRef const& aSelf) { return aSelf.get()->deviant_isValid(aSelf.getDeviant()); }

struct FormCase {
  Form fForm;
  std::uint32_t fWord;
  std::uint32_t fExpected;
  bool fFlag;
};

class Forms : public ::testing::TestWithParam<FormCase> {};

TEST_P(Forms, settleTheWordAndTheFlag) {
  FormCase const& form = GetParam();
  RecordingClass cls;
  addTypedMethod(&cls,
                 {"m", form.fWord, form.fForm, {"a, b", "void", nullptr, {"X", "Y"}}, &bindFunction<&free1>});
  ASSERT_EQ(cls.fMethods.size(), 1u);
  auto const* const method = dynamic_cast<vesk::factory::impl::MethodImpl const*>(cls.fMethods[0].get());
  ASSERT_NE(method, nullptr);
  EXPECT_EQ(method->attributeWord(), form.fExpected);
  EXPECT_EQ(method->invoker().firstArgumentIsSelf(), form.fFlag);
  EXPECT_STREQ(method->getDescription(), "");
  EXPECT_EQ(textOf(*method), "a, b | void | - | X; Y;");
}

INSTANTIATE_TEST_SUITE_P(Frame, Forms,
                         ::testing::Values(FormCase{Form::FreeFunction, 0, 8, false},
                                           FormCase{Form::FreeFunction, 512, 520, false},
                                           FormCase{Form::FreeFunction, 4096, 4096, false},
                                           FormCase{Form::FreeFunctionWithFlag, 0, 8, false},
                                           FormCase{Form::FreeFunctionWithFlag, 4096, 4096, true},
                                           FormCase{Form::MemberFunction, 0, 0, false},
                                           FormCase{Form::MemberFunction, 4096, 0, false},
                                           FormCase{Form::MemberFunctionWithFlag, 4098, 2, false}));

TEST(TypedMethod, constructorTakesTheNameOfItsClassAndIsNotStatic) {
  RecordingClass cls("Thing");
  addTypedMethod(
      &cls,
      {nullptr, 0, Form::Constructor, {"", "FrameThing", nullptr, {"Kelm.Model"}}, &bindConstructor<&make>});
  ASSERT_NE(dynamic_cast<vesk::factory::impl::VeskConstructor*>(cls.fMethods.at(0).get()), nullptr);
  EXPECT_STREQ(cls.fMethods[0]->getName(), "Thing");
  EXPECT_FALSE(cls.fMethods[0]->isStatic());
  EXPECT_EQ(cls.fMethods[0]->getMemberAccess(), 0);
}

/// Calls one function through its thunk.
class Calls : public ::testing::Test {
 protected:
  Calls() { announceThings(); }

  VeskValue call(Bind aBind, std::vector<VeskValue> const& aArguments) {
    Invoker invoker;
    aBind(invoker);
    invoker.invoke(nullptr, fCount, fResults, static_cast<int>(aArguments.size()), aArguments.data());
    return fResults[0];
  }
  /// A host object for the thing, bound as a script would see it.
  static VeskValue bound(Thing& aThing) { return Boxer<ThingRef>::box(ThingRef(&aThing, Deviant())); }

  int fCount = 0;
  VeskValue fResults[3] = {VeskValue::ofWord(11), VeskValue::ofWord(12), VeskValue::ofWord(13)};
};

TEST_F(Calls, resultCountGrowsFromZeroAndIsLeftAloneOtherwise) {
  EXPECT_EQ(call(&bindFunction<&free0>, {}).int32(), 7);
  EXPECT_EQ(fCount, 1);
  fCount = 3;
  call(&bindFunction<&free0>, {});
  EXPECT_EQ(fCount, 3);
  EXPECT_EQ(fResults[1].word(), 12u);

  fCount = 0;
  fResults[0] = VeskValue::ofWord(11);
  Array const empty(tarnCreateEmpty(objectClassId));
  call(&bindFunction<&nothing>, {empty});
  EXPECT_EQ(fCount, 0);
  EXPECT_EQ(fResults[0].word(), 11u);
}

TEST_F(Calls, rawValuesFillTheWholeSlotAndKeepTheirOrder) {
  EXPECT_EQ(call(&bindFunction<&subtract>, {VeskValue::ofInt32(3), VeskValue::ofInt32(10)}).word(),
            static_cast<std::uint64_t>(std::int64_t{-7}));
  EXPECT_EQ(call(&bindFunction<&negate>, {VeskValue::ofWord(2)}).word(), 0u);
  EXPECT_EQ(call(&bindFunction<&negate>, {VeskValue::ofWord(0)}).word(), 1u);
}

TEST_F(Calls, textsAreUtf16BothWays) {
  Array const text(tarnCreateString_UTF16(u"\u00e4\xd800"));
  Array const result(call(&bindFunction<&twice>, {text}));
  EXPECT_EQ(tarn::get_ustring(result.get()), u"\u00e4\xd800\u00e4\xd800");
}

TEST_F(Calls, referencesAreCountedDuringTheCallAlone) {
  Thing thing;
  Array const object(bound(thing));
  EXPECT_EQ(thing.fCount, 1);
  EXPECT_EQ(call(&bindFunction<&free1>, {object}).int32(), 2);
  EXPECT_EQ(call(&bindFunction<&countInside>, {object}).int32(), 3);
  EXPECT_EQ(call(&bindMember<&ThingRef::countNow, ThingRef>, {object}).int32(), 2);
  EXPECT_THROW(call(&bindMember<&ThingRef::fail, ThingRef>, {object}), std::runtime_error);
  EXPECT_EQ(thing.fCount, 1);
}

TEST_F(Calls, anEmptyArrayIsANullReferenceAndOnlyTheFirstElementIsRead) {
  Thing first, second;
  Array const one(bound(first)), two(bound(second));
  Array const none(tarnCreateEmpty(objectClassId));
  EXPECT_EQ(call(&bindFunction<&free1>, {none}).int32(), -1);
  Array const unfilled(tarnCreateObjectMatrix(1, 1));
  EXPECT_EQ(call(&bindFunction<&free1>, {unfilled}).int32(), -1);

  Array const both(tarnCreateObjectMatrix(1, 2));
  tarnSetObject(both.get(), 0, static_cast<vesk::VeskInterface*>(two.instance()));
  tarnSetObject(both.get(), 1, static_cast<vesk::VeskInterface*>(one.instance()));
  second.fCount = 40;
  EXPECT_EQ(call(&bindFunction<&free1>, {both}).int32(), 41);
  second.fCount = 1;
}

TEST_F(Calls, aMissingReceiverIsRefusedWhereTheFunctionCallsIntoIt) {
  Array const none(tarnCreateEmpty(objectClassId));
  EXPECT_ANY_THROW(call(&bindFunction<&needsObject, SelfCheck::Implementation>, {none}));
  EXPECT_EQ(fCount, 0);
}

TEST_F(Calls, boxingTheSameReferenceGivesTheSameHostObjectAndOneCount) {
  Thing thing;
  {
    Array const first(bound(thing));
    Array const again(call(&bindFunction<&same>, {first}));
    EXPECT_EQ(first.instance(), again.instance());
    EXPECT_EQ(thing.fCount, 1);
    Array const readOnly(ReferenceBoxer::box(ThingRef(&thing, Deviant()), true, {}));
    EXPECT_NE(readOnly.instance(), first.instance());
    EXPECT_STREQ(readOnly.instance()->classRecord().info().getName(), "FrameImmutableThing");
    EXPECT_EQ(thing.fCount, 2);
  }
  EXPECT_EQ(thing.fCount, 0);
  Array const later(bound(thing));
  EXPECT_EQ(thing.fCount, 1);
}

TEST_F(Calls, aNullReferenceBecomesAnObjectOfTheDeclaredClass) {
  Array const null(Boxer<ThingRef>::box(ThingRef()));
  ASSERT_NE(null.instance(), nullptr);
  EXPECT_STREQ(null.instance()->classRecord().info().getName(), "FrameThing");
  EXPECT_EQ(call(&bindFunction<&free1>, {null}).int32(), -1);
}

TEST_F(Calls, anObjectWithoutANameHasNoClassUnlessADefaultIsAsked) {
  Thing thing;
  thing.fHasName = false;
  EXPECT_ANY_THROW(bound(thing));
  EXPECT_EQ(thing.fCount, 0);
  Array const object(
      ReferenceBoxer::boxWithDefault(&thing, Deviant(), false, vesk::internal::intern("FrameThing")));
  EXPECT_EQ(thing.fCount, 1);
}

TEST_F(Calls, theObjectOfAConstructorIsBoundToTheInstanceAtHand) {
  vesk::host::Instance* const instance =
      vesk::host::makeInstance(vesk::host::classOf(vesk::internal::intern("FrameThing")));
  {
    Array const object(instance->array());
    Array const noModel(tarnCreateEmpty(objectClassId));
    fResults[0] = object;
    call(&bindConstructor<&make>, {noModel});
    EXPECT_EQ(fCount, 1);
    EXPECT_TRUE(instance->isBound());
    EXPECT_EQ(sMade.fCount, 1);
    Array const again(Boxer<ThingRef>::box(ThingRef(&sMade, Deviant())));
    EXPECT_EQ(again.instance(), instance);
  }
  EXPECT_EQ(sMade.fCount, 0);
}

TEST_F(Calls, releasingAfterTheObjectWasForgottenDropsTheBindingAlone) {
  Thing thing;
  std::size_t const before = BindingRegistry::size();
  {
    Array const object(bound(thing));
    EXPECT_EQ(BindingRegistry::size(), before + 1);
    DeviantRegistry::retract(&thing);
  }
  EXPECT_EQ(BindingRegistry::size(), before);
  EXPECT_EQ(thing.fCount, 1);
}

}  // namespace
}  // namespace Kelm::mi
