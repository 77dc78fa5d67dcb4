#include <gtest/gtest.h>

#include "kelm/Asserter.h"
#include "kelm/Deviant.h"
#include "kelm/ModelCache.h"
#include "lum/lum.h"
#include "uml_metamodel_mi/support/Script.h"
#include "vesk/factory/BindingRegistry.h"

namespace umlmm::mi {
namespace {

using umlmm::testing::call;
using umlmm::testing::Empty;
using umlmm::testing::make;
using umlmm::testing::Value;

std::string failureOf(auto const& aBody) {
  try {
    aBody();
  } catch (std::exception const& failure) {
    return failure.what();
  }
  return "";
}

#define EXPECT_FAILURE(words, expression) \
  EXPECT_NE(failureOf([&] { static_cast<void>(expression); }).find(words), std::string::npos)

constexpr char kNullRef[] = "Cannot access NULL ref. Use isValid() before calling methods";

class Scripts : public ::testing::Test {
 protected:
  Value fModel = call("umlmm.Factory", "createNewModel");
};

TEST_F(Scripts, newModelsHaveUrisOfTheirOwnAndAreBound) {
  std::size_t const before = Kelm::ModelCache::instance().size();
  Value const second = call("umlmm.Factory", "createNewModel");
  EXPECT_EQ(Kelm::ModelCache::instance().size(), before + 1);
  EXPECT_NE(second.get("uri").text(), fModel.get("uri").text());
  EXPECT_TRUE(Kelm::DeviantAssertions::sAssertionsEnabled);
}

TEST_F(Scripts, anElementIsMadeReadAndWritten) {
  Value const comment = make("umlmm.Comment", fModel);
  EXPECT_EQ(comment.className(), "umlmm.Comment");
  EXPECT_TRUE(comment.call("isvalid").isTrue());
  EXPECT_EQ(comment.get("body").text(), u"");
  comment.set("body", std::u16string(u"na\u00efve \u65e5"));
  EXPECT_EQ(comment.get("body").text(), u"na\u00efve \u65e5");
  Value const owner = make("umlmm.Class", fModel);
  EXPECT_FALSE(owner.get("isAbstract").isTrue());
  owner.set("isAbstract", true);
  EXPECT_TRUE(owner.get("isAbstract").isTrue());
}

TEST_F(Scripts, aModelThatIsNotThereIsRefusedByCreate) {
  EXPECT_FAILURE(kNullRef, make("umlmm.Comment", Empty()));
  EXPECT_FAILURE(kNullRef, make("umlmm.Comment"));
}

TEST_F(Scripts, hostObjectsFollowElementVariantAndMutability) {
  Value const package = make("umlmm.Package", fModel);
  Value const immutable = package.call("asImmutable");
  EXPECT_EQ(immutable.className(), "umlmm.ImmutablePackage");
  EXPECT_NE(immutable.instance(), package.instance());
  EXPECT_EQ(immutable.call("asImmutable").instance(), immutable.instance());
  EXPECT_EQ(package.call("asImmutable").instance(), immutable.instance());
  EXPECT_EQ(immutable.call("asMutable").instance(), package.instance());
  Value const other = call("umlmm.Factory", "createNewModel");
  Value const foreign = package.call("asDeviant", other);
  EXPECT_NE(foreign.instance(), package.instance());
  EXPECT_FALSE(foreign.call("isvalid").isTrue());
  EXPECT_EQ(package.call("asDeviant", fModel).instance(), package.instance());
}

TEST_F(Scripts, bindingsEndWithTheirHostObjects) {
  std::size_t const before = vesk::factory::basic::BindingRegistry::size();
  {
    Value const comment = make("umlmm.Comment", fModel);
    Value const immutable = comment.call("asImmutable");
    EXPECT_EQ(vesk::factory::basic::BindingRegistry::size(), before + 2);
  }
  EXPECT_EQ(vesk::factory::basic::BindingRegistry::size(), before);
}

TEST_F(Scripts, writingThroughAReadOnlyViewIsRefused) {
  Value const comment = make("umlmm.Comment", fModel);
  Value const immutable = comment.call("asImmutable");
  EXPECT_FAILURE("The object is immutable", immutable.set("body", std::u16string(u"x")));
  EXPECT_EQ(comment.get("body").text(), u"");
  immutable.call("asMutable").set("body", std::u16string(u"x"));
  EXPECT_EQ(immutable.get("body").text(), u"x");
  Value const named = make("umlmm.Class", fModel);
  EXPECT_FAILURE("You cannot set a read-only property", named.set("qualifiedName", std::u16string(u"x")));
}

TEST_F(Scripts, castsNarrowOrGiveAnInvalidReference) {
  Value const type = make("umlmm.Class", fModel);
  Value const narrowed = call("umlmm.Classifier", "cast", type);
  EXPECT_EQ(narrowed.instance(), type.instance());
  {
    Value const failed = call("umlmm.Association", "cast", type);
    EXPECT_FALSE(failed.call("isvalid").isTrue());
  }
  Value const readOnly = call("umlmm.ImmutableClassifier", "cast", type);
  EXPECT_EQ(readOnly.className(), "umlmm.ImmutableClass");
  EXPECT_EQ(call("umlmm.ImmutableClassifier", "cast", readOnly).instance(), readOnly.instance());
  Value const invalid = call("umlmm.Association", "isvalid", Empty());
  EXPECT_FALSE(invalid.isTrue());
  EXPECT_FAILURE(kNullRef, call("umlmm.Association", "destroy", Empty()));
  EXPECT_FAILURE("uml_metamodel/umlmm/Classifier_h", call("umlmm.Classifier", "allParents", Empty()));
}

TEST_F(Scripts, destroyTakesTheElementOutOfTheModel) {
  Value const package = make("umlmm.Package", fModel);
  package.call("destroy");
  EXPECT_FALSE(package.call("isvalid").isTrue());
  Value const readOnly = fModel.call("readOnlyVariant");
  Value const other = make("umlmm.Package", fModel);
  EXPECT_FAILURE("cannot be changed", other.call("asDeviant", readOnly).call("destroy"));
  EXPECT_TRUE(other.call("isvalid").isTrue());
}

TEST_F(Scripts, metaObjectsAreTheSameEachTime) {
  Value const comment = make("umlmm.Comment", fModel);
  Value const metaClass = call("umlmm.Comment", "MetaClass");
  EXPECT_EQ(metaClass.className(), "Kelm.ImmutableClass");
  EXPECT_EQ(call("umlmm.ImmutableComment", "MetaClass").instance(), metaClass.instance());
  EXPECT_EQ(comment.call("getMetaType").instance(), metaClass.instance());

  Value const properties = call("umlmm.ImmutableAssociation", "MetaProperty");
  EXPECT_EQ(properties.className(), "umlmm.AssociationMetaProperty");
  EXPECT_NE(call("umlmm.Association", "MetaProperty").instance(), properties.instance());
  Value const property = properties.call("RelatedElement");
  EXPECT_EQ(property.className(), "Kelm.ImmutableProperty");
  EXPECT_EQ(property.get("name").text(), u"relatedElement");
  EXPECT_EQ(call("umlmm.RelationshipMetaProperty", "RelatedElement").instance(), property.instance());
  EXPECT_EQ(call("umlmm.ClassMetaProperty", "IsAbstract").call("owner").get("name").text(), u"Class");
  EXPECT_EQ(call("umlmm.ImageMetaProperty", "Uri").get("name").text(), u"uri");
}

TEST_F(Scripts, optionalValuesReadAndUnset) {
  Value const parameter = make("umlmm.Parameter", fModel);
  Value const visibility = parameter.get("direction");
  EXPECT_EQ(visibility.className(), "umlmm.ParameterDirectionKind");
  EXPECT_EQ(visibility.instance(), call("umlmm.ParameterDirectionKind", "In").instance());
  parameter.set("direction", call("umlmm.ParameterDirectionKind", "fromString", std::u16string(u"Return")));
  EXPECT_EQ(parameter.get("direction").call("toString").text(), u"Return");
  Value const literal = make("umlmm.LiteralUnlimitedNatural", fModel);
  literal.set("value", std::u16string(u"*"));
  EXPECT_EQ(literal.get("value").text(), u"*");
  EXPECT_FAILURE("UnlimitedNatural", literal.set("value", std::u16string(u"many")));
  EXPECT_EQ(literal.get("value").text(), u"*");
}

TEST_F(Scripts, enumerationsCompareByNumber) {
  std::string const kind = "umlmm.AggregationKind";
  Value const none = call(kind, "None"), shared = call(kind, "Shared"), composite = call(kind, "Composite");
  EXPECT_EQ(call(kind, "fromString", std::u16string(u"None")).instance(), none.instance());
  EXPECT_TRUE(composite.call("gt", shared).isTrue());
  EXPECT_FALSE(shared.call("gt", composite).isTrue());
  EXPECT_TRUE(shared.call("le", shared).isTrue());
  EXPECT_TRUE(shared.call("ne", none).isTrue());
  // An empty argument counts as the first literal.
  EXPECT_TRUE(none.call("eq", Empty()).isTrue());
  EXPECT_FALSE(shared.call("eq", Empty()).isTrue());
  EXPECT_TRUE(none.call("isvalid").isTrue());
  EXPECT_EQ(none.call("getMetaDataType").instance(), call(kind, "MetaDataType").instance());
  EXPECT_EQ(none.call("getMetaDataType").className(), "Kelm.ImmutableDataType");

  std::string printed;
  lumSetPrintSink([](char const* text, std::size_t length,
                     void* to) { static_cast<std::string*>(to)->append(text, length); },
                  &printed);
  composite.call("disp");
  lumSetPrintSink(nullptr, nullptr);
  EXPECT_EQ(printed, "Composite\n");
}

TEST_F(Scripts, valueSequencesCountFromOne) {
  Value const numbers = call("umlmm.SequenceOfInteger", "make", fModel);
  for (int number : {10, 20, 10}) numbers.call("append", number);
  EXPECT_EQ(numbers.call("at", 1).number(), 10);
  EXPECT_EQ(numbers.call("at", 3).number(), 10);
  EXPECT_FAILURE("sequence index must be positive", numbers.call("at", 0));
  EXPECT_FAILURE("sequence index out of bounds", numbers.call("at", 4));
  EXPECT_EQ(numbers.call("removeAll", 10).number(), 2);
  EXPECT_EQ(numbers.call("removeAll", 11).number(), 0);
  numbers.call("insert", 2, 30);
  numbers.call("replace", 1, 5);
  EXPECT_FAILURE("sequence index out of bounds", numbers.call("insert", 4, 1));
  EXPECT_EQ(numbers.call("front").number() + numbers.call("back").number(), 35);
  numbers.call("erase", 1);
  EXPECT_EQ(numbers.call("size").number(), 1);

  Value const unique = call("umlmm.SequenceOfString", "makeUnique", Empty());
  unique.call("push_back", std::u16string(u"a"));
  unique.call("push_back", std::u16string(u"a"));
  EXPECT_EQ(unique.call("size").number(), 1);
  EXPECT_FAILURE("Cannot access NULL sequence", call("umlmm.SequenceOfString", "size", Empty()));

  Value const naturals = call("umlmm.SequenceOfUnlimitedNatural", "make", fModel);
  naturals.call("append", std::u16string(u"*"));
  EXPECT_EQ(naturals.call("at", 1).text(), u"*");
}

TEST_F(Scripts, iteratorsWalkAndKeepTheirPlace) {
  Value const kinds = call("umlmm.SequenceOfMessageSort", "make", fModel);
  for (char const* name : {"Reply", "SynchCall"}) kinds.call("append", call("umlmm.MessageSort", name));
  Value const walker = kinds.call("begin");
  EXPECT_EQ(walker.className(), "umlmm.MessageSortIterator");
  Value const mark = walker.call("clone");
  EXPECT_TRUE(walker.call("eq", mark).isTrue());
  walker.call("getNext");
  EXPECT_TRUE(walker.call("ne", mark).isTrue());
  EXPECT_EQ(walker.call("item").call("toString").text(), u"SynchCall");
  EXPECT_EQ(mark.call("item").call("toString").text(), u"Reply");
  walker.call("getNext");
  EXPECT_TRUE(walker.call("eq", kinds.call("end")).isTrue());
  walker.call("getPrev");
  EXPECT_EQ(kinds.call("erase", walker).call("eq", kinds.call("end")).isTrue(), true);
  EXPECT_FAILURE(kNullRef, call("umlmm.MessageSortIterator", "clone", Empty()));
  EXPECT_FAILURE("Invalid or missing object", call("umlmm.MessageSortIterator", "item", Empty()));

  auto const* const hook = kinds.instance()->classRecord().info().getSequenceHook();
  ASSERT_NE(hook, nullptr);
  vesk::VeskValue values[4];
  std::uint64_t stamp = 0;
  ASSERT_EQ(hook->readBlock(kinds.instance(), 0, 4, values, stamp), 1u);
  EXPECT_EQ(vesk::host::Instance::fromArray(values[0].array()),
            call("umlmm.MessageSort", "Reply").instance());
  tarnDestroyArray(values[0].array());
}

TEST_F(Scripts, theFactoryMakesElementsInItsModel) {
  Value const factory = call("umlmm.Factory", "createNewFactory", fModel);
  EXPECT_EQ(factory.className(), "umlmm.Factory");
  Value const specification = factory.call("createLiteralBoolean");
  Value const constraint = factory.call("createConstraint", specification);
  EXPECT_EQ(constraint.className(), "umlmm.Constraint");
  EXPECT_EQ(constraint.get("specification").instance(), specification.instance());
  Value const made = factory.call("createFromString", std::u16string(u"Package"));
  EXPECT_EQ(made.className(), "umlmm.Package");
  EXPECT_FAILURE("uml_metamodel/umlmm/Factory_h", call("umlmm.Factory", "createComment", Empty()));
  EXPECT_FAILURE("uml_metamodel/umlmm/Factory_h",
                 call("umlmm.Factory", "createFromString", Empty(), std::u16string(u"Package")));

  Value const object = factory.call("toKelmObject");
  EXPECT_EQ(call("umlmm.Factory", "cast", object).instance(), factory.instance());
  Value const readOnly = fModel.call("readOnlyVariant");
  Value const locked = call("umlmm.Factory", "createNewFactory", readOnly);
  EXPECT_FAILURE("cannot be changed", locked.call("createComment"));
  EXPECT_TRUE(call("umlmm.ImmutableFactory", "eq", Empty(), Empty()).isTrue());
  EXPECT_FALSE(call("umlmm.ImmutableFactory", "gt", Empty(), Empty()).isTrue());
}

TEST_F(Scripts, queriesAnswerReadOnlyResultsFromBothViews) {
  Value const general = make("umlmm.Class", fModel), special = make("umlmm.Class", fModel);
  make("umlmm.Generalization", fModel, special, general);
  for (Value const& view : {special.call("allParents"), special.call("asImmutable").call("allParents")}) {
    EXPECT_EQ(view.className(), "umlmm.ImmutableSequenceOfImmutableClassifier");
    EXPECT_EQ(view.call("at", 1).className(), "umlmm.ImmutableClass");
  }
  EXPECT_TRUE(special.call("conformsTo", general).isTrue());
  EXPECT_FALSE(general.call("conformsTo", special).isTrue());
}

TEST(Package, metaPackageIsBoundOnce) {
  vesk::host::PackageRecord* const package = umlmm::testing::classNamed("umlmm.Element").package();
  vesk::host::Member const* const function = package->findFunction(vesk::internal::intern("MetaPackage"));
  ASSERT_NE(function, nullptr);
  auto const run = [&] {
    vesk::testing::Arguments none{};
    auto const& method = vesk::host::resolveMethod(*function, vesk::host::CallForm::Function, none, 0);
    return Value(vesk::host::callMethod(method, vesk::host::CallForm::Function, nullptr, none, 0));
  };
  Value const first = run();
  EXPECT_EQ(first.className(), "Kelm.ImmutablePackage");
  EXPECT_EQ(run().instance(), first.instance());
}

}  // namespace
}  // namespace umlmm::mi
