#include "names.h"

using umlmm::Integer;
using umlmm::UnlimitedNatural;

class MultiplicityTest : public NamedModelTest {
 protected:
  static constexpr int kUnlimited = -1;

  umlmm::Property bounded(int aLower, int aUpper) const {
    auto const property = make<umlmm::Property>();
    property.setLower(Integer(aLower));
    property.setUpper(UnlimitedNatural(static_cast<std::uint32_t>(aUpper)));
    return property;
  }
};

TEST_F(MultiplicityTest, BoundsComeFromTheValues) {
  auto const property = make<umlmm::Property>();
  EXPECT_EQ(property.lowerBound().value(), 1);
  EXPECT_EQ(property.upperBound().value(), 1U);
  EXPECT_EQ(make<umlmm::ExtensionEnd>().lowerBound().value(), 0);

  auto const natural = make<umlmm::LiteralUnlimitedNatural>();
  natural.setValue(UnlimitedNatural(7));
  property.setLowerValue(natural);
  EXPECT_EQ(property.lowerBound().value(), 7);
  natural.setValue(UnlimitedNatural(UnlimitedNatural::kUnlimited));
  EXPECT_EQ(property.lowerBound().value(), 1) << "no integer";

  auto const integer = make<umlmm::LiteralInteger>();
  property.setUpperValue(integer);
  EXPECT_EQ(property.upperBound().value(), 0U);
  integer.setValue(Integer(-1));
  EXPECT_TRUE(property.upperBound().isUnlimited());
  integer.setValue(Integer(-2));
  EXPECT_EQ(property.upperBound().value(), 1U) << "no natural number";
  property.setUpperValue(make<umlmm::OpaqueExpression>());
  EXPECT_EQ(property.upperBound().value(), 1U);
}

TEST_F(MultiplicityTest, CardinalitiesLieBetweenTheBounds) {
  auto const some = bounded(1, 3);
  for (int const cardinality : {1, 3}) EXPECT_TRUE(some.includesCardinality(cardinality).value());
  for (int const cardinality : {-1, 0, 4}) EXPECT_FALSE(some.includesCardinality(cardinality).value());
  auto const any = bounded(0, kUnlimited);
  EXPECT_TRUE(any.includesCardinality(0).value());
  EXPECT_TRUE(any.includesCardinality(2000000000).value());
  EXPECT_FALSE(any.includesCardinality(-1).value());
  EXPECT_FALSE(bounded(-3, 2).includesCardinality(-1).value());
  EXPECT_TRUE(any.isMultivalued().value());
  EXPECT_TRUE(some.isMultivalued().value());
  EXPECT_FALSE(bounded(0, 1).isMultivalued().value());
}

TEST_F(MultiplicityTest, UnlimitedIsGreaterThanEveryNumberAndEqualToItself) {
  auto const any = bounded(0, kUnlimited);
  auto const some = bounded(1, 3);
  EXPECT_TRUE(any.includesMultiplicity(any).value());
  EXPECT_TRUE(any.includesMultiplicity(some).value());
  EXPECT_FALSE(some.includesMultiplicity(any).value());
  EXPECT_FALSE(some.includesMultiplicity(bounded(0, 2)).value());
  EXPECT_FALSE(some.includesMultiplicity(umlmm::ImmutableMultiplicityElement()).value());
  EXPECT_TRUE(any.is(0, kUnlimited).value());
  EXPECT_TRUE(some.is(1, 3).value());
  EXPECT_FALSE(some.is(1, kUnlimited).value());
  EXPECT_FALSE(any.is(0, -2).value());
}

TEST_F(MultiplicityTest, CompatibilityAsksTheOtherMultiplicity) {
  auto const some = bounded(1, 3);
  EXPECT_TRUE(some.compatibleWith(bounded(0, kUnlimited)).value());
  EXPECT_FALSE(bounded(0, kUnlimited).compatibleWith(some).value());
  EXPECT_TRUE(bounded(5, 2).compatibleWith(some).value()) << "it includes nothing";
  EXPECT_FALSE(bounded(5, 2).compatibleWith(umlmm::ImmutableMultiplicityElement()).value());
}

TEST_F(MultiplicityTest, LiteralsComputeTheirOwnValue) {
  auto const number = make<umlmm::LiteralInteger>();
  number.setValue(Integer(-5));
  auto const truth = make<umlmm::LiteralBoolean>();
  truth.setValue(true);
  auto const text = make<umlmm::LiteralString>();
  EXPECT_TRUE(text.stringValue().empty());
  text.setValue(umlmm::String(std::u16string(u"text")));
  auto const natural = make<umlmm::LiteralUnlimitedNatural>();
  EXPECT_EQ(natural.unlimitedValue().value(), 0U);
  natural.setValue(UnlimitedNatural(UnlimitedNatural::kUnlimited));

  EXPECT_EQ(number.integerValue().value(), -5);
  EXPECT_TRUE(truth.booleanValue().value());
  EXPECT_EQ(text.stringValue().to_string(), "text");
  EXPECT_TRUE(natural.unlimitedValue().isUnlimited());
  EXPECT_TRUE(make<umlmm::LiteralNull>().isNull().value());
  std::vector<umlmm::ImmutableValueSpecification> const literals{number, truth, text, natural,
                                                                 make<umlmm::LiteralNull>()};
  for (auto const& literal : literals) EXPECT_TRUE(literal.isComputable().value());
  EXPECT_EQ(literals[1].integerValue().value(), 0);
  EXPECT_TRUE(literals[0].stringValue().empty());
  EXPECT_EQ(literals[0].unlimitedValue().value(), 0U);
}

TEST_F(MultiplicityTest, ExpressionsComputeNothing) {
  auto const expression = make<umlmm::OpaqueExpression>();
  EXPECT_FALSE(expression.isComputable().value());
  EXPECT_FALSE(expression.isNull().value());
  EXPECT_FALSE(expression.isIntegral().value());
  EXPECT_FALSE(expression.isPositive().value());
  EXPECT_FALSE(expression.isNonNegative().value());
  EXPECT_EQ(expression.value().value(), 0);
}
