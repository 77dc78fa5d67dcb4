#include "../operations/names.h"

class GeneralTest : public NamedModelTest {
 protected:
  umlmm::Class const fClass = named<umlmm::Class>(u"Class");
  umlmm::Class const fA = named<umlmm::Class>(u"A");
  umlmm::Class const fB = named<umlmm::Class>(u"B");
  umlmm::Interface const fI = named<umlmm::Interface>(u"I");
};

TEST_F(GeneralTest, AddingAGeneralClassifierMakesAGeneralization) {
  fClass.getGeneral().push_back(fA);
  fClass.getGeneral().push_back(fA);
  ASSERT_EQ(fClass.getGeneralization().size(), 1);
  auto const made = fClass.getGeneralization().front();
  EXPECT_EQ(made.getGeneral(), fA);
  EXPECT_EQ(made.getSpecific(), fClass);
  EXPECT_TRUE(made.getIsSubstitutable()->value());

  fClass.getGeneral().insert(0, fB);
  EXPECT_EQ(listOf(fClass.getGeneral()), "B A");
  EXPECT_EQ(fClass.getGeneralization().back(), made);
}

TEST_F(GeneralTest, RemovingOneDestroysAllGeneralizationsThatLeadThere) {
  auto const first = generalize(fClass, fA);
  auto const second = generalize(fClass, fA);
  generalize(fClass, fB);
  EXPECT_EQ(fClass.getGeneral().removeAll(fA), 1);
  EXPECT_FALSE(first.isvalid());
  EXPECT_FALSE(second.isvalid());
  EXPECT_EQ(listOf(fClass.getGeneral()), "B");
}

TEST_F(GeneralTest, AnAssignedSequenceKeepsWhatStays) {
  auto const kept = generalize(fClass, fA);
  auto const gone = generalize(fClass, fB);
  auto const wanted = fClass.getGeneral();
  auto const other = named<umlmm::Class>(u"Other");
  generalize(other, fI);
  generalize(other, fA);
  fClass.setGeneral(other.getGeneral());
  EXPECT_TRUE(kept.isvalid());
  EXPECT_FALSE(gone.isvalid());
  EXPECT_EQ(fClass.getGeneralization().size(), 2);
  EXPECT_TRUE(wanted.contains(fI));
  EXPECT_EQ(listOf(wanted), "I A") << "in the order assigned";
  fClass.setGeneral({});
  EXPECT_TRUE(fClass.getGeneralization().empty());
}

TEST_F(GeneralTest, SuperClassesAreTheGeneralClasses) {
  generalize(fClass, fI);
  generalize(fClass, fA);
  EXPECT_EQ(listOf(fClass.getSuperClass()), "A");
  fClass.getSuperClass().insert(0, fB);
  EXPECT_EQ(listOf(fClass.getGeneral()), "I B A");
  fClass.getSuperClass().clear();
  EXPECT_EQ(listOf(fClass.getGeneral()), "I");
}

TEST_F(GeneralTest, ClassifiersOfOtherModelsAndKindsAreRefused) {
  auto const elsewhere = Kelm::NSInterface::FactoryIntf::createNewModel();
  generalize(fClass, fA);
  EXPECT_NE(failureOf([&] { fClass.getGeneral().push_back(umlmm::Class::create(elsewhere)); }), "");
  Kelm::Sequence<umlmm::Classifier> const superClasses(fClass.getSuperClass().get(), fClass.getDeviant());
  EXPECT_NE(failureOf([&] { superClasses.push_back(fI); }), "");
  EXPECT_NE(failureOf([&] { fClass.getInheritedMember().get()->generic_clear(fClass.getDeviant()); }), "");
  EXPECT_EQ(listOf(fClass.getGeneral()), "A");
  EXPECT_EQ(fClass.getGeneralization().size(), 1);
}
