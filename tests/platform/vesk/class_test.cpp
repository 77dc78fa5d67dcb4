#include <gtest/gtest.h>

#include "support/TestClasses.h"
#include "vesk/VeskError.h"

namespace {

using namespace vesk::testing;
using vesk::host::ClassRecord;
using State = vesk::host::ClassRecord::State;

std::vector<std::string> namesOf(std::span<ClassRecord* const> classes) {
  std::vector<std::string> names;
  for (ClassRecord* cls : classes) names.emplace_back(cls->info().getName());
  return names;
}

using Names = std::vector<std::string>;

TEST(ClassFilling, ComesWithTheFirstUseAndFillsSuperclassesOnce) {
  addClasses("fill", {{"Bottom", below({"fill.Left", "fill.Right"})},
                      {"Left", below({"fill.Top"})},
                      {"Right", below({"fill.Top"})},
                      {"Top", nullptr},
                      {"Other", nullptr}});
  TestClass::sFilled.clear();
  ClassRecord& bottom = classNamed("fill.Bottom");
  EXPECT_TRUE(TestClass::sFilled.empty());
  EXPECT_EQ(namesOf(bottom.superclasses()), (Names{"Left", "Right"}));
  bottom.ensureFilled();
  EXPECT_EQ(TestClass::sFilled, (Names{"Bottom", "Left", "Top", "Right"}));
  EXPECT_EQ(classNamed("fill.Other").state(), State::Announced);
}

TEST(ClassOrder, MergesSuperclassesSoThatEveryClassComesBeforeItsOwn) {
  addClasses("order", {{"O", nullptr},
                       {"A", below({"order.O"})},
                       {"B", below({"order.O"})},
                       {"C", below({"order.O"})},
                       {"K1", below({"order.A", "order.B"})},
                       {"K2", below({"order.B", "order.C"})},
                       {"Z", below({"order.K1", "order.K2"})}});
  ClassRecord& z = classNamed("order.Z");
  EXPECT_EQ(namesOf(z.linearization()), (Names{"Z", "K1", "A", "K2", "B", "C", "O"}));
  EXPECT_EQ(z.distanceTo(z), 0);
  EXPECT_EQ(z.distanceTo(classNamed("order.O")), 6);
  EXPECT_EQ(z.distanceTo(classNamed("order.K2")), 3);
  EXPECT_EQ(classNamed("order.O").distanceTo(z), -1);
}

/// Fails in the same way each time, and fills only once.
void expectFailure(char const* name, std::string const& text) {
  for (int i = 0; i < 3; ++i) {
    try {
      classNamed(name).ensureFilled();
      FAIL() << name;
    } catch (std::exception const& e) {
      EXPECT_EQ(e.what(), text);
    }
    EXPECT_EQ(classNamed(name).state(), State::Failed);
  }
}

TEST(ClassFailure, ContradictingOrdersAndCyclesAreRefused) {
  addClasses("bad", {{"A", nullptr},
                     {"B", nullptr},
                     {"AB", below({"bad.A", "bad.B"})},
                     {"BA", below({"bad.B", "bad.A"})},
                     {"Both", below({"bad.AB", "bad.BA"})},
                     {"Loop", below({"bad.Pool"})},
                     {"Pool", below({"bad.Loop"})},
                     {"Orphan", below({"bad.Missing"})},
                     {"Stranger", below({"nopackage.X"})}});
  expectFailure("bad.Both", "The superclasses of class 'bad.Both' cannot be put in one order");
  expectFailure("bad.Loop", "Class 'bad.Loop' is needed while it is being filled");
  expectFailure("bad.Orphan", "Class 'bad.Missing' is not defined");
  expectFailure("bad.Stranger", "Class 'nopackage.X' is not defined");
}

TEST(ClassFailure, IsRememberedAndReachesSubclasses) {
  addClasses("failing", {{"Base",
                          [](vesk::VeskClass& cls) {
                            cls.addProperty(new TestProperty("text", "char"));
                            throw std::logic_error("the callback refuses");
                          }},
                         {"Derived", below({"failing.Base"})}});
  TestClass::sFilled.clear();
  expectFailure("failing.Derived", "the callback refuses");
  expectFailure("failing.Base", "the callback refuses");
  EXPECT_EQ(TestClass::sFilled, (Names{"Derived", "Base"}));
  EXPECT_THROW(static_cast<void>(classNamed("failing.Base").findMember(vesk::internal::intern("text"))),
               std::logic_error);
}

TEST(ClassFailure, LackOfMemoryPasses) {
  static int sLeft = 3;
  addClasses("lean", {{"Base",
                       [](vesk::VeskClass& cls) {
                         cls.addProperty(new TestProperty("text", "char"));
                         if (--sLeft >= 0) throw std::bad_alloc();
                       }},
                      {"Derived", below({"lean.Base"})}});
  for (char const* name : {"lean.Derived", "lean.Base", "lean.Derived"}) {
    EXPECT_THROW(classNamed(name).ensureFilled(), std::bad_alloc);
    EXPECT_EQ(classNamed(name).state(), State::Announced);
  }
  EXPECT_EQ(namesOf(classNamed("lean.Derived").linearization()), (Names{"Derived", "Base"}));
  EXPECT_EQ(classNamed("lean.Base").properties().size(), 1u);
}

TestClass::Fill property(char const* name, char const* type) {
  return [=](vesk::VeskClass& cls) { cls.addProperty(new TestProperty(name, type)); };
}
TestClass::Fill method(char const* name, TestMethod::Signature texts) {
  return [=](vesk::VeskClass& cls) { cls.addMethod(new TestMethod(name, 0, texts, answering(1))); };
}

TEST(ClassFailure, UnusableMembersAreFoundWhileFilling) {
  vesk::factory::detail::initStringDataTypes();
  static std::initializer_list<char const*> const sUnknown = {"float scalar"}, sVoid = {"char", "void"};
  addClasses("wrong", {{"Nameless", property("", "char")},
                       {"NamelessMethod", method("", {"", "void", "wrong.NamelessMethod"})},
                       {"Argument", method("m", {"", "void", "wrong.Argument", sUnknown})},
                       {"Result", method("m", {"", "number", "wrong.Result"})},
                       {"Void", method("m", {"", "void", "wrong.Void", sVoid})},
                       {"Receiver", method("m", {"", "void", nullptr})},
                       {"Property", property("p", "real")}});
  expectFailure("wrong.Nameless", "A property of class 'wrong.Nameless' has no name");
  expectFailure("wrong.NamelessMethod", "A method of class 'wrong.NamelessMethod' has no name");
  expectFailure("wrong.Argument", "Data type 'float scalar' of 'm' is not defined");
  expectFailure("wrong.Result", "Data type 'number' of 'm' is not defined");
  expectFailure("wrong.Void", "An argument of 'm' is of type 'void'");
  expectFailure("wrong.Receiver", "Method 'm' has no argument for its receiver");
  expectFailure("wrong.Property", "Data type 'real' of 'p' is not defined");
  EXPECT_THROW(classNamed("wrong.Void").addProperty(new TestProperty("late", "char")), vesk::VeskError);
}

TEST(ClassMembers, AreFoundNearestFirstAndConstructorsAreNone) {
  addClasses("members",
             {{"Base",
               [](vesk::VeskClass& cls) {
                 cls.addProperty(new TestProperty("text", "char"));
                 cls.addProperty(new TestProperty("other", "char"));
                 cls.addMethod(new TestMethod("run", 0, {"", "void", "members.Base"}, answering(1)));
                 cls.addMethod(new TestMethod("Base", 0, {"", "members.Base"}, answering(2)));
               }},
              {"Derived", [](vesk::VeskClass& cls) {
                 addSuperclasses(cls, {"members.Base"});
                 cls.addProperty(new TestProperty("text", "char"));
               }}});
  ClassRecord& base = classNamed("members.Base");
  ClassRecord& derived = classNamed("members.Derived");
  auto const find = [&](char const* name) { return derived.findMember(vesk::internal::intern(name)); };
  ASSERT_NE(find("text"), nullptr);
  EXPECT_EQ(find("text")->fProperty->fOwner, &derived);
  EXPECT_EQ(find("other")->fProperty->fOwner, &base);
  EXPECT_EQ(find("run")->fMethods.size(), 1u);
  EXPECT_EQ(find("run"), find("run"));
  EXPECT_EQ(find("nothing"), nullptr);
  EXPECT_EQ(find("Base"), nullptr);
  EXPECT_EQ(base.constructors().size(), 1u);
  EXPECT_TRUE(derived.constructors().empty());
}

}  // namespace
