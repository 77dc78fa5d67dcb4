#include "../operations/names.h"

using umlmm::AggregationKind;

class OppositeTest : public NamedModelTest {
 protected:
  umlmm::Package const fPackage = package(u"p");
  umlmm::Class const fPerson = packaged<umlmm::Class>(fPackage, u"Person");
  umlmm::Class const fFirm = packaged<umlmm::Class>(fPackage, u"Firm");
  umlmm::Property const fEmployer = attribute(fPerson, u"employer");
  umlmm::Property const fEmployee = attribute(fFirm, u"employee");
};

TEST_F(OppositeTest, JoiningTwoPropertiesMakesAnAssociationInTheirPackage) {
  EXPECT_TRUE(fEmployer.getOpposite().isNull());
  fEmployer.setOpposite(fEmployee);
  EXPECT_EQ(fEmployer.getOpposite(), fEmployee);
  EXPECT_EQ(fEmployee.getOpposite(), fEmployer);
  auto const association = fEmployer.getAssociation();
  EXPECT_EQ(association.getPackage(), fPackage);
  EXPECT_EQ(listOf(association.getMemberEnd()), "employer employee");
  fEmployer.setOpposite(fEmployee);
  EXPECT_EQ(fPackage.getPackagedElement().size(), 3);
}

TEST_F(OppositeTest, AnAssociationThatIsThereIsUsed) {
  auto const association = make<umlmm::Association>();
  auto const third = attribute(fFirm, u"third");
  association.getMemberEnd().push_back(third);
  association.getMemberEnd().push_back(fEmployee);
  fEmployer.setOpposite(fEmployee);
  EXPECT_EQ(fEmployer.getAssociation(), association);
  EXPECT_EQ(listOf(association.getMemberEnd()), "employee employer");
  EXPECT_TRUE(third.getAssociation().isNull());

  fEmployer.setOpposite(third);
  EXPECT_EQ(listOf(association.getMemberEnd()), "employer third");
  EXPECT_TRUE(fEmployee.getOpposite().isNull());
}

TEST_F(OppositeTest, ClearingLeavesTheAssociationWithOneEnd) {
  fEmployer.setOpposite(fEmployee);
  auto const association = fEmployer.getAssociation();
  fEmployer.setOpposite(umlmm::Property());
  EXPECT_EQ(listOf(association.getMemberEnd()), "employer");
  EXPECT_TRUE(fEmployee.getAssociation().isNull());
  fEmployer.setOpposite(umlmm::Property());
  EXPECT_EQ(listOf(association.getMemberEnd()), "employer");
}

TEST_F(OppositeTest, EndsThatTheAssociationOwnsHaveNoOppositeAndTakeNone) {
  auto const association = make<umlmm::Association>();
  auto const owned = named<umlmm::Property>(u"owned");
  association.getOwnedEnd().push_back(owned);
  association.getMemberEnd().push_back(fEmployer);
  EXPECT_TRUE(fEmployer.getOpposite().isNull());
  EXPECT_NE(failureOf([&] { fEmployee.setOpposite(owned); }), "");
  EXPECT_NE(failureOf([&] { owned.setOpposite(fEmployee); }), "");
  EXPECT_NE(failureOf([&] { fEmployee.setOpposite(fEmployee); }), "");
  EXPECT_EQ(listOf(association.getMemberEnd()), "owned employer");
  EXPECT_EQ(fPackage.getPackagedElement().size(), 2) << "no association was made";
}

TEST_F(OppositeTest, ThreeEndsHaveNoOpposites) {
  auto const association = make<umlmm::Association>();
  for (auto const& end : {fEmployer, fEmployee, attribute(fFirm, u"third")})
    association.getMemberEnd().push_back(end);
  EXPECT_TRUE(fEmployer.getOpposite().isNull());
}

TEST_F(OppositeTest, CompositionIsOneKindOfAggregation) {
  fEmployer.setIsComposite(true);
  EXPECT_EQ(fEmployer.getAggregation(), AggregationKind(AggregationKind::Composite));
  fEmployer.setIsComposite(false);
  EXPECT_EQ(fEmployer.getAggregation(), AggregationKind(AggregationKind::None));
  fEmployer.setAggregation(AggregationKind(AggregationKind::Shared));
  fEmployer.setIsComposite(false);
  EXPECT_EQ(fEmployer.getAggregation(), AggregationKind(AggregationKind::Shared));
  EXPECT_FALSE(fEmployer.getIsComposite().value());
}
