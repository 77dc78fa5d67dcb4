#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "kelm/ModelCache.h"
#include "platform/kelm/support/failure.h"
#include "uml_metamodel/umlmm.h"

namespace {

using namespace std::string_literals;

template <class From, class To>
constexpr bool kConverts = std::is_convertible_v<From, To>;

static_assert(sizeof(umlmm::ImmutableInteraction) == 2 * sizeof(void*) &&
              sizeof(umlmm::Interaction) == 2 * sizeof(void*) && sizeof(umlmm::Factory) == 2 * sizeof(void*));
// Up in the metamodel and from changeable to read-only, but never back.
static_assert(kConverts<umlmm::Class, umlmm::Classifier> &&
              kConverts<umlmm::Class, umlmm::ImmutableNamedElement> &&
              kConverts<umlmm::ImmutableClass, umlmm::ImmutableType>);
static_assert(!kConverts<umlmm::Classifier, umlmm::Class> &&
              !kConverts<umlmm::ImmutableClass, umlmm::Class> &&
              !kConverts<umlmm::ImmutableClass, umlmm::Classifier> &&
              !kConverts<umlmm::Class, umlmm::ImmutableAssociation>);

class References : public testing::Test {
 protected:
  Kelm::Model fModel = Kelm::NSInterface::FactoryIntf::createNewModel();
};

TEST_F(References, NullOnesRaiseWithTheHeaderOfTheirMetaclass) {
  auto const expectAt = [](std::string const& aFailure, std::string const& aSource) {
    EXPECT_NE(aFailure.find(Kelm::words::kNullReference), std::string::npos) << aFailure;
    EXPECT_NE(aFailure.find(" at " + aSource + ":"), std::string::npos) << aFailure;
  };
  expectAt(failureOf([] { umlmm::ImmutableClass().allFeatures(); }), "uml_metamodel/umlmm/Classifier_h");
  expectAt(failureOf([] { umlmm::Comment().setBody(umlmm::String(u"text")); }),
           "uml_metamodel/umlmm/Comment_h");
  expectAt(failureOf([] { umlmm::ImmutableModel().visibleMembers(); }), "uml_metamodel/umlmm/MPackage_h");
  expectAt(failureOf([] { umlmm::Comment().destroy(); }), "uml_metamodel/umlmm/Comment_h");
  expectAt(failureOf([] { umlmm::Factory().createComment(); }), "uml_metamodel/umlmm/Factory_h");
  expectAt(failureOf([] { umlmm::Comment::create(Kelm::Model()); }), "kelm/Kelm/Model_h");
  EXPECT_FALSE(umlmm::ImmutableClass().isvalid());
}

TEST_F(References, ReadWhatWasSetInEveryKindOfFeature) {
  auto const type = umlmm::Class::create(fModel);
  auto const property = umlmm::Property::create(fModel);
  property.setName(umlmm::String(u"size"));
  property.setIsDerived(true);
  property.setAggregation(umlmm::AggregationKind::Composite);
  property.setType(type);
  EXPECT_EQ(property.getName().to_string(), "size");
  EXPECT_EQ(property.getIsDerived(), true);
  EXPECT_EQ(property.getAggregation(), umlmm::AggregationKind::Composite);
  EXPECT_EQ(property.getType(), umlmm::Type(type));
  property.setName(umlmm::String());
  property.setType(umlmm::Type());
  EXPECT_TRUE(property.getName().empty());
  EXPECT_TRUE(property.getType().isNull());
}

TEST_F(References, OptionalValuesCanBeAbsent) {
  auto const generalization = umlmm::Generalization::create(fModel);
  ASSERT_TRUE(generalization.getIsSubstitutable().has_value());
  generalization.setIsSubstitutable(std::nullopt);
  EXPECT_FALSE(generalization.getIsSubstitutable().has_value());
  generalization.setIsSubstitutable(umlmm::Boolean(false));
  EXPECT_EQ(generalization.getIsSubstitutable(), umlmm::Boolean(false));
}

TEST_F(References, ChangeableOnesAnswerChangeableOnes) {
  auto const owner = umlmm::Class::create(fModel);
  auto const property = umlmm::Property::create(fModel);
  owner.getOwnedAttribute().push_back(property);
  static_assert(std::is_same_v<decltype(owner.getOwnedAttribute()), Kelm::Sequence<umlmm::Property>>);
  static_assert(std::is_same_v<decltype(umlmm::ImmutableClass(owner).getOwnedAttribute()),
                               Kelm::ImmutableSequence<umlmm::ImmutableProperty>>);
  EXPECT_EQ(property.getClass(), owner);
  EXPECT_EQ(umlmm::ImmutableClass(owner).getOwnedAttribute().front(), umlmm::ImmutableProperty(property));
  owner.setOwnedAttribute({});
  EXPECT_TRUE(owner.getOwnedAttribute().empty());
  EXPECT_TRUE(property.getClass().isNull());
}

TEST_F(References, ARedefinedFeatureHidesTheOneItRedefines) {
  auto const end = umlmm::ExtensionEnd::create(fModel);
  auto const extension = umlmm::Extension::create(fModel, end);
  static_assert(std::is_same_v<decltype(extension.getOwnedEnd()), umlmm::ExtensionEnd>);
  EXPECT_EQ(extension.getOwnedEnd(), end);
  EXPECT_EQ(umlmm::Association(extension).getOwnedEnd().size(), 1);
}

TEST_F(References, AFactoryMakesElementsInItsModel) {
  auto const factory = umlmm::Factory::createNewFactory(fModel);
  auto const general = factory.createClass();
  auto const special = factory.createClass();
  auto const generalization = factory.createGeneralization(special, general);
  EXPECT_EQ(generalization.getSpecific(), umlmm::Classifier(special));
  EXPECT_TRUE(special.conformsTo(general).value());
  generalization.destroy();
  EXPECT_FALSE(generalization.isvalid());
  EXPECT_FALSE(special.conformsTo(general).value());
}

TEST_F(References, TakeTextsAsUtf16AndUtf8) {
  auto const comment = umlmm::Comment::create(fModel);
  std::string const narrow = "gr\u00fc\u00df dich \U0001F600";
  for (umlmm::String const& text : {umlmm::String(narrow), umlmm::String(u"gr\u00fc\u00df dich \U0001F600"),
                                    umlmm::String(std::u16string_view(Kelm::toUtf16(narrow)))}) {
    comment.setBody(text);
    EXPECT_EQ(comment.getBody().to_string(), narrow);
  }
  comment.setBody("");
  EXPECT_TRUE(comment.getBody().empty());
}

TEST_F(References, ARangeForOverAListAllowsChangesOnTheWay) {
  auto const package = umlmm::Package::create(fModel);
  for (char const* name : {"a", "b", "c"}) {
    auto const cls = umlmm::Class::create(fModel);
    cls.setName(name);
    package.getPackagedElement().push_back(cls);
  }
  std::string names;
  for (umlmm::PackageableElement const& element : package.getPackagedElement()) {
    if (names.empty()) package.getPackagedElement().front().setName("first");
    if (names.empty()) package.getPackagedElement().erase(2);
    names += element.getName().to_string() + " ";
  }
  EXPECT_EQ(names, "first b ");
}

TEST_F(References, NarrowOnlyToWhatTheElementIs) {
  umlmm::Type const type = umlmm::Class::create(fModel);
  EXPECT_EQ(umlmm::cast<umlmm::Class>(type).getDeviant(), fModel.getDeviant());
  EXPECT_TRUE(umlmm::cast<umlmm::Class>(type).isvalid());
  EXPECT_TRUE(umlmm::cast<umlmm::Association>(type).isNull());
  EXPECT_EQ(umlmm::metaclassName(type), "Class");
  auto const narrows = []<class X, class From>(X*, From*) {
    return requires(From const& aFrom) { umlmm::cast<X>(aFrom); };
  };
  EXPECT_TRUE(narrows((umlmm::ImmutableClass*)nullptr, (umlmm::ImmutableType*)nullptr));
  EXPECT_FALSE(narrows((umlmm::Class*)nullptr, (umlmm::ImmutableType*)nullptr));
}

TEST_F(References, QuestionsToAModelRaiseWhenItIsGone) {
  auto const cls = umlmm::Class::create(fModel);
  auto const property = umlmm::Property::create(fModel);
  property.setType(cls);
  ASSERT_EQ(umlmm::referencedBy(cls).size(), 1);
  EXPECT_EQ(umlmm::referencedBy(cls).front(), umlmm::Element(property));
  EXPECT_EQ(umlmm::instancesOf<umlmm::ImmutableNamedElement>(fModel).size(), 2);
  property.destroy();
  EXPECT_TRUE(umlmm::referencedBy(cls).empty());
  EXPECT_NE(failureOf([&] { umlmm::referencedBy(property); }).find(Kelm::words::kNotInVariant),
            std::string::npos);
  fModel.object().close();
  EXPECT_NE(failureOf([&] { umlmm::instancesOf<umlmm::Class>(fModel); }).find(Kelm::words::kNotInVariant),
            std::string::npos);
  EXPECT_NE(failureOf([] { umlmm::instancesOf<umlmm::Class>({}); }).find(Kelm::words::kNullReference),
            std::string::npos);
}

}  // namespace
