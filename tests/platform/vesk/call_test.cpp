#include <gtest/gtest.h>

#include "support/Arguments.h"
#include "support/TestClasses.h"
#include "vesk/factory/BindingRegistry.h"

namespace {

using namespace vesk::testing;
using vesk::VeskError;
using vesk::VeskValue;
using vesk::factory::basic::BindingRegistry;
using vesk::host::CallForm;
using vesk::host::ClassRecord;
using vesk::host::Instance;
using vesk::host::Member;
using vesk::internal::intern;

int sNatives[4];

/// Binds the next native to the object of the running constructor and remembers the arguments' sizes.
std::vector<std::size_t> sConstructorSizes;
void constructNext(VeskValue* results, std::vector<VeskValue> const& arguments) {
  sConstructorSizes.clear();
  for (VeskValue argument : arguments) sConstructorSizes.push_back(tarn::numberOfElements(argument.array()));
  BindingRegistry::announceForConstructor(&sNatives[3], intern("call.Base"), results[0].array(), true);
}

void fillBase(vesk::VeskClass& cls) {
  auto const add = [&cls](char const* name, std::uint32_t word, TestMethod::Signature texts, int number) {
    cls.addMethod(new TestMethod(name, word, texts, answering(number)));
  };
  add("take", 0, {"a", "int32 scalar", "call.Base", {"int32 scalar"}}, 1);
  add("take", 0, {"a", "int32 scalar", "call.Base", {"logical scalar"}}, 2);
  add("take", 0, {"a", "int32 scalar", "call.Base", {"char vector"}}, 3);
  add("take", 0, {"a, b", "int32 scalar", "call.Base", {"char vector", "int32 scalar"}}, 4);
  add("near", vesk::factory::MethodStatic, {"", "int32 scalar", nullptr, {"call.Base"}}, 5);
  add("near", vesk::factory::MethodStatic, {"", "int32 scalar", nullptr, {"call.Derived"}}, 6);
  add("first", vesk::factory::MethodStatic, {"", "int32 scalar", nullptr, {"char"}}, 7);
  add("first", vesk::factory::MethodStatic, {"", "int32 scalar", nullptr, {"char vector"}}, 8);
  add("replaced", 0, {"", "int32 scalar", "call.Base", {"char"}}, 9);
  add("self", vesk::factory::MethodFirstArgumentIsSelf, {"", "int32 scalar", nullptr, {"call.Base"}}, 10);
  cls.addMethod(new TestMethod("echo", 0, {"", "call.Base", "call.Base"},
                               [](int& count, VeskValue* results, auto& arguments) {
                                 results[0] = Instance::fromArray(arguments[0].array())->newReference();
                                 count = 1;
                               }));
  cls.addMethod(new TestMethod("nothing", 0, {"", "void", "call.Base"}, [](int&, VeskValue*, auto&) {}));
  cls.addMethod(new TestMethod("fail", 0, {"", "void", "call.Base", {"char", "call.Base"}},
                               [](int&, VeskValue*, auto&) { throw std::domain_error("inside"); }));
  cls.addProperty(new TestProperty("text", "char"));

  auto const construct = [](int&, VeskValue* results, auto& arguments) { constructNext(results, arguments); };
  cls.addMethod(new TestMethod("Base", 0, {"", "call.Base", nullptr, {"call.Base", "char"}}, construct));
  cls.addMethod(new TestMethod("Base", 0, {"", "call.Base", nullptr, {"char", "char", "char"}}, construct));
  cls.addMethod(new TestMethod("Base", 0, {"", "call.Base", nullptr, {"logical scalar", "char"}},
                               [](int&, VeskValue*, auto&) {}));
}

void fillDerived(vesk::VeskClass& cls) {
  addSuperclasses(cls, {"call.Base"});
  cls.addMethod(
      new TestMethod("take", 0, {"", "int32 scalar", "call.Derived", {"logical scalar"}}, answering(20)));
  cls.addMethod(new TestMethod("replaced", vesk::factory::MethodOverridesAllSignatures,
                               {"", "int32 scalar", "call.Derived", {"int32 scalar"}}, answering(21)));
}

class CallTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    vesk::factory::detail::initStringDataTypes();
    addClasses("call", {{"Base", fillBase}, {"Derived", fillDerived}});
  }

  CallTest() {
    fBase = announce(&sNatives[0], "call.Base");
    fDerived = announce(&sNatives[1], "call.Derived");
    fLive = Instance::liveCount();
    fArrays = tarn::liveArrayCount();
  }
  ~CallTest() override {
    EXPECT_EQ(Instance::liveCount(), fLive);
    EXPECT_EQ(tarn::liveArrayCount(), fArrays);
    fBase->release();
    fDerived->release();
  }

  static Instance* announce(void* id, char const* name) {
    return Instance::fromArray(BindingRegistry::announce(id, intern(name)).array());
  }
  static Member const& member(ClassRecord& cls, char const* name) { return *cls.findMember(intern(name)); }

  static int call(Instance* receiver, char const* name, Arguments arguments) {
    auto const& method = resolveMethod(member(receiver->classRecord(), name), CallForm::OnInstance, arguments,
                                       arguments.size());
    return callMethod(method, CallForm::OnInstance, receiver, arguments, arguments.size()).value().int32();
  }
  static int callOnClass(char const* cls, char const* name, Arguments arguments) {
    auto const& method =
        resolveMethod(member(classNamed(cls), name), CallForm::OnClass, arguments, arguments.size());
    return callMethod(method, CallForm::OnClass, nullptr, arguments, arguments.size()).value().int32();
  }

  Instance* fBase;
  Instance* fDerived;
  std::size_t fLive, fArrays;
};

