#include "uml_metamodel_mi/registration.h"

#include <gtest/gtest.h>

#include <boost/core/demangle.hpp>
#include <set>

#include "kelm/Model.h"
#include "kelm_mi/VeskExtensionsRegistry.h"
#include "uml_metamodel_mi/package.h"
#include "uml_metamodel_mi/support/Recording.h"
#include "vesk/host/PackageRecord.h"

namespace umlmm::mi {
namespace {

using umlmm::testing::RecordingClass;
using umlmm::testing::RecordingPackage;
using Names = std::vector<std::string>;

/// The whole package as a host sees it that records and does nothing else.
class Published : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    Kelm::initialize();
    sPackage = new RecordingPackage;
    umlmmStaticInitializePackage(sPackage);
  }
  static void TearDownTestSuite() { delete sPackage; }

  static std::unique_ptr<RecordingClass> filled(std::string const& name) {
    auto cls = std::make_unique<RecordingClass>(name);
    sPackage->find(name)->initializeClass(cls.get(), vesk::host::client());
    return cls;
  }

  static inline RecordingPackage* sPackage;
};

TEST_F(Published, allClassesAreAnnouncedAlike) {
  EXPECT_EQ(sPackage->fWrongModes, 0);
  for (auto const& info : sPackage->fClasses) {
    EXPECT_EQ(info->handleQueryFirst(), 0) << info->getName();
    EXPECT_EQ(info->factoryQuery(), 1) << info->getName();
    EXPECT_EQ(info->handleQuerySecond(), 1) << info->getName();
    EXPECT_FALSE(info->isAbstract()) << info->getName();
  }
}

TEST_F(Published, theInfosOfElementAndEnumerationClassesAreNamedAfterThem) {
  for (std::string const name :
       {"AggregationKind", "CallConcurrencyKind", "ConnectorKind", "InteractionOperatorKind", "MessageKind",
        "MessageSort", "ParameterDirectionKind", "VisibilityKind", "Comment", "ImmutableComment",
        "CommentMetaProperty", "Factory", "ImmutableFactory"}) {
    vesk::VeskClassInfo const& info = *sPackage->find(name);
    EXPECT_EQ(boost::core::demangle(typeid(info).name()), "umlmm::mi::" + name + "Wrapper");
  }
}

TEST_F(Published, withoutAPackageOnlyElementClassesAreLeftOut) {
  Names announced;
  vesk::host::setGlobalClassObserver(
      [](vesk::VeskClassInfo* info, void* names) {
        static_cast<Names*>(names)->emplace_back(info->getName());
      },
      &announced);
  umlmmStaticInitializePackage(nullptr);
  vesk::host::setGlobalClassObserver(nullptr, nullptr);
  EXPECT_EQ(announced.size(), 58u);
  EXPECT_EQ(announced.front(), "Factory");
  EXPECT_EQ(announced.back(), "MessageSortImmutableIterator");
}

/// Fills every class: the totals, and that every name used is a name announced.
TEST_F(Published, theWholeSurfaceHoldsTogether) {
  Names const names = sPackage->names();
  std::set<std::string> known(names.begin(), names.end());
  std::set<std::string> const dataTypes{"logical scalar", "int32 scalar", "char vector",          "char",
                                        "kelmlogical",    "kelmint32",    "kelmunlimitedNatural", "void"};
  std::set<std::string> unknown;
  auto const check = [&](std::string const& name) {
    bool const isOwn = name.starts_with("umlmm.") && known.contains(name.substr(6));
    if (!isOwn && !name.starts_with("Kelm.") && !dataTypes.contains(name)) unknown.insert(name);
  };
  std::size_t methods = 0, properties = 0, metaProperties = 0, constructors = 0;
  for (std::string const& name : names) {
    auto const cls = filled(name);
    EXPECT_EQ(cls->fWrongSuperclassCalls, 0) << name;
    for (std::string const& super : cls->fSuperclasses) check(super);
    for (auto const& property : cls->fProperties) check(property->getDataType());
    for (auto const& method : cls->fMethods) {
      auto const& signature = *method->getMethodSignature();
      check(signature.result().c_str());
      if (!signature.receiver().empty()) check(signature.receiver().c_str());
      for (auto const argument : signature.arguments()) check(argument.c_str());
      EXPECT_EQ(method->getMemberAccess(), 0);
      EXPECT_TRUE(method->isLocked());
      if (name == method->getName()) constructors++;
    }
    properties += cls->fProperties.size();
    if (name.ends_with("MetaProperty")) metaProperties += cls->fMethods.size();
    if (name.ends_with("MetaProperty") || name.find("Sequence") != std::string::npos ||
        name.ends_with("Iterator"))
      continue;
    methods += cls->fMethods.size();
  }
  EXPECT_TRUE(unknown.empty()) << *unknown.begin() << " and " << unknown.size() - 1 << " more are no types";
  EXPECT_EQ(properties, 347u);
  EXPECT_EQ(metaProperties, 4318u);
  EXPECT_EQ(constructors, 128u + 67u);
  // Changeable and read-only element classes, the factory pair, the enumerations with their 38 literals.
  EXPECT_EQ(methods, 995u + 966u + 203u + 10u + 8u * 13u + 38u);
}

/// What classes tell before they are filled, they have afterwards, and nothing else.
TEST_F(Published, memberNamesAreToldWithoutFilling) {
  std::size_t classesThatTell = 0;
  for (std::string const& name : sPackage->names()) {
    std::set<std::string> told, found;
    if (!sPackage->find(name)->visitMemberNames([&](char const* member) { told.emplace(member); })) continue;
    auto const cls = filled(name);
    for (auto const& property : cls->fProperties) found.emplace(property->getName());
    for (auto const& method : cls->fMethods)
      if (name != method->getName()) found.emplace(method->getName());
    EXPECT_EQ(told, found) << name;
    classesThatTell++;
  }
  // Two classes of references and four of sequences of each metaclass.
  EXPECT_EQ(classesThatTell, 166u * 6u);
}

TEST_F(Published, extensionsRunBehindThePropertiesUnderTheChangeableName) {
  static std::size_t propertiesThen, methodsThen;
  Kelm::mi::VeskExtensionsRegistry::instance().addNonConstCallback(
      "umlmm.Dependency", [](vesk::VeskClass* cls, vesk::VeskClient const* client) {
        EXPECT_EQ(client, vesk::host::client());
        propertiesThen = static_cast<RecordingClass*>(cls)->fProperties.size();
        methodsThen = static_cast<RecordingClass*>(cls)->fMethods.size();
      });
  filled("Dependency");
  EXPECT_EQ(methodsThen, 0u);
  auto const cls = filled("ImmutableDependency");
  EXPECT_EQ(propertiesThen, cls->fProperties.size());
  EXPECT_GT(propertiesThen, 0u);
  // asDeviant, asImmutable, asMutable and both casts come later.
  EXPECT_EQ(methodsThen, cls->fMethods.size() - 5);
}

}  // namespace
}  // namespace umlmm::mi
