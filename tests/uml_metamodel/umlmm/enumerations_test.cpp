#include <gtest/gtest.h>

#include "uml_metamodel/umlmm/AggregationKind.h"
#include "uml_metamodel/umlmm/InteractionOperatorKind.h"
#include "uml_metamodel/umlmm/VisibilityKind.h"

namespace {

template <class E>
class Enumerations : public testing::Test {};
using Kinds = testing::Types<umlmm::AggregationKind, umlmm::InteractionOperatorKind, umlmm::VisibilityKind>;
TYPED_TEST_SUITE(Enumerations, Kinds);

TYPED_TEST(Enumerations, TravelAsTextAndAsOneObjectALiteral) {
  int const count = static_cast<int>(std::size(TypeParam::kLiterals));
  for (int number = 0; number < count; ++number) {
    TypeParam const literal(number);
    EXPECT_EQ(TypeParam::fromString(literal.toString().to_string()), literal);
    Kelm::Object const object = literal;
    EXPECT_EQ(object, Kelm::Object(TypeParam(number)));
    EXPECT_EQ(TypeParam(object), literal);
    EXPECT_EQ(literal.number(), number);
  }
  EXPECT_LT(TypeParam(0), TypeParam(count - 1));
}

TYPED_TEST(Enumerations, RefuseWhatIsNoLiteral) {
  EXPECT_THROW(TypeParam::fromString("no such literal"), Kelm::Exception);
  EXPECT_THROW(TypeParam{Kelm::Object()}, Kelm::Exception);
  EXPECT_EQ(TypeParam(99).toString().to_string(), "99");
}

TEST(Enumerations, DoNotMix) {
  Kelm::Object const shared = umlmm::AggregationKind(umlmm::AggregationKind::Shared);
  EXPECT_THROW(umlmm::VisibilityKind{shared}, Kelm::Exception);
  EXPECT_EQ(umlmm::AggregationKind::fromString("shared"), umlmm::AggregationKind::Shared);
}

}  // namespace
