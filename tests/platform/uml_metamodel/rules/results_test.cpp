#include "../operations/names.h"

using umlmm::Integer;
using umlmm::ParameterDirectionKind;
using umlmm::UnlimitedNatural;

class ResultsTest : public NamedModelTest {
 protected:
  umlmm::Parameter parameter(char16_t const* aName, ParameterDirectionKind aDirection) const {
    auto const made = named<umlmm::Parameter>(aName);
    made.setDirection(aDirection);
    fOperation.getOwnedParameter().push_back(made);
    return made;
  }

  umlmm::Operation const fOperation = make<umlmm::Operation>();
};

TEST_F(ResultsTest, AnOperationWithoutAResultHasNeutralAnswers) {
  EXPECT_FALSE(fOperation.getIsOrdered().value());
  EXPECT_TRUE(fOperation.getIsUnique().value());
  EXPECT_FALSE(fOperation.getLower());
  EXPECT_FALSE(fOperation.getUpper());
  EXPECT_TRUE(fOperation.getType().isNull());
  fOperation.setLower(std::nullopt);
  fOperation.setType(umlmm::Type());
  EXPECT_TRUE(fOperation.getOwnedParameter().empty()) << "unsetting makes no parameter";
}

TEST_F(ResultsTest, TheFirstReturnParameterCounts) {
  parameter(u"in", ParameterDirectionKind(ParameterDirectionKind::In)).setUpper(UnlimitedNatural(9));
  auto const first = parameter(u"first", ParameterDirectionKind(ParameterDirectionKind::Return));
  parameter(u"second", ParameterDirectionKind(ParameterDirectionKind::Return)).setUpper(UnlimitedNatural(8));
  EXPECT_EQ(fOperation.getUpper()->value(), 1U);
  fOperation.setUpper(UnlimitedNatural(5));
  EXPECT_EQ(first.getUpper()->value(), 5U);
  fOperation.setUpper(std::nullopt);
  EXPECT_FALSE(first.getUpper());
  fOperation.setIsUnique(false);
  EXPECT_FALSE(first.getIsUnique().value());
}

TEST_F(ResultsTest, AWriteMakesTheReturnParameter) {
  auto const type = named<umlmm::Class>(u"Type");
  parameter(u"in", ParameterDirectionKind(ParameterDirectionKind::In));
  fOperation.setType(type);
  ASSERT_EQ(fOperation.getOwnedParameter().size(), 2);
  auto const made = fOperation.getOwnedParameter().back();
  EXPECT_EQ(made.getDirection(), ParameterDirectionKind(ParameterDirectionKind::Return));
  EXPECT_TRUE(made.getName().empty());
  fOperation.setIsOrdered(true);
  fOperation.setLower(Integer(0));
  EXPECT_EQ(fOperation.getOwnedParameter().size(), 2);
  EXPECT_TRUE(made.getIsOrdered().value());
  fOperation.setType(umlmm::Type());
  EXPECT_TRUE(made.isvalid());
  EXPECT_TRUE(made.getType().isNull());
}

TEST_F(ResultsTest, ARefusedWriteMakesNoParameter) {
  auto const& methods = umlmm::NSInterface::OperationIntf::sIntrospectiveMethods;
  constexpr unsigned kIsOrdered = 2;
  constexpr unsigned kLower = 4;
  constexpr unsigned kType = 12;
  auto const write = [&](unsigned aId, Kelm::Object const& aValue) {
    return failureOf([&] { methods.setEntry(fOperation.get(), fOperation.getDeviant(), aId, aValue); });
  };
  EXPECT_NE(write(kIsOrdered, Integer(1)), "");
  EXPECT_NE(write(kLower, umlmm::String()), "");
  EXPECT_NE(write(kType, umlmm::detail::asObject(make<umlmm::Comment>())), "");
  EXPECT_NE(write(kType, Integer(1)), "");
  EXPECT_TRUE(fOperation.getOwnedParameter().empty());
}

TEST_F(ResultsTest, AnExpressionHasTheResultOfItsBehavior) {
  auto const expression = make<umlmm::OpaqueExpression>();
  auto const behavior = make<umlmm::OpaqueBehavior>();
  EXPECT_TRUE(expression.getResult().isNull());
  expression.setBehavior(behavior);
  EXPECT_TRUE(expression.getResult().isNull());
  auto const result = named<umlmm::Parameter>(u"result");
  behavior.getOwnedParameter().push_back(named<umlmm::Parameter>(u"in"));
  behavior.getOwnedParameter().push_back(result);
  result.setDirection(ParameterDirectionKind(ParameterDirectionKind::Return));
  EXPECT_EQ(nameOf(expression.getResult()), "result");
}
