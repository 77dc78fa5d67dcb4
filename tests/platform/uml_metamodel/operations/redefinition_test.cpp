#include "names.h"

using umlmm::AggregationKind;
using umlmm::Integer;
using umlmm::UnlimitedNatural;

class RedefinitionTest : public NamedModelTest {
 protected:
  RedefinitionTest() { generalize(fSpecial, fGeneral); }

  umlmm::Parameter parameter(umlmm::Operation const& aOperation, umlmm::Type const& aType) const {
    auto const made = make<umlmm::Parameter>();
    aOperation.getOwnedParameter().push_back(made);
    made.setType(aType);
    return made;
  }

  umlmm::Class const fGeneral = named<umlmm::Class>(u"General");
  umlmm::Class const fSpecial = named<umlmm::Class>(u"Special");
};

TEST_F(RedefinitionTest, TheContextMustBeAProperDescendant) {
  auto const general = attribute(fGeneral, u"x");
  auto const special = attribute(fSpecial, u"y");
  EXPECT_TRUE(special.isRedefinitionContextValid(general).value());
  EXPECT_FALSE(general.isRedefinitionContextValid(special).value());
  EXPECT_FALSE(special.isRedefinitionContextValid(attribute(fSpecial, u"z")).value())
      << "the same classifier";
  EXPECT_FALSE(make<umlmm::Property>().isRedefinitionContextValid(general).value()) << "no context";
  EXPECT_FALSE(special.isRedefinitionContextValid(umlmm::ImmutableRedefinableElement()).value());
}

TEST_F(RedefinitionTest, AnOperationIsRedefinedByOneWithConformingParameters) {
  auto const general = operation(fGeneral, u"run");
  auto const special = operation(fSpecial, u"run");
  EXPECT_TRUE(general.isConsistentWith(special).value());
  EXPECT_FALSE(special.isConsistentWith(general).value());

  parameter(general, fGeneral);
  EXPECT_FALSE(general.isConsistentWith(special).value()) << "another number of parameters";
  auto const narrowed = parameter(special, fSpecial);
  EXPECT_TRUE(general.isConsistentWith(special).value());
  narrowed.setType(named<umlmm::Class>(u"Stranger"));
  EXPECT_FALSE(general.isConsistentWith(special).value());
  narrowed.setType(umlmm::Type());
  EXPECT_FALSE(general.isConsistentWith(special).value()) << "one type is absent";
  EXPECT_FALSE(general.isConsistentWith(attribute(fSpecial, u"x")).value());
  EXPECT_FALSE(general.isConsistentWith(umlmm::ImmutableRedefinableElement()).value());
}

TEST_F(RedefinitionTest, APropertyIsRedefinedByANarrowerOne) {
  auto const general = attribute(fGeneral, u"x");
  auto const special = attribute(fSpecial, u"x");
  EXPECT_TRUE(general.isConsistentWith(special).value());
  general.setIsComposite(true);
  EXPECT_FALSE(general.isConsistentWith(special).value());
  special.setAggregation(AggregationKind(AggregationKind::Composite));
  EXPECT_TRUE(general.isConsistentWith(special).value());
  general.setIsDerived(true);
  EXPECT_FALSE(general.isConsistentWith(special).value());
  special.setIsDerived(true);
  special.setUpper(UnlimitedNatural(2));
  EXPECT_FALSE(general.isConsistentWith(special).value());
  general.setUpper(UnlimitedNatural(UnlimitedNatural::kUnlimited));
  EXPECT_TRUE(general.isConsistentWith(special).value());
  special.setLower(Integer(0));
  EXPECT_FALSE(general.isConsistentWith(special).value());
}

TEST_F(RedefinitionTest, OtherElementsAreConsistentWithNothing) {
  auto const nested = named<umlmm::Class>(u"Nested");
  fGeneral.getNestedClassifier().push_back(nested);
  auto const narrower = named<umlmm::Class>(u"Narrower");
  fSpecial.getNestedClassifier().push_back(narrower);
  EXPECT_TRUE(narrower.isRedefinitionContextValid(nested).value());
  EXPECT_FALSE(nested.isConsistentWith(narrower).value());
}