TEST_F(CallTest, TheLowestCostWinsAndAmongEqualsTheFirst) {
  EXPECT_EQ(call(fBase, "take", {7}), 1);
  EXPECT_EQ(call(fBase, "take", {true}), 2);
  EXPECT_EQ(call(fBase, "take", {u"text"}), 3);
  EXPECT_EQ(call(fBase, "take", {Empty()}), 3);
  EXPECT_EQ(call(fBase, "take", {u"text", 1}), 4);
  EXPECT_EQ(callOnClass("call.Base", "first", {u"text"}), 7);
}

TEST_F(CallTest, TheNearerParameterClassWins) {
  EXPECT_EQ(callOnClass("call.Base", "near", {fBase}), 5);
  EXPECT_EQ(callOnClass("call.Base", "near", {fDerived}), 6);
}

// An int fits Derived's logical only by coercion, yet Derived is asked first.
TEST_F(CallTest, TheNearerDeclaringClassWinsOverABetterFit) {
  EXPECT_EQ(call(fDerived, "take", {7}), 20);
  EXPECT_EQ(call(fDerived, "take", {u"text"}), 3);
}

TEST_F(CallTest, AClassThatReplacesAllSignaturesEndsTheSearch) {
  EXPECT_EQ(call(fBase, "replaced", {u"text"}), 9);
  EXPECT_EQ(call(fDerived, "replaced", {1}), 21);
  EXPECT_THROW(call(fDerived, "replaced", {u"text"}), VeskError);
}

TEST_F(CallTest, ReceiversComeFromTheInstanceOrTheFirstArgument) {
  EXPECT_EQ(call(fDerived, "self", {}), 10);
  EXPECT_EQ(callOnClass("call.Base", "self", {fDerived}), 10);
  EXPECT_EQ(callOnClass("call.Base", "self", {Empty()}), 10);
  EXPECT_EQ(call(fBase, "near", {fBase}), 5);
  EXPECT_EQ(callOnClass("call.Base", "take", {fBase, u"text", 1}), 4);
  EXPECT_THROW(callOnClass("call.Derived", "replaced", {fBase, 1}), VeskError);
  EXPECT_THROW(callOnClass("call.Base", "self", {}), VeskError);
}

