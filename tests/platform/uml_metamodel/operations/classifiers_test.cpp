#include "names.h"

class ClassifiersTest : public NamedModelTest {
 protected:
  umlmm::Class const fA = named<umlmm::Class>(u"A");
  umlmm::Class const fB = named<umlmm::Class>(u"B");
  umlmm::Class const fC = named<umlmm::Class>(u"C");
  umlmm::Class const fD = named<umlmm::Class>(u"D");
};

TEST_F(ClassifiersTest, AllParentsComeNearestFirstAndEachOnce) {
  auto const e = named<umlmm::Class>(u"E");
  auto const f = named<umlmm::Class>(u"F");
  auto const g = named<umlmm::Class>(u"G");
  generalize(fA, fB);
  generalize(fA, fC);
  generalize(fB, fC);
  generalize(fB, fD);
  generalize(fC, e);
  generalize(fD, f);
  generalize(e, g);
  generalize(fA, fB);
  EXPECT_EQ(listOf(fA.parents()), "B C");
  EXPECT_EQ(listOf(fA.allParents()), "B C D E G F") << "all of C before those of D";
  EXPECT_TRUE(g.allParents().empty());
}

TEST_F(ClassifiersTest, AGeneralizationThatLeadsNowhereIsNoParent) {
  fA.getGeneralization().push_back(make<umlmm::Generalization>());
  generalize(fA, fB);
  EXPECT_EQ(listOf(fA.parents()), "B");
  EXPECT_EQ(listOf(fA.allParents()), "B");
}

TEST_F(ClassifiersTest, InACircleAClassifierIsItsOwnParent) {
  generalize(fA, fB);
  generalize(fB, fC);
  generalize(fC, fA);
  generalize(fD, fA);
  EXPECT_EQ(listOf(fA.allParents()), "B C A");
  EXPECT_EQ(listOf(fD.allParents()), "A B C");
  generalize(fD, fD);
  EXPECT_EQ(listOf(fD.allParents()), "A D B C");
}

TEST_F(ClassifiersTest, ConformanceFollowsGeneralizationsUpwards) {
  generalize(fA, fB);
  generalize(fB, fC);
  EXPECT_TRUE(fA.conformsTo(fA).value());
  EXPECT_TRUE(fA.conformsTo(fC).value());
  EXPECT_FALSE(fC.conformsTo(fA).value());
  EXPECT_FALSE(fA.conformsTo(umlmm::ImmutableClassifier()).value());
  umlmm::ImmutableType const type = fA;
  EXPECT_TRUE(type.conformsTo(umlmm::ImmutableType(fC)).value());
  EXPECT_FALSE(type.conformsTo(umlmm::ImmutableType()).value());
}

TEST_F(ClassifiersTest, AMetaclassMaySpecializeItselfAndThoseAboveIt) {
  auto const component = make<umlmm::Component>();
  EXPECT_TRUE(component.maySpecializeType(fA).value());
  EXPECT_TRUE(fA.maySpecializeType(fB).value());
  EXPECT_FALSE(fA.maySpecializeType(component).value());
  EXPECT_FALSE(fA.maySpecializeType(umlmm::ImmutableClassifier()).value());
}

TEST_F(ClassifiersTest, IncludedUseCasesAreFollowedThroughCircles) {
  auto const login = named<umlmm::UseCase>(u"login");
  auto const check = named<umlmm::UseCase>(u"check");
  auto const log = named<umlmm::UseCase>(u"log");
  umlmm::Include::create(fModel, login, check);
  umlmm::Include::create(fModel, login, log);
  umlmm::Include::create(fModel, check, log);
  EXPECT_EQ(listOf(login.allIncludedUseCases()), "check log");
  umlmm::Include::create(fModel, log, login);
  EXPECT_EQ(listOf(login.allIncludedUseCases()), "check log login");
  login.getInclude().push_back(make<umlmm::Include>());
  EXPECT_EQ(login.allIncludedUseCases().size(), 3);
}
