#include <dlfcn.h>
#include <gtest/gtest.h>

#include "support/Arguments.h"
#include "support/TestClasses.h"
#include "vesk/VeskError.h"

namespace {

using namespace vesk::testing;
using vesk::VeskError;
using vesk::host::findPackage;
using vesk::internal::intern;

TEST(Package, IsInitialisedOnceAtItsFirstUse) {
  static int sRuns = 0;
  addPackage("lazy", [](vesk::VeskPackage& package) {
    ++sRuns;
    package.addClass(new TestClass("One", nullptr), 2);
    package.addClass(new TestClass("Two", nullptr), 2);
    package.addClassAlias("Uno", "One");
  });
  vesk::host::PackageRecord& package = *findPackage("lazy");
  EXPECT_EQ(sRuns, 0);
  EXPECT_EQ(&classNamed("lazy.Two"), package.findClass("Two"));
  EXPECT_EQ(package.findClass("Uno"), package.classes()[0]);
  EXPECT_EQ(package.findClass("Three"), nullptr);
  EXPECT_EQ(sRuns, 1);
  EXPECT_EQ(package.classes().size(), 2u);
  EXPECT_EQ(vesk::host::findClass(intern("lazy")), nullptr);
}

TEST(Package, LackOfMemoryPasses) {
  static int sLeft = 2;
  addPackage("scarce", [](vesk::VeskPackage& package) {
    package.addClass(new TestClass("One", nullptr), 2);
    if (--sLeft >= 0) throw std::bad_alloc();
  });
  for (int i = 0; i < 2; ++i)
    EXPECT_THROW(static_cast<void>(vesk::host::findClass(intern("scarce.One"))), std::bad_alloc);
  EXPECT_EQ(findPackage("scarce")->classes().size(), 1u);
  EXPECT_EQ(&classNamed("scarce.One"), findPackage("scarce")->classes()[0]);
}

TEST(Package, SecondDefinitionsAreRefusedByTheProvider) {
  addClasses("twice", {{"One", nullptr}, {"One", nullptr}});
  for (int i = 0; i < 2; ++i) {
    try {
      static_cast<void>(findPackage("twice")->classes());
      FAIL();
    } catch (VeskError const& e) {
      EXPECT_STREQ(e.what(), "'One' is already defined in package 'twice'");
    }
  }
  EXPECT_THROW(addPackage("twice", nullptr), VeskError);
}

TEST(Package, FunctionsAreCalledByName) {
  addPackage("functions", [](vesk::VeskPackage& package) {
    for (char const* type : {"int32 scalar", "char"}) {
      auto* function = new vesk::factory::FunctionInfo("size", 0);
      function->setAttributeBits(vesk::factory::MethodStatic);
      vesk::factory::impl::Invoker::createSignature("", "int32 scalar", nullptr, type, function->signature());
      function->invoker().setThunk(
          [](auto&, auto*, int& count, vesk::VeskValue* results, int, vesk::VeskValue const*) {
            results[0] = vesk::VeskValue::ofInt32(77);
            count = 1;
          });
      package.addFunction(function);
    }
  });
  vesk::factory::detail::initStringDataTypes();
  auto& package = *findPackage("functions");
  ASSERT_EQ(package.functions().size(), 1u);
  vesk::host::Member const* size = package.findFunction(intern("size"));
  Arguments text{u"a"}, wrong{1.5};
  auto const& chosen = resolveMethod(*size, vesk::host::CallForm::Function, text, 1);
  EXPECT_EQ(chosen.text(), "size(char) -> int32 scalar");
  EXPECT_EQ(callMethod(chosen, vesk::host::CallForm::Function, nullptr, text, 1).value().int32(), 77);
  EXPECT_THROW(static_cast<void>(resolveMethod(*size, vesk::host::CallForm::Function, wrong, 1)), VeskError);
  EXPECT_EQ(package.findFunction(intern("none")), nullptr);
}

TEST(Announcements, AreSeenByTheObserversAndGlobalClassesHaveNoPackage) {
  std::vector<std::string> seen;
  vesk::host::setPackageObserver(
      [](vesk::VeskPackageInfo* provider, void* to) {
        static_cast<decltype(seen)*>(to)->push_back(provider->getName());
      },
      &seen);
  vesk::host::setGlobalClassObserver(
      [](vesk::VeskClassInfo* info, void* to) {
        static_cast<decltype(seen)*>(to)->push_back(info->getName());
      },
      &seen);
  addPackage("observed", [](vesk::VeskPackage&) {});
  vesk::VeskClass::addGlobalClass(new TestClass("LonelyClass", nullptr));
  vesk::host::setPackageObserver(nullptr, nullptr);
  vesk::host::setGlobalClassObserver(nullptr, nullptr);
  EXPECT_THROW(vesk::VeskClass::addGlobalClass(new TestClass("LonelyClass", nullptr)), VeskError);
  EXPECT_EQ(seen, (std::vector<std::string>{"observed", "LonelyClass"}));
  EXPECT_EQ(classNamed("LonelyClass").package(), nullptr);
}

TEST(DataTypes, OneNameHasOneCarrier) {
  auto& type = vesk::host::registerDataType("once", vesk::host::Carrier::Text);
  EXPECT_EQ(&vesk::host::registerDataType("once", vesk::host::Carrier::Text), &type);
  EXPECT_THROW(vesk::host::registerDataType("once", vesk::host::Carrier::RawInt32), VeskError);
  EXPECT_THROW(static_cast<void>(vesk::host::typeOf(intern("never registered"))), VeskError);
}

VeskError::Kind kindOfLoading(char const* name) {
  try {
    vesk::host::load(name);
  } catch (VeskError const& e) {
    return e.kind();
  }
  return VeskError::Kind::General;
}

TEST(Loading, RunsTheEntryPointsOfALibraryByName) {
  auto const packages = vesk::host::load("vesk_test_library");
  ASSERT_EQ(packages.size(), 1u);
  EXPECT_EQ(packages[0]->name().view(), "loaded");
  EXPECT_NE(packages[0]->findClass("Thing"), nullptr);
  EXPECT_EQ(vesk::host::load("vesk_test_library"), packages);

  EXPECT_EQ(kindOfLoading("no_such_library"), VeskError::Kind::Load);
  EXPECT_EQ(kindOfLoading("tarn"), VeskError::Kind::Load) << "a library without entry points";

  void* library = dlopen("libvesk_test_library.so", RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(library, nullptr);
  auto const terminations = reinterpret_cast<int (*)()>(dlsym(library, "vesk_test_library_terminations"));
  vesk::host::terminate();
  EXPECT_EQ(terminations(), 1);
}

}  // namespace