TEST_F(CallTest, NoFitListsTheSignatures) {
  try {
    call(fDerived, "take", {1.5});
    FAIL();
  } catch (VeskError const& e) {
    EXPECT_EQ(e.kind(), VeskError::Kind::Match);
    EXPECT_STREQ(e.what(),
                 "Method 'take' cannot be called with (float). It has the signatures:\n"
                 "  call.Derived: take(logical scalar) -> int32 scalar\n"
                 "  call.Base: take(int32 scalar a) -> int32 scalar\n"
                 "  call.Base: take(logical scalar a) -> int32 scalar\n"
                 "  call.Base: take(char vector a) -> int32 scalar\n"
                 "  call.Base: take(char vector a, int32 scalar b) -> int32 scalar");
  }
}

TEST_F(CallTest, ResultsCarryTheirTypeAndBelongToTheCaller) {
  Arguments none{};
  auto const& echo = *member(fBase->classRecord(), "echo").fMethods[0];
  auto const echoed = callMethod(echo, CallForm::OnInstance, fBase, none, 0);
  EXPECT_EQ(Instance::fromArray(echoed.value().array()), fBase);
  EXPECT_EQ(&echoed.type(), &classNamed("call.Base"));
  auto const& nothing = *member(fBase->classRecord(), "nothing").fMethods[0];
  EXPECT_EQ(callMethod(nothing, CallForm::OnInstance, fBase, none, 0).type().fCarrier,
            vesk::host::Carrier::Void);
}

TEST_F(CallTest, ArgumentsAreGivenBackWhenTheMethodThrows) {
  EXPECT_THROW(call(fBase, "fail", {u"text", fBase}), std::domain_error);
}

TEST_F(CallTest, PropertiesAreConvertedWrittenAndReadBack) {
  auto const& text = *member(fDerived->classRecord(), "text").fProperty;
  Arguments values{u"new", 5};
  setProperty(text, *fDerived, values, 0);
  EXPECT_THROW(setProperty(text, *fDerived, values, 1), VeskError);
  vesk::host::PropertyReading const reading(text, *fDerived);
  EXPECT_EQ(tarn::get_ustring(reading.value().array()), u"new");
}

TEST_F(CallTest, OmittedConstructorArgumentsAreEmptyUpToTheShortestSignature) {
  ClassRecord& base = classNamed("call.Base");
  auto const sizes = [&](Arguments arguments) {
    Instance* made = newInstance(base, arguments, arguments.size());
    EXPECT_TRUE(made->isBound());
    made->release();
    return sConstructorSizes;
  };
  using Sizes = std::vector<std::size_t>;
  EXPECT_EQ(sizes({}), (Sizes{0, 0}));
  EXPECT_EQ(sizes({fBase}), (Sizes{1, 0}));
  EXPECT_EQ(sizes({u"abc"}), (Sizes{3, 0, 0}));
  EXPECT_EQ(sizes({Empty(), u"ab"}), (Sizes{0, 2}));
}

TEST_F(CallTest, AConstructorThatBindsNothingIsAnErrorAndItsInstanceIsDroppedUnreleased) {
  TestClass::sReleased.clear();
  Arguments unbound{true, u""}, tooMany{1, 2, 3, 4};
  EXPECT_THROW(static_cast<void>(newInstance(classNamed("call.Base"), unbound, 2)), VeskError);
  EXPECT_THROW(static_cast<void>(newInstance(classNamed("call.Base"), tooMany, 4)), VeskError);
  EXPECT_THROW(static_cast<void>(newInstance(classNamed("call.Derived"), unbound, 0)), VeskError)
      << "constructors are not inherited";
  EXPECT_TRUE(TestClass::sReleased.empty());
}

}  // namespace
