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
using umlmm::testing::textOf;
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

TEST_F(Published, allClassesAreAnnouncedInOrder) {
  Names const names = sPackage->names();
  ASSERT_EQ(names.size(), 1884u);
  EXPECT_EQ(sPackage->fWrongModes, 0);
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
  Names const first(names.begin(), names.begin() + 5);
  EXPECT_EQ(first, (Names{"Factory", "ImmutableFactory", "ImmutableBehavioralFeature", "BehavioralFeature",
                          "BehavioralFeatureMetaProperty"}));
  EXPECT_EQ(names.back(), "ImmutableExtensionPointImmutableIterator");

  auto const at = [&](std::string const& name) {
    return std::find(names.begin(), names.end(), name) - names.begin();
  };
  // A class may be announced before its superclasses.
  EXPECT_LT(at("Port"), at("Property"));
  EXPECT_LT(at("UnlimitedNaturalImmutableIterator"), at("ImmutableElement"));
  auto const element = names.begin() + at("ImmutableElement");
  EXPECT_EQ(Names(element, element + 11),
            (Names{"ImmutableElement", "Element", "ElementMetaProperty", "SequenceOfElement",
                   "SequenceOfImmutableElement", "ImmutableSequenceOfElement",
                   "ImmutableSequenceOfImmutableElement", "ElementIterator", "ImmutableElementIterator",
                   "ElementImmutableIterator", "ImmutableElementImmutableIterator"}));
  auto const kind = names.begin() + at("MessageKind");
  EXPECT_EQ(Names(kind, kind + 5),
            (Names{"MessageKind", "SequenceOfMessageKind", "ImmutableSequenceOfMessageKind",
                   "MessageKindIterator", "MessageKindImmutableIterator"}));
}

