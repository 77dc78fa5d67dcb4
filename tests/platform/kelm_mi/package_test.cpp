#include <gtest/gtest.h>

#include "kelm/Model.h"
#include "kelm_mi/VeskExtensionsRegistry.h"
#include "platform/kelm/support/failure.h"
#include "platform/vesk/support/TestClasses.h"
#include "vesk/host/Extensions.h"
#include "vesk/host/PackageRecord.h"

namespace {

class PackageTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    Kelm::initialize();
    vesk::factory::detail::initStringDataTypes();
  }
  static vesk::host::ClassRecord& classNamed(char const* aName) {
    return vesk::host::classOf(vesk::internal::intern(aName));
  }
};

TEST_F(PackageTest, everyClassFillsAndEverySignatureNamesKnownTypes) {
  auto* const package = vesk::host::findPackage("Kelm");
  ASSERT_NE(package, nullptr);
  EXPECT_EQ(package->classes().size(), 31u);
  for (auto* const cls : package->classes()) {
    ASSERT_NO_THROW(cls->ensureFilled()) << cls->fName.c_str();
    EXPECT_EQ(cls->findMember(vesk::internal::intern("eq")) != nullptr,
              cls->fName.view().ends_with("Iterator"))
        << cls->fName.c_str();
    for (auto const& method : cls->methods()) {
      EXPECT_NO_THROW(static_cast<void>(method.resultType())) << method.text();
      for (int i = 0; i < method.fCount; ++i)
        EXPECT_NO_THROW(static_cast<void>(method.argumentType(i))) << method.text();
    }
    for (auto const& property : cls->properties())
      EXPECT_NO_THROW(static_cast<void>(property.type())) << property.fName.c_str();
  }
}

TEST_F(PackageTest, extensionsRunInOrderWhenTheClassIsFilledAndAtOnceBehindThat) {
  using vesk::host::addExtension;
  auto& registry = Kelm::mi::VeskExtensionsRegistry::instance();
  static std::string sOrder;
  static vesk::VeskClass* sExtended = nullptr;
  vesk::testing::addClasses("late", {{"Extended",
                                      [](vesk::VeskClass& aClass) {
                                        sExtended = &aClass;
                                        sOrder += "f";
                                        Kelm::mi::VeskExtensionsRegistry::instance().executeNonConstCallbacks(
                                            "late.Extended", &aClass, nullptr);
                                      }},
                                     {"Plain", nullptr}});
  addExtension("late.Extended", [&](vesk::VeskClass* aClass, vesk::VeskClient const*) {
    EXPECT_EQ(aClass, sExtended);
    sOrder += "a";
    registry.addNonConstCallback("late.Extended", [](auto*, auto*) { sOrder += "c"; });
  });
  registry.addNonConstCallback("late.Extended", [](auto*, auto*) { sOrder += "b"; });
  EXPECT_EQ(sOrder, "");
  vesk::testing::classNamed("late.Extended").ensureFilled();
  EXPECT_EQ(sOrder, "fabc");
  addExtension("late.Extended", [](vesk::VeskClass* aClass, auto*) {
    EXPECT_EQ(aClass, sExtended);
    sOrder += "d";
  });
  EXPECT_EQ(sOrder, "fabcd");
  // What would never run is refused.
  vesk::testing::classNamed("late.Plain").ensureFilled();
  auto const nothing = [](auto*, auto*) { FAIL(); };
  EXPECT_NE(failureOf([&] { addExtension("late.Plain", nothing); }).find("takes no extensions"),
            std::string::npos);
  EXPECT_EQ(failureOf([&] { addExtension("late.Unknown", nothing); }), "Class 'late.Unknown' is not defined");
}

TEST_F(PackageTest, failuresOfTheKernelHaveAScriptName) {
  EXPECT_STREQ(vesk::host::failureName(Kelm::Exception("x")), "Kelm.Error");
  EXPECT_EQ(vesk::host::failureName(std::runtime_error("x")), nullptr);
}

}  // namespace
