#include "../operations/names.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"

class FiltersTest : public NamedModelTest {
 protected:
  umlmm::Package const fPackage = package(u"p");
  umlmm::Class const fClass = packaged<umlmm::Class>(fPackage, u"C");
  umlmm::InstanceSpecification const fInstance = packaged<umlmm::InstanceSpecification>(fPackage, u"i");
  umlmm::Package const fNested = package(u"n", fPackage);
};

TEST_F(FiltersTest, AViewShowsWhatIsOfItsKind) {
  EXPECT_EQ(listOf(fPackage.getOwnedType()), "C");
  EXPECT_EQ(listOf(fPackage.getNestedPackage()), "n");
  packaged<umlmm::Profile>(fPackage, u"profile");
  EXPECT_EQ(listOf(fPackage.getNestedPackage()), "n profile") << "a change of the base shows at once";
  EXPECT_EQ(listOf(fPackage.getPackagedElement()), "C i n profile");
}

TEST_F(FiltersTest, AnInsertedElementStandsBeforeItsNeighbourInTheBase) {
  auto const type = named<umlmm::DataType>(u"D");
  fPackage.getOwnedType().push_back(type);
  EXPECT_EQ(listOf(fPackage.getPackagedElement()), "C i n D");
  fPackage.getOwnedType().insert(1, named<umlmm::Class>(u"E"));
  EXPECT_EQ(listOf(fPackage.getPackagedElement()), "C i n E D");
  EXPECT_EQ(type.getPackage(), fPackage);
  fPackage.getOwnedType().push_back(type);
  EXPECT_EQ(listOf(fPackage.getOwnedType()), "C E D");

  auto const wanted = Kelm::SequenceCreator::create<umlmm::Type>({fPackage.getDeviant()});
  wanted.push_back(type);
  wanted.push_back(fClass);
  fPackage.setOwnedType(wanted);
  EXPECT_EQ(listOf(fPackage.getPackagedElement()), "D i n C") << "other elements keep their places";
}

TEST_F(FiltersTest, ARemovedElementHasNoOwner) {
  fPackage.getOwnedType().erase(0);
  EXPECT_TRUE(fClass.getOwner().isNull());
  EXPECT_EQ(listOf(fPackage.getPackagedElement()), "i n");
  fNested.setNestingPackage(umlmm::Package());
  EXPECT_EQ(listOf(fPackage.getPackagedElement()), "i");
}

TEST_F(FiltersTest, AViewRefusesWhatItsBaseRefuses) {
  EXPECT_NE(failureOf([&] { fNested.getNestedPackage().push_back(fPackage); }), "") << "it would own itself";
  Kelm::Sequence<umlmm::PackageableElement> const types(fPackage.getOwnedType().get(), fPackage.getDeviant());
  EXPECT_NE(failureOf([&] { types.push_back(named<umlmm::InstanceSpecification>(u"j")); }), "");
  EXPECT_EQ(listOf(fPackage.getPackagedElement()), "C i n");
  EXPECT_TRUE(fNested.getPackagedElement().empty());
}

TEST_F(FiltersTest, PortsAndStereotypesAreViewsToo) {
  auto const profile = package(u"unused");
  auto const stereotypes = named<umlmm::Profile>(u"profile");
  stereotypes.getOwnedStereotype().push_back(named<umlmm::Stereotype>(u"S"));
  EXPECT_EQ(listOf(stereotypes.getOwnedType()), "S");

  attribute(fClass, u"a");
  auto const port = named<umlmm::Port>(u"port");
  fClass.getOwnedPort().push_back(port);
  EXPECT_EQ(listOf(fClass.getOwnedAttribute()), "a port");
  EXPECT_EQ(port.getClass(), fClass);
  fClass.getOwnedPort().clear();
  EXPECT_EQ(listOf(fClass.getOwnedAttribute()), "a");
}

TEST_F(FiltersTest, PartsAreTheCompositeAttributes) {
  auto const whole = attribute(fClass, u"whole");
  attribute(fClass, u"shared").setAggregation(umlmm::AggregationKind(umlmm::AggregationKind::Shared));
  EXPECT_TRUE(fClass.getPart().empty());
  whole.setIsComposite(true);
  EXPECT_EQ(listOf(fClass.getPart()), "whole");
  EXPECT_EQ(listOf(fClass.getRole()), "whole shared");
}
