#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "uml_metamodel_mi/package.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/host/PackageRecord.h"

namespace umlmm::mi {
namespace {

TEST(Entry, theProviderIsGivenOnceAndThePackageKeptAtItsFirstUse) {
  std::vector<std::string> providers;
  vesk::host::setPackageObserver(
      [](vesk::VeskPackageInfo* provider, void* names) {
        static_cast<std::vector<std::string>*>(names)->emplace_back(provider->getName());
      },
      &providers);
  SarnInitialize_uml_metamodel_mi();
  SarnInitialize_uml_metamodel_mi();
  SarnTerminate_uml_metamodel_mi();
  SarnTerminate_uml_metamodel_mi();
  SarnInitialize_uml_metamodel_mi();
  initumlmmPackageWrapper(nullptr);
  vesk::host::setPackageObserver(nullptr, nullptr);
  EXPECT_EQ(std::count(providers.begin(), providers.end(), "umlmm"), 1);

  vesk::host::PackageRecord* const package = vesk::host::findPackage("umlmm");
  ASSERT_NE(package, nullptr);
  EXPECT_EQ(getumlmmVeskPackage(), nullptr);
  EXPECT_EQ(package->classes().size(), 1884u);
  EXPECT_EQ(getumlmmVeskPackage(), package);
  for (vesk::host::ClassRecord* cls : package->classes())
    ASSERT_EQ(cls->state(), vesk::host::ClassRecord::State::Announced) << cls->info().getName();
  EXPECT_TRUE(package->provider().isDestructible());
  EXPECT_TRUE(package->provider().isLocked());
  EXPECT_EQ(package->provider().getHelpText(), nullptr);
}

}  // namespace
}  // namespace umlmm::mi
