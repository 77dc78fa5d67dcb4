#include "../operations/names.h"

using umlmm::Integer;
using umlmm::UnlimitedNatural;

class BoundsTest : public ModelTest {
 protected:
  umlmm::Property const fProperty = make<umlmm::Property>();
};

TEST_F(BoundsTest, AFreshBoundReadsAsItsDefault) {
  EXPECT_EQ(fProperty.getLower()->value(), 1);
  EXPECT_EQ(fProperty.getUpper()->value(), 1U);
  auto const end = make<umlmm::ExtensionEnd>();
  EXPECT_EQ(end.getLower()->value(), 0);
  EXPECT_EQ(static_cast<umlmm::ImmutableMultiplicityElement>(end).getLower()->value(), 0);
  EXPECT_EQ(end.getUpper()->value(), 1U);
  EXPECT_EQ(fProperty.getLowerValue().get(), nullptr);
}

TEST_F(BoundsTest, AWrittenBoundStandsInALiteral) {
  fProperty.setLower(Integer(3));
  auto const literal =
      Kelm::queryHandle<umlmm::LiteralInteger, umlmm::VisitationDomain>(fProperty.getLowerValue());
  ASSERT_NE(literal.get(), nullptr);
  EXPECT_EQ(literal.getValue().value(), 3);
  EXPECT_EQ(literal.getOwner().get(), static_cast<umlmm::ImmutableElement>(fProperty).get());
  fProperty.setLower(Integer(5));
  EXPECT_EQ(literal.getValue().value(), 5) << "changed in place";
  literal.setValue(Integer(-2));
  EXPECT_EQ(fProperty.getLower()->value(), -2);

  fProperty.setUpper(UnlimitedNatural(UnlimitedNatural::kUnlimited));
  EXPECT_TRUE(fProperty.getUpper()->isUnlimited());
}

TEST_F(BoundsTest, ALiteralTakesThePlaceOfOtherValues) {
  auto const expression = make<umlmm::OpaqueExpression>();
  fProperty.setUpperValue(expression);
  EXPECT_FALSE(fProperty.getUpper());
  fProperty.setUpper(UnlimitedNatural(4));
  EXPECT_EQ(fProperty.getUpper()->value(), 4U);
  EXPECT_FALSE(expression.isvalid());
}

TEST_F(BoundsTest, AnUnsetBoundStaysAbsent) {
  fProperty.setLower(std::nullopt);
  EXPECT_FALSE(fProperty.getLower());
  EXPECT_EQ(fProperty.lowerBound().value(), 1);
  fProperty.setUpper(UnlimitedNatural(2));
  auto const literal = fProperty.getUpperValue();
  fProperty.setUpper(std::nullopt);
  EXPECT_FALSE(fProperty.getUpper());
  EXPECT_FALSE(literal.isvalid());
  fProperty.setLower(Integer(0));
  EXPECT_EQ(fProperty.getLower()->value(), 0);
}

TEST_F(BoundsTest, ABoundIsAbsentOnceItsValueWasTakenAway) {
  auto const literal = make<umlmm::LiteralInteger>();
  fProperty.setLowerValue(literal);
  make<umlmm::Property>().setLowerValue(literal);
  EXPECT_FALSE(fProperty.getLower()) << "moved to another owner";
  auto const natural = make<umlmm::LiteralUnlimitedNatural>();
  fProperty.setUpperValue(natural);
  natural.destroy();
  EXPECT_FALSE(fProperty.getUpper());
}

TEST_F(BoundsTest, ABoundRefusesWhatIsNoNumber) {
  auto const& methods = umlmm::NSInterface::MultiplicityElementIntf::sIntrospectiveMethods;
  constexpr unsigned kLower = 4;
  auto* const element = fProperty.get();
  EXPECT_NE(
      failureOf([&] { methods.setEntry(element, fProperty.getDeviant(), kLower, umlmm::Boolean(true)); }),
      "");
  EXPECT_EQ(fProperty.getLower()->value(), 1);
  EXPECT_EQ(fProperty.getLowerValue().get(), nullptr);
}