TEST_F(Published, descriptionsStandAsWritten) {
  std::pair<char const*, char const*> const descriptions[] = {
      {"Comment", ""},
      {"ImmutableComment", ""},
      {"CommentMetaProperty", "This class has static methods to access meta properties"},
      {"SequenceOfImmutableComment", "A sequence whose values can be changed"},
      {"ImmutableSequenceOfComment", "A sequence whose values cannot be changed"},
      {"CommentImmutableIterator", "An iterator for traversing a modifiable list"},
      {"ImmutableCommentIterator", "An iterator for traversing a non-modifiable list"},
      {"MessageSort", "An enumeration"},
      {"SequenceOfMessageSort", "A sequence of MessageSort whose values can be changed"},
      {"ImmutableSequenceOfMessageSort",
       "A non-modifiable sequence of MessageSort whose values can be changed"},
      {"MessageSortImmutableIterator", "A iterator for traversing a modifiable list of MessageSort objects"},
      {"SequenceOfInteger", "A Sequence of Integer whose values can be changed"},
      {"ImmutableSequenceOfInteger", "A Sequence of Integer whose values cannot be changed"},
      {"IntegerIterator", "An iterator for a Sequence of Integer"},
      {"ImmutableFactory", "An implementation of the factory design pattern"},
  };
  for (auto const& [name, description] : descriptions) {
    vesk::VeskClassInfo* const info = sPackage->find(name);
    ASSERT_NE(info, nullptr) << name;
    EXPECT_STREQ(info->getDescription(), description) << name;
    EXPECT_STREQ(info->getDetailedDescription(), description) << name;
    EXPECT_EQ(info->handleQueryFirst(), 0) << name;
    EXPECT_EQ(info->factoryQuery(), 1) << name;
    EXPECT_EQ(info->handleQuerySecond(), 1) << name;
    EXPECT_FALSE(info->isAbstract()) << name;
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

TEST_F(Published, changeableClassOfOneSuperclass) {
  auto const cls = filled("Comment");
  EXPECT_EQ(cls->fSuperclasses, (Names{"umlmm.ImmutableComment", "umlmm.Element"}));
  EXPECT_EQ(cls->methodNames(), (Names{"Comment", "MetaClass", "MetaProperty", "getMetaType", "cast"}));
  EXPECT_TRUE(cls->fProperties.empty());
  EXPECT_EQ(textOf(*cls->method("Comment")), " | umlmm.Comment | - | Kelm.Model;");
  EXPECT_EQ(cls->method("Comment")->attributeWord(), 0u);
  EXPECT_EQ(textOf(*cls->method("MetaClass")), " | Kelm.ImmutableClass | - |");
  EXPECT_EQ(cls->method("MetaClass")->attributeWord(), 520u);
  EXPECT_EQ(textOf(*cls->method("MetaProperty")), " | umlmm.CommentMetaProperty | - |");
  EXPECT_EQ(textOf(*cls->method("getMetaType")), " | Kelm.ImmutableType | Kelm.Object |");
  EXPECT_EQ(cls->method("getMetaType")->attributeWord(), 2u);
  EXPECT_EQ(textOf(*cls->method("cast")), "other | Kelm.Object | - | Kelm.Object;");
  EXPECT_EQ(cls->method("cast")->attributeWord(), 8u);
}

TEST_F(Published, readOnlyClassOfOneSuperclass) {
  auto const cls = filled("ImmutableComment");
  EXPECT_EQ(cls->fSuperclasses, (Names{"umlmm.ImmutableElement"}));
  EXPECT_EQ(cls->methodNames(), (Names{"MetaClass", "MetaProperty", "getMetaType", "cast", "cast"}));
  EXPECT_EQ(cls->method("MetaClass")->attributeWord(), 8u);
  EXPECT_EQ(textOf(*cls->method("getMetaType")), " | Kelm.ImmutableType | Kelm.ImmutableObject |");
  EXPECT_EQ(textOf(*cls->method("cast", 0)), "other | Kelm.ImmutableObject | - | Kelm.ImmutableObject;");
  EXPECT_EQ(textOf(*cls->method("cast", 1)), "other | Kelm.ImmutableObject | - | Kelm.Object;");
  ASSERT_EQ(cls->fProperties.size(), 2u);
  EXPECT_STREQ(cls->fProperties[0]->getName(), "body");
  EXPECT_STREQ(cls->fProperties[0]->getDataType(), "char");
  EXPECT_STREQ(cls->fProperties[1]->getName(), "annotatedElement");
  EXPECT_STREQ(cls->fProperties[1]->getDataType(), "umlmm.ImmutableSequenceOfImmutableElement");
}

TEST_F(Published, classesOfSeveralSuperclassesDeclareTheCommonMethodsAnew) {
  auto const mutable_ = filled("Association");
  EXPECT_EQ(mutable_->fSuperclasses,
            (Names{"umlmm.ImmutableAssociation", "umlmm.Relationship", "umlmm.Classifier"}));
  EXPECT_EQ(mutable_->methodNames(), (Names{"Association", "isvalid", "MetaClass", "MetaProperty", "destroy",
                                            "asDeviant", "getMetaType", "cast", "asImmutable"}));
  EXPECT_EQ(textOf(*mutable_->method("asDeviant")),
            "deviant | umlmm.Association | umlmm.Association | Kelm.ImmutableModel;");
  EXPECT_EQ(mutable_->method("asDeviant")->attributeWord(), 512u);
  EXPECT_EQ(textOf(*mutable_->method("destroy")), " | void | umlmm.Association |");
  EXPECT_EQ(textOf(*mutable_->method("asImmutable")),
            " | umlmm.ImmutableAssociation | - | umlmm.Association;");
  EXPECT_EQ(mutable_->method("asImmutable")->attributeWord(), 4096u);

  auto const immutable = filled("ImmutableAssociation");
  EXPECT_EQ(immutable->methodNames(), (Names{"isvalid", "MetaClass", "MetaProperty", "getMetaType",
                                             "asDeviant", "asImmutable", "asMutable", "cast", "cast"}));
  EXPECT_EQ(textOf(*immutable->method("isvalid")), " | logical scalar | umlmm.ImmutableAssociation |");
  EXPECT_EQ(textOf(*immutable->method("asMutable")),
            " | umlmm.Association | - | umlmm.ImmutableAssociation;");
  EXPECT_EQ(immutable->method("asDeviant")->attributeWord(), 0u);
}

TEST_F(Published, rootAndAbstractClasses) {
  EXPECT_EQ(filled("Element")->fSuperclasses, (Names{"umlmm.ImmutableElement", "Kelm.ClassObject"}));
  EXPECT_EQ(filled("ImmutableElement")->fSuperclasses, (Names{"Kelm.ImmutableClassObject"}));
  EXPECT_EQ(filled("Element")->method("Element"), nullptr);
  EXPECT_EQ(
      filled("Classifier")->fSuperclasses,
      (Names{"umlmm.ImmutableClassifier", "umlmm.RedefinableElement", "umlmm.Namespace", "umlmm.Type"}));
}

TEST_F(Published, operationsStandOnBothClassesWithReadOnlyTypes) {
  for (bool const isMutable : {true, false}) {
    std::string const self = isMutable ? "MultiplicityElement" : "ImmutableMultiplicityElement";
    auto const cls = filled(self);
    ASSERT_NE(cls->method("is"), nullptr);
    EXPECT_EQ(textOf(*cls->method("is")),
              "lowerbound, upperbound | logical scalar | umlmm." + self + " | int32 scalar; int32 scalar;");
    EXPECT_EQ(cls->method("is")->attributeWord(), isMutable ? 512u : 0u);
  }
  EXPECT_EQ(textOf(*filled("Classifier")->method("allParents")),
            " | umlmm.ImmutableSequenceOfImmutableClassifier | umlmm.Classifier |");
  EXPECT_EQ(textOf(*filled("Namespace")->method("getNamesOfMember")),
            "element | umlmm.ImmutableSequenceOfString | umlmm.Namespace | umlmm.ImmutableNamedElement;");
}

TEST_F(Published, constructorsAndCreateMethodsTakeTheRequiredReferences) {
  auto const cls = filled("ActionExecutionSpecification");
  EXPECT_EQ(
      textOf(*cls->method("ActionExecutionSpecification", 1)),
      " | umlmm.ActionExecutionSpecification | - | Kelm.Model; umlmm.Action; umlmm.OccurrenceSpecification; "
      "umlmm.OccurrenceSpecification;");
  auto const factory = filled("Factory");
  ASSERT_EQ(factory->fMethods.size(), 203u);
  EXPECT_EQ(factory->fSuperclasses, (Names{"Kelm.FactoryObject"}));
  EXPECT_EQ(textOf(*factory->method("createActionExecutionSpecification", 1)),
            " aAction, aStart, aFinish | umlmm.ActionExecutionSpecification | umlmm.Factory | umlmm.Action; "
            "umlmm.OccurrenceSpecification; umlmm.OccurrenceSpecification;");
  EXPECT_EQ(textOf(*factory->method("createActionExecutionSpecification", 0)),
            " | umlmm.ActionExecutionSpecification | umlmm.Factory |");
  Names const names = factory->methodNames();
  EXPECT_EQ(
      Names(names.begin(), names.begin() + 5),
      (Names{"createNewFactory", "createNewModel", "createFromString", "createFromString", "createComment"}));
  EXPECT_EQ(Names(names.end() - 4, names.end()),
            (Names{"cast", "toKelmObject", "cast", "toKelmFactoryObject"}));
  EXPECT_EQ(textOf(*factory->method("cast", 1)), " | umlmm.Factory | - | Kelm.FactoryObject;");
  EXPECT_TRUE(factory->method("createNewModel")->isStatic());
  EXPECT_FALSE(factory->method("createFromString")->isStatic());

  auto const immutable = filled("ImmutableFactory");
  EXPECT_EQ(immutable->methodNames(),
            (Names{"eq", "ne", "gt", "ge", "lt", "le", "cast", "toKelmImmutableObject", "cast",
                   "toKelmImmutableFactoryObject"}));
  EXPECT_EQ(textOf(*immutable->method("cast", 1)),
            "other | umlmm.ImmutableFactory | - | Kelm.ImmutableFactoryObject;");
}

TEST_F(Published, enumerationClass) {
  auto const cls = filled("ConnectorKind");
  EXPECT_TRUE(cls->fSuperclasses.empty());
  EXPECT_EQ(cls->methodNames(),
            (Names{"isvalid", "MetaDataType", "getMetaDataType", "getMetaType", "fromString", "toString",
                   "disp", "Assembly", "Delegation", "eq", "ne", "gt", "ge", "lt", "le"}));
  EXPECT_EQ(textOf(*cls->method("fromString")), " | umlmm.ConnectorKind | - | char;");
  EXPECT_EQ(textOf(*cls->method("disp")), " | void | - | umlmm.ConnectorKind;");
  EXPECT_EQ(cls->method("disp")->attributeWord(), 4096u);
  EXPECT_EQ(textOf(*cls->method("lt")), " | logical scalar | - | umlmm.ConnectorKind; umlmm.ConnectorKind;");
  EXPECT_TRUE(cls->method("Delegation")->isStatic());
  EXPECT_FALSE(cls->method("getMetaType")->isVisible());
}

TEST_F(Published, valueSequenceAndIteratorClasses) {
  auto const cls = filled("SequenceOfUnlimitedNatural");
  EXPECT_EQ(cls->fSuperclasses, (Names{"umlmm.ImmutableSequenceOfUnlimitedNatural"}));
  EXPECT_EQ(cls->methodNames(),
            (Names{"append",    "clear",  "pop_back", "pop_front", "push_back",  "push_front",
                   "removeAll", "begin",  "end",      "erase",     "erase",      "erase",
                   "insert",    "insert", "replace",  "back",      "isEmpty",    "front",
                   "size",      "at",     "make",     "make",      "makeUnique", "makeUnique"}));
  std::string const self = "umlmm.SequenceOfUnlimitedNatural", iterator = "umlmm.UnlimitedNaturalIterator";
  EXPECT_EQ(textOf(*cls->method("erase", 1)),
            " | " + iterator + " | " + self + " | " + iterator + "; " + iterator + ";");
  EXPECT_EQ(textOf(*cls->method("erase", 2)), " | void | - | " + self + "; int32 scalar;");
  EXPECT_EQ(textOf(*cls->method("insert", 0)),
            " | " + iterator + " | " + self + " | " + iterator + "; char vector;");
  EXPECT_EQ(cls->method("insert", 0)->attributeWord(), 0u);
  EXPECT_EQ(textOf(*cls->method("insert", 1)), " | void | - | " + self + "; int32 scalar; char vector;");
  EXPECT_EQ(cls->method("insert", 1)->attributeWord(), 4096u);
  EXPECT_EQ(textOf(*cls->method("make", 0)), " | " + self + " | - | Kelm.ImmutableModel;");
  EXPECT_TRUE(cls->method("makeUnique", 1)->isStatic());

  auto const immutable = filled("ImmutableSequenceOfMessageSort");
  EXPECT_TRUE(immutable->fSuperclasses.empty());
  EXPECT_EQ(immutable->methodNames(), (Names{"begin", "end", "back", "isEmpty", "front", "size", "at"}));
  EXPECT_EQ(textOf(*immutable->method("begin")),
            " | umlmm.MessageSortImmutableIterator | umlmm.ImmutableSequenceOfMessageSort |");
  EXPECT_EQ(textOf(*immutable->method("at")),
            " | umlmm.MessageSort | - | umlmm.ImmutableSequenceOfMessageSort; int32 scalar;");

  auto const walker = filled("StringIterator");
  EXPECT_EQ(walker->fSuperclasses, (Names{"umlmm.StringImmutableIterator"}));
  EXPECT_EQ(walker->methodNames(), (Names{"clone", "eq", "ne", "getNext", "getPrev", "item"}));
  EXPECT_EQ(textOf(*walker->method("item")), " | char vector | umlmm.StringIterator |");
  EXPECT_TRUE(filled("StringImmutableIterator")->fSuperclasses.empty());
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

TEST_F(Published, packageFunctionIsStaticAndLast) {
  ASSERT_EQ(sPackage->fFunctions.size(), 1u);
  auto const& function = *sPackage->fFunctions[0];
  EXPECT_STREQ(function.getName(), "MetaPackage");
  EXPECT_EQ(textOf(function), " | Kelm.ImmutablePackage | - |");
  EXPECT_EQ(function.attributeWord(), 8u);
}

}  // namespace
}  // namespace umlmm::mi
