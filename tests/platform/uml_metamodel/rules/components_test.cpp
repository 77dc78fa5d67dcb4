#include "../operations/names.h"

class ComponentsTest : public NamedModelTest {
 protected:
  umlmm::Interface interface(char16_t const* aName) const { return named<umlmm::Interface>(aName); }
  template <class Kind>
  void depend(umlmm::Classifier const& aClient, umlmm::NamedElement const& aSupplier) const {
    auto const dependency = make<Kind>();
    dependency.getClient().push_back(aClient);
    dependency.getSupplier().push_back(aSupplier);
  }
  umlmm::Port port(umlmm::Class const& aOwner, umlmm::Type const& aType) const {
    auto const made = make<umlmm::Port>();
    aOwner.getOwnedAttribute().push_back(made);
    made.setType(aType);
    return made;
  }

  umlmm::Component const fComponent = named<umlmm::Component>(u"component");
};

TEST_F(ComponentsTest, DependenciesOfAKindLeadToInterfaces) {
  auto const client = named<umlmm::Class>(u"client");
  umlmm::InterfaceRealization::create(fModel, interface(u"R"), client);
  depend<umlmm::Realization>(client, interface(u"S"));
  depend<umlmm::Realization>(client, named<umlmm::Class>(u"NoInterface"));
  depend<umlmm::Usage>(client, interface(u"U"));
  depend<umlmm::Dependency>(client, interface(u"D"));
  EXPECT_EQ(listOf(fComponent.realizedInterfaces(client)), "R S");
  EXPECT_EQ(listOf(fComponent.usedInterfaces(client)), "U");
  EXPECT_TRUE(fComponent.realizedInterfaces(umlmm::ImmutableClassifier()).empty());
  EXPECT_TRUE(fComponent.usedInterfaces(umlmm::ImmutableClassifier()).empty());
}

TEST_F(ComponentsTest, APortOffersItsTypeAndConjugationTurnsItRound) {
  auto const offered = interface(u"Offered");
  depend<umlmm::Usage>(offered, interface(u"Needed"));
  auto const byInterface = port(fComponent, offered);
  EXPECT_EQ(listOf(byInterface.getProvided()), "Offered");
  EXPECT_EQ(listOf(byInterface.getRequired()), "Needed");
  byInterface.setIsConjugated(true);
  EXPECT_EQ(listOf(byInterface.getProvided()), "Needed");
  EXPECT_EQ(listOf(byInterface.getRequired()), "Offered");

  auto const general = named<umlmm::Class>(u"general");
  auto const special = named<umlmm::Class>(u"special");
  generalize(special, general);
  generalize(general, special);
  depend<umlmm::Realization>(general, interface(u"Inherited"));
  depend<umlmm::Realization>(special, interface(u"Own"));
  auto const byClass = port(fComponent, special);
  EXPECT_EQ(listOf(byClass.getProvided()), "Own Inherited");
  EXPECT_TRUE(byClass.getRequired().empty());
  EXPECT_TRUE(make<umlmm::Port>().getProvided().empty());
}

TEST_F(ComponentsTest, AComponentOffersWhatItItsRealizersAndItsPortsOffer) {
  auto const general = named<umlmm::Component>(u"general");
  generalize(fComponent, general);
  depend<umlmm::Realization>(fComponent, interface(u"Own"));
  depend<umlmm::Realization>(general, interface(u"NotInherited"));
  port(general, interface(u"AtPort"));

  auto const realizer = named<umlmm::Class>(u"realizer");
  auto const base = named<umlmm::Class>(u"base");
  generalize(realizer, base);
  depend<umlmm::Realization>(base, interface(u"OfRealizer"));
  depend<umlmm::Usage>(realizer, interface(u"Used"));
  general.getRealization().push_back(umlmm::ComponentRealization::create(fModel, realizer));

  EXPECT_EQ(listOf(fComponent.getProvided()), "Own OfRealizer AtPort");
  EXPECT_EQ(listOf(fComponent.getRequired()), "Used");
  generalize(general, fComponent);
  EXPECT_EQ(listOf(fComponent.getProvided()), "Own OfRealizer AtPort");
}
