#include <gtest/gtest.h>

#include "kelm/ElementQueries.h"
#include "kelm/ModelCache.h"
#include "kelm/ModelObject.h"
#include "kelm_mi/VeskExtensionsRegistry.h"
#include "platform/kelm/support/failure.h"
#include "platform/kelm_mi/support/Script.h"
#include "platform/kelm_mi/support/TestMetamodel.h"
#include "platform/vesk/support/TestClasses.h"
#include "vesk/host/Attributes.h"
#include "vesk/host/Extensions.h"
#include "vesk/host/PackageRecord.h"

namespace {

using namespace kelm_mi_test;

class PackageTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { publishZoo(); }
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

TEST_F(PackageTest, classesWithOneSuperclassGetTheCommonMethodsFromTheKernel) {
  Value const view = show(makeBeast(dog()), true);
  EXPECT_TRUE(call(view, "isvalid").logical());
  EXPECT_EQ(call(view, "asImmutable").object(), view.object());
  Value const changeable = call(view, "asMutable");
  EXPECT_EQ(changeable.className(), "zoo.Dog");
  EXPECT_EQ(call(changeable, "asImmutable").object(), view.object());
  EXPECT_EQ(get(call(view, "getMetaType"), "name").text(), "Dog");
  EXPECT_EQ(callOn("Kelm.ClassObject", "cast", {changeable.object()}).object(), changeable.object());
  Value const type = call(view, "getMetaType");
  Value const none = callOn("Kelm.ImmutableClassObject", "cast", {type.object()});
  EXPECT_FALSE(call(none, "isvalid").logical());
  EXPECT_NE(failureOf([&] { call(none, "getMetaType"); }).find("NULL ref"), std::string::npos);
  call(changeable, "destroy");
  EXPECT_TRUE(static_cast<Beast*>(view.native())->fDestroyed);
  // A read-only class has no way to destroy.
  EXPECT_EQ(classNamed("Kelm.ImmutableClassObject").findMember(vesk::internal::intern("destroy")), nullptr);
}

TEST_F(PackageTest, asDeviantShowsTheSameElementInAnotherVariant) {
  Kelm::Model const model = Kelm::NSInterface::FactoryIntf::createNewModel();
  Value const modelView = show(Kelm::ImmutableObject(model), false);
  Value const element = show(makeBeast(dog(), model.getDeviant()), false);
  Value const frozen = call(modelView, "readOnlyVariant");
  Value const seen = call(element, "asDeviant", {frozen.object()});
  EXPECT_NE(seen.object(), element.object());
  EXPECT_EQ(seen.native(), element.native());
  EXPECT_EQ(seen.className(), "zoo.Dog");
  EXPECT_TRUE(call(frozen, "isReadOnly").logical());
  EXPECT_FALSE(call(modelView, "isReadOnly").logical());
  EXPECT_NE(failureOf([&] { call(frozen, "close"); }).find("read-only variant"), std::string::npos);
  EXPECT_TRUE(call(modelView, "isvalid").logical());
  call(modelView, "close");
  EXPECT_FALSE(call(modelView, "isvalid").logical());
  EXPECT_NE(failureOf([&] { call(modelView, "rootElements"); }).find("does not exist"), std::string::npos);
}

TEST_F(PackageTest, modelsAreFoundByUriAndAnswerTheirElements) {
  Kelm::Model const model = Kelm::NSInterface::FactoryIntf::createNewModel();
  Kelm::ModelCache::instance().bindModel(u"zoo:model", model);
  Value const found = callOn("Kelm.ImmutableModel", "find", {std::u16string(u"zoo:model")});
  EXPECT_EQ(found.className(), "Kelm.ImmutableModel");
  Value const changeable = callOn("Kelm.Model", "find", {std::u16string(u"zoo:model")});
  EXPECT_EQ(changeable.className(), "Kelm.Model");
  EXPECT_TRUE(callOn("Kelm.Model", "find", {std::u16string(u"zoo:none")}).isEmpty());

  static Kelm::NSInterface::ClassIntf const* sAsked = nullptr;
  Kelm::ElementQueries const before = Kelm::elementQueries();
  Kelm::ElementQueries queries;
  queries.instancesOf = [](Kelm::ModelObject&, Deviant const& aDeviant, ClassIntf const& aClass) {
    sAsked = &aClass;
    auto const result = Kelm::SequenceCreator::create<Object>({aDeviant});
    result.push_back(Object(makeBeast(dog(), aDeviant)));
    result.get()->incRef();
    return result.get();
  };
  Kelm::setElementQueries(queries);
  int const alive = Beast::sAlive;
  {
    Value const type = show(Kelm::ImmutableObject(&animal(), Kelm::metaDeviant()), true);
    Value const seen = call(found, "instancesOf", {type.object()});
    EXPECT_EQ(sAsked, &animal());
    EXPECT_EQ(call(seen, "at", {1}).className(), "zoo.ImmutableDog");
    EXPECT_EQ(call(call(changeable, "allElements"), "front").className(), "zoo.Dog");
    EXPECT_EQ(sAsked, Kelm::ImmutableClassObject::MetaClass().get());
  }
  EXPECT_EQ(Beast::sAlive, alive);
  Kelm::setElementQueries(before);
  EXPECT_TRUE(call(call(found, "rootElements"), "isEmpty").logical());
  call(changeable, "close");
}

TEST_F(PackageTest, theUriOfAModelCanBeSetThroughAChangeableReference) {
  Kelm::Model const model = Kelm::NSInterface::FactoryIntf::createNewModel();
  Value const view = show(Kelm::ImmutableObject(model), false);
  Value const readOnly = show(Kelm::ImmutableObject(model), true);
  tarnArray* const text = tarnCreateString("zoo:renamed");
  EXPECT_NE(failureOf([&] { set(readOnly, "uri", text); }).find("asMutable"), std::string::npos);
  set(view, "uri", text);
  tarnDestroyArray(text);
  EXPECT_EQ(get(readOnly, "uri").text(), "zoo:renamed");
}

TEST_F(PackageTest, elementsAnswerTheirFeaturesByName) {
  Value const element = show(makeBeast(animal()), false);
  Value const other = show(makeBeast(dog()), false);
  auto const named = [](char16_t const* aName) { return std::u16string(aName); };
  EXPECT_FALSE(call(element, "isSet", {named(u"Friend")}).logical());
  set(element, "friend", other);
  call(element, "unset", {named(u"Friend")});
  EXPECT_FALSE(call(element, "isSet", {named(u"friend")}).logical());
  beast(Kelm::ClassObject(static_cast<Beast*>(element.native()), Deviant())).fValues[Kind] =
      Kelm::makePrimitive(Kelm::PrimitiveKind::Integer, static_cast<std::uint32_t>(-7));
  EXPECT_EQ(call(element, "getPropertyText", {named(u"Kind")}).text(), "-7");
  std::string const unknown = failureOf([&] { call(element, "isSet", {named(u"wings")}); });
  EXPECT_NE(unknown.find("The class 'Animal' has no property 'wings'"), std::string::npos);
}

TEST_F(PackageTest, aNameIsAsGoodAsTheAttributeOfTheInstance) {
  Value const element = show(makeBeast(dog()), false);
  Value const type = show(Kelm::ImmutableObject(&animal(), Kelm::metaDeviant()), true);
  Value const herd = call(type, "property", {std::u16string(u"Herd")});
  std::u16string const name = u"Friend";
  EXPECT_NE(failureOf([&] { call(element, "getProperty", {name}); }).find("cannot be reached by its name"),
            std::string::npos);
  static std::vector<std::string> sAsked;
  static Instance* sInstance = nullptr;
  static constexpr std::uintptr_t kWord = 0x51;
  vesk::host::setAttributeAccess({[](Instance& aInstance, vesk::VeskInterned aName) {
                                    EXPECT_EQ(&aInstance, sInstance);
                                    sAsked.push_back(std::string("get ") + aName.c_str());
                                    return VeskValue::ofWord(kWord);
                                  },
                                  [](Instance& aInstance, vesk::VeskInterned aName, VeskValue aValue) {
                                    EXPECT_EQ(&aInstance, sInstance);
                                    EXPECT_EQ(aValue.logical(), true);
                                    sAsked.push_back(std::string("set ") + aName.c_str());
                                  }});
  sInstance = element.object();
  EXPECT_EQ(call(element, "getProperty", {name}).word(), kWord);
  EXPECT_EQ(call(herd, "get", {element.object()}).word(), kWord);
  call(element, "setProperty", {name, true});
  call(herd, "set", {element.object(), true});
  EXPECT_EQ(sAsked, (std::vector<std::string>{"get friend", "get herd", "set friend", "set herd"}));
  EXPECT_NE(failureOf([&] { call(herd, "get", {Empty()}); }).find("NULL ref"), std::string::npos);
  vesk::host::setAttributeAccess({});
}

TEST_F(PackageTest, kernelTextsAreKeptAndEmptied) {
  Value const element = show(makeBeast(animal()), false);
  tarnArray* const text = tarnCreateString("id-1");
  set(element, "externalId", text);
  tarnDestroyArray(text);
  EXPECT_EQ(get(element, "externalId").text(), "id-1");
  setEmpty(element, "externalId");
  EXPECT_EQ(get(element, "externalId").text(), "");
  EXPECT_NE(failureOf([&] { setEmpty(element, "uri"); }).find("read-only"), std::string::npos);
}

TEST_F(PackageTest, theMetamodelTellsAboutItself) {
  Value const type = show(Kelm::ImmutableObject(&animal(), Kelm::metaDeviant()), true);
  EXPECT_EQ(type.className(), "Kelm.ImmutableClass");
  EXPECT_EQ(get(type, "qualifiedName").text(), "zoo::Animal");
  EXPECT_EQ(call(type, "asMutable").object(), type.object());
  Value const dogType = show(Kelm::ImmutableObject(&dog(), Kelm::metaDeviant()), true);
  EXPECT_TRUE(call(dogType, "conformsTo", {type.object()}).logical());
  EXPECT_FALSE(call(type, "conformsTo", {dogType.object()}).logical());
  EXPECT_EQ(call(call(dogType, "superClasses"), "at", {1}).object(), type.object());
  EXPECT_EQ(call(call(type, "ownedProperties"), "size").int32(), 5);
  Value const herd = call(type, "property", {std::u16string(u"Herd")});
  EXPECT_EQ(get(herd, "upper").int32(), -1);
  EXPECT_TRUE(get(herd, "isMultivalued").logical());
  EXPECT_EQ(get(herd, "id").int32(), 2);
  EXPECT_EQ(get(herd, "default").text(), "none");
  EXPECT_EQ(get(herd, "typeName").text(), "Animal");
  EXPECT_EQ(get(herd, "type").object(), type.object());
  EXPECT_EQ(call(herd, "owner").object(), type.object());
  EXPECT_EQ(get(get(herd, "opposite"), "name").text(), "friend");
  EXPECT_TRUE(get(get(herd, "opposite"), "opposite").isEmpty());
  EXPECT_EQ(call(get(herd, "subsetted"), "size").int32(), 0);
  EXPECT_TRUE(call(type, "property", {std::u16string(u"wings")}).isEmpty());
  EXPECT_NE(failureOf([&] { setEmpty(type, "name"); }).find("read-only"), std::string::npos);
}

class TestDataType final : public Kelm::NSInterface::DataTypeIntf {
 public:
  std::string_view getName() const override { return "Size"; }
  std::string_view getQualifiedName() const override { return "zoo::Size"; }
  bool conformsTo(Kelm::NSInterface::TypeIntf const& aOther) const override { return this == &aOther; }
  std::span<std::string_view const> literals() const override {
    static constexpr std::string_view kLiterals[] = {"Small", "Gro\xC3\x9F"};
    return kLiterals;
  }
};

TEST_F(PackageTest, literalsAreASequenceOfTexts) {
  static TestDataType const sSize;
  Value const literals = call(show(Kelm::ImmutableObject(&sSize, Kelm::metaDeviant()), true), "literals");
  EXPECT_EQ(call(literals, "size").int32(), 2);
  EXPECT_EQ(call(literals, "at", {2}).text(), "Gro\xC3\x9F");
  Value const it = call(literals, "begin");
  EXPECT_EQ(call(it, "item").text(), "Small");
}

TEST_F(PackageTest, extensionsRunInOrderWhenTheClassIsFilledAndAtOnceBehindThat) {
  using vesk::host::addExtension;
  auto& registry = Kelm::mi::VeskExtensionsRegistry::instance();
  static std::string sOrder;
  static vesk::VeskClass* sExtended = nullptr;
  vesk::testing::addPackage("late", [](vesk::VeskPackage& aPackage) {
    for (char const* const name : {"Extended", "Plain"})
      aPackage.addClass(new vesk::testing::TestClass(
                            name,
                            [name](vesk::VeskClass& aClass) {
                              if (name != std::string_view("Extended")) return;
                              sExtended = &aClass;
                              sOrder += "f";
                              Kelm::mi::VeskExtensionsRegistry::instance().executeNonConstCallbacks(
                                  "late.Extended", &aClass, nullptr);
                            }),
                        2);
  });
  addExtension("late.Extended", [&](vesk::VeskClass* aClass, vesk::VeskClient const*) {
    EXPECT_EQ(aClass, sExtended);
    sOrder += "a";
    registry.addNonConstCallback("late.Extended", [](auto*, auto*) { sOrder += "c"; });
  });
  registry.addNonConstCallback("late.Extended", [](auto*, auto*) { sOrder += "b"; });
  EXPECT_EQ(sOrder, "");
  classNamed("late.Extended").ensureFilled();
  EXPECT_EQ(sOrder, "fabc");
  addExtension("late.Extended", [](vesk::VeskClass* aClass, auto*) {
    EXPECT_EQ(aClass, sExtended);
    sOrder += "d";
  });
  EXPECT_EQ(sOrder, "fabcd");
  // What would never run is refused.
  classNamed("late.Plain").ensureFilled();
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
