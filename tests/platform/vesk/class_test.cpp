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
  addLattice("fill", {{"Bottom", {"fill.Left", "fill.Right"}},
                      {"Left", {"fill.Top"}},
                      {"Right", {"fill.Top"}},
                      {"Top", {}},
                      {"Other", {}}});
  TestClass::sFilled.clear();
  ClassRecord& bottom = classNamed("fill.Bottom");
  EXPECT_TRUE(TestClass::sFilled.empty());
  EXPECT_EQ(namesOf(bottom.superclasses()), (Names{"Left", "Right"}));
  bottom.ensureFilled();
  EXPECT_EQ(TestClass::sFilled, (Names{"Bottom", "Left", "Top", "Right"}));
  EXPECT_EQ(classNamed("fill.Other").state(), State::Announced);
}

TEST(ClassOrder, MergesSuperclassesSoThatEveryClassComesBeforeItsOwn) {
  addLattice("order", {{"O", {}},
                       {"A", {"order.O"}},
                       {"B", {"order.O"}},
                       {"C", {"order.O"}},
                       {"K1", {"order.A", "order.B"}},
                       {"K2", {"order.B", "order.C"}},
                       {"Z", {"order.K1", "order.K2"}}});
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
  addLattice("bad", {{"A", {}},
                     {"B", {}},
                     {"AB", {"bad.A", "bad.B"}},
                     {"BA", {"bad.B", "bad.A"}},
                     {"Both", {"bad.AB", "bad.BA"}},
                     {"Loop", {"bad.Pool"}},
                     {"Pool", {"bad.Loop"}},
                     {"Orphan", {"bad.Missing"}},
                     {"Stranger", {"nopackage.X"}}});
  expectFailure("bad.Both", "The superclasses of class 'bad.Both' cannot be put in one order");
  expectFailure("bad.Loop", "Class 'bad.Loop' is needed while it is being filled");
  expectFailure("bad.Orphan", "Class 'bad.Missing' is not defined");
  expectFailure("bad.Stranger", "Class 'nopackage.X' is not defined");
}

TEST(ClassFailure, IsRememberedAndReachesSubclasses) {
  addPackage("failing", [](vesk::VeskPackage& package) {
    package.addClass(new TestClass("Base",
                                   [](vesk::VeskClass& cls) {
                                     cls.addProperty(new TestProperty("text", "char"));
                                     throw std::logic_error("the callback refuses");
                                   }),
                     2);
    package.addClass(
        new TestClass("Derived", [](vesk::VeskClass& cls) { addSuperclasses(cls, {"failing.Base"}); }), 2);
  });
  TestClass::sFilled.clear();
  expectFailure("failing.Derived", "the callback refuses");
  expectFailure("failing.Base", "the callback refuses");
  EXPECT_EQ(TestClass::sFilled, (Names{"Derived", "Base"}));
  EXPECT_THROW(static_cast<void>(classNamed("failing.Base").findMember(vesk::internal::intern("text"))),
               std::logic_error);
}

TEST(ClassFailure, LackOfMemoryPasses) {
  static int sLeft = 3;
  addPackage("lean", [](vesk::VeskPackage& package) {
    package.addClass(new TestClass("Base",
                                   [](vesk::VeskClass& cls) {
                                     cls.addProperty(new TestProperty("text", "char"));
                                     if (--sLeft >= 0) throw std::bad_alloc();
                                   }),
                     2);
    package.addClass(
        new TestClass("Derived", [](vesk::VeskClass& cls) { addSuperclasses(cls, {"lean.Base"}); }), 2);
  });
  for (char const* name : {"lean.Derived", "lean.Base", "lean.Derived"}) {
    EXPECT_THROW(classNamed(name).ensureFilled(), std::bad_alloc);
    EXPECT_EQ(classNamed(name).state(), State::Announced);
  }
  EXPECT_EQ(namesOf(classNamed("lean.Derived").linearization()), (Names{"Derived", "Base"}));
  EXPECT_EQ(classNamed("lean.Base").properties().size(), 1u);
}

TEST(ClassFailure, AMemberWithoutANameIsRefused) {
  addPackage("nameless", [](vesk::VeskPackage& package) {
    package.addClass(
        new TestClass("Property",
                      [](vesk::VeskClass& cls) { cls.addProperty(new TestProperty("", "char")); }),
        2);
    package.addClass(
        new TestClass("Method",
                      [](vesk::VeskClass& cls) {
                        cls.addMethod(new TestMethod("", 0, {"", "void", "nameless.Method"}, answering(1)));
                      }),
        2);
  });
  expectFailure("nameless.Property", "A property of class 'nameless.Property' has no name");
  expectFailure("nameless.Method", "A method of class 'nameless.Method' has no name");
}

TEST(ClassFailure, UnknownDataTypesAndUnusableMethodsAreFoundWhileFilling) {
  vesk::factory::detail::initStringDataTypes();
  auto const method = [](TestMethod::Signature texts) {
    return [texts](vesk::VeskClass& cls) { cls.addMethod(new TestMethod("m", 0, texts, answering(1))); };
  };
  static std::initializer_list<char const*> const sUnknown = {"float scalar"}, sVoid = {"char", "void"};
  addPackage("types", [method](vesk::VeskPackage& package) {
    package.addClass(new TestClass("Argument", method({"", "void", "types.Argument", sUnknown})), 2);
    package.addClass(new TestClass("Result", method({"", "number", "types.Result"})), 2);
    package.addClass(new TestClass("Void", method({"", "void", "types.Void", sVoid})), 2);
    package.addClass(new TestClass("Receiver", method({"", "void", nullptr})), 2);
    package.addClass(
        new TestClass("Property",
                      [](vesk::VeskClass& cls) { cls.addProperty(new TestProperty("p", "real")); }),
        2);
  });
  expectFailure("types.Argument", "Data type 'float scalar' of 'm' is not defined");
  expectFailure("types.Result", "Data type 'number' of 'm' is not defined");
  expectFailure("types.Void", "An argument of 'm' is of type 'void'");
  expectFailure("types.Receiver", "Method 'm' has no argument for its receiver");
  expectFailure("types.Property", "Data type 'real' of 'p' is not defined");
  EXPECT_THROW(classNamed("types.Void").addProperty(new TestProperty("late", "char")), vesk::VeskError);
}

TEST(ClassMembers, AreFoundNearestFirstAndConstructorsAreNone) {
  addPackage("members", [](vesk::VeskPackage& package) {
    package.addClass(
        new TestClass("Base",
                      [](vesk::VeskClass& cls) {
                        cls.addProperty(new TestProperty("text", "char"));
                        cls.addProperty(new TestProperty("other", "char"));
                        cls.addMethod(new TestMethod("run", 0, {"", "void", "members.Base"}, answering(1)));
                        cls.addMethod(new TestMethod("Base", 0, {"", "members.Base"}, answering(2)));
                      }),
        2);
    package.addClass(new TestClass("Derived",
                                   [](vesk::VeskClass& cls) {
                                     addSuperclasses(cls, {"members.Base"});
                                     cls.addProperty(new TestProperty("text", "char"));
                                   }),
                     2);
  });
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
