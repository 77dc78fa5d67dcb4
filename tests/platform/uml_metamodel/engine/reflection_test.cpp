#include <algorithm>

#include "kelm/ElementQueries.h"
#include "models.h"

TEST(ReflectionTest, TheMetamodelTellsAboutItself) {
  auto const package = umlmm::MetaPackage();
  EXPECT_EQ(package.get()->getName(), "umlmm");
  ASSERT_EQ(package.get()->classes().size(), 166U);
  EXPECT_EQ(package.get()->dataTypes().size(), 12U);

  auto const metaclass = umlmm::ImmutableClass::MetaClass();
  EXPECT_EQ(metaclass.get()->getQualifiedName(), "umlmm::Class");
  EXPECT_FALSE(metaclass.get()->isAbstract());
  ASSERT_EQ(metaclass.get()->superClasses().size(), 2U);
  EXPECT_EQ(metaclass.get()->superClasses()[0]->getName(), "BehavioredClassifier");
  EXPECT_TRUE(metaclass.get()->conformsTo(*umlmm::ImmutableNamedElement::MetaClass().get()));
  EXPECT_FALSE(umlmm::ImmutableNamedElement::MetaClass().get()->conformsTo(*metaclass.get()));

  auto const& attribute = *metaclass.get()->ownedProperties()[2];
  EXPECT_EQ(attribute.getName(), "ownedAttribute");
  EXPECT_EQ(attribute.getType().getName(), "Property");
  EXPECT_TRUE(attribute.isComposite() && attribute.isOrdered() && attribute.isMultivalued());
  EXPECT_EQ(attribute.getOpposite()->getName(), "class");
  EXPECT_EQ(attribute.redefined()[0]->getOwner().getName(), "StructuredClassifier");
  EXPECT_EQ(attribute.subsetted().size(), 2U);
}

TEST(ReflectionTest, AccessorsRefuseWhatIsNotTheirs) {
  auto const model = Kelm::NSInterface::FactoryIntf::createNewModel();
  auto const comment = umlmm::Comment::create(model);
  auto const& methods = umlmm::NSInterface::ClassIntf::sIntrospectiveMethods;
  EXPECT_NE(failureOf([&] { methods.getEntry(comment.get(), model.getDeviant(), 4); }).find("has no feature"),
            std::string::npos);
  EXPECT_NE(failureOf([&] {
              methods.getEntry(comment.get(), model.getDeviant(), 99);
            }).find(Kelm::words::kInvalidMetaPropertyId),
            std::string::npos);
  EXPECT_EQ(methods.metaPropertyTable[0].fProperty, nullptr);
  EXPECT_EQ(methods.metaPropertyTable[1].fProperty->getName(), "isAbstract");
}

using QueryTest = ModelTest;

TEST_F(QueryTest, ElementsKnowWhoRefersToThem) {
  auto const type = make<umlmm::Class>();
  auto const property = make<umlmm::Property>();
  auto const comment = make<umlmm::Comment>();
  property.setType(type);
  comment.getAnnotatedElement().push_back(type);
  auto const& queries = Kelm::elementQueries();
  auto const referrers = [&] {
    auto const found = Kelm::Sequence<Kelm::Object>::adopt(
        queries.referencedBy(*type.get(), fModel.getDeviant()), fModel.getDeviant());
    return valuesOf(found);
  };
  ASSERT_EQ(referrers().size(), 2U);
  property.setType(umlmm::Type());
  ASSERT_EQ(referrers().size(), 1U) << "kept up to date after the first question";
  EXPECT_EQ(referrers()[0].get(), comment.get());
}

TEST_F(QueryTest, TheModelListsInstancesOfAClassAndBelow) {
  make<umlmm::Class>();
  auto const instances = [&] {
    auto const metaclass = umlmm::ImmutableClassifier::MetaClass();
    return Kelm::Sequence<Kelm::Object>::adopt(
               Kelm::elementQueries().instancesOf(fModel.object(), fModel.getDeviant(), *metaclass.get()),
               fModel.getDeviant())
        .size();
  };
  EXPECT_EQ(instances(), 1);
  auto const component = make<umlmm::Component>();
  make<umlmm::Comment>();
  EXPECT_EQ(instances(), 2);
  component.destroy();
  EXPECT_EQ(instances(), 1);
}
