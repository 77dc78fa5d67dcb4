#include "names.h"

// What scripts do not see of queries: answers that C++ keeps, and queries that are not published.

using HandlesTest = NamedModelTest;

TEST_F(HandlesTest, AnAnswerOutlivesWhatItFound) {
  auto const owner = make<umlmm::Class>();
  // Nobody else holds the attributes.
  for (int number = 0; number < 2; ++number) owner.getOwnedAttribute().push_back(make<umlmm::Property>());
  auto const found = owner.allOwnedElements();
  owner.getOwnedAttribute().at(0).destroy();
  auto const later = owner.allOwnedElements();
  EXPECT_FALSE(found.at(0).isvalid());
  EXPECT_TRUE(found.at(1).isvalid());
  fModel.object().close();
  EXPECT_FALSE(found.at(1).isvalid());
  EXPECT_FALSE(later.front().isvalid());
}

TEST_F(HandlesTest, ExpressionsAreNotComputable) {
  auto const expression = make<umlmm::OpaqueExpression>();
  EXPECT_FALSE(expression.isComputable().value());
  EXPECT_FALSE(expression.isNull().value());
  for (umlmm::ImmutableValueSpecification const& literal :
       {umlmm::ImmutableValueSpecification(make<umlmm::LiteralNull>()),
        umlmm::ImmutableValueSpecification(make<umlmm::LiteralInteger>())})
    EXPECT_TRUE(literal.isComputable().value()) << "asked as what it generally is";
}
