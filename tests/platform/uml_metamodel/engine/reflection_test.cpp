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
