#include "models.h"

using LinksTest = ModelTest;

TEST_F(LinksTest, AContainedElementAndItsOwnerSeeEachOther) {
  auto const package = make<umlmm::Package>();
  auto const owner = make<umlmm::Class>();
  auto const property = make<umlmm::Property>();
  package.getPackagedElement().push_back(owner);
  owner.getOwnedAttribute().push_back(property);

  EXPECT_EQ(property.getClass(), owner);
  EXPECT_EQ(owner.getPackage(), package);
  EXPECT_EQ(property.getOwner().get(), owner.get());
  EXPECT_TRUE(property.getDatatype().isNull()) << "another view of the same containment";
  EXPECT_EQ(owner.getOwnedAttribute().size(), 1);
}

TEST_F(LinksTest, SettingTheFarEndMovesTheElement) {
  auto const first = make<umlmm::Class>();
  auto const second = make<umlmm::DataType>();
  auto const property = make<umlmm::Property>();
  property.setClass(first);
  EXPECT_EQ(first.getOwnedAttribute().size(), 1);

  property.setDatatype(second);
  EXPECT_TRUE(first.getOwnedAttribute().empty());
  EXPECT_TRUE(property.getClass().isNull());
  EXPECT_EQ(second.getOwnedAttribute().front(), property);

  property.setDatatype(umlmm::DataType());
  EXPECT_TRUE(property.getOwner().isNull());
  EXPECT_TRUE(second.getOwnedAttribute().empty());
}

TEST_F(LinksTest, OwnershipInACircleIsRefusedAndChangesNothing) {
  auto const outer = make<umlmm::Package>();
  auto const inner = make<umlmm::Package>();
  outer.getPackagedElement().push_back(inner);
  EXPECT_NE(failureOf([&] { inner.getPackagedElement().push_back(outer); }).find("own itself"),
            std::string::npos);
  EXPECT_NE(failureOf([&] { outer.getPackagedElement().push_back(outer); }).find("own itself"),
            std::string::npos);
  EXPECT_TRUE(inner.getPackagedElement().empty());
  EXPECT_TRUE(outer.getNestingPackage().isNull());
}

TEST_F(LinksTest, APairOfManyValuedEndsIsOneSetOfLinks) {
  auto const client = make<umlmm::Class>();
  auto const supplier = make<umlmm::Class>();
  auto const usage = make<umlmm::Usage>();
  usage.getClient().push_back(client);
  usage.getSupplier().push_back(supplier);
  EXPECT_EQ(client.getClientDependency().front().get(), usage.get());
  client.getClientDependency().clear();
  EXPECT_TRUE(usage.getClient().empty());
  EXPECT_EQ(usage.getSupplier().size(), 1);
}

TEST_F(LinksTest, ASubsetFillsItsSupersetAndLeavesWithIt) {
  auto const association = make<umlmm::Association>();
  auto const end = make<umlmm::Property>();
  association.getNavigableOwnedEnd().push_back(end);
  EXPECT_EQ(association.getOwnedEnd().front(), end);
  EXPECT_EQ(association.getMemberEnd().front(), end);
  EXPECT_EQ(end.getOwningAssociation(), association);
  EXPECT_EQ(end.getAssociation(), association);

  association.getNavigableOwnedEnd().clear();
  EXPECT_EQ(association.getOwnedEnd().size(), 1) << "leaving the subset leaves the superset alone";

  association.getNavigableOwnedEnd().push_back(end);
  association.getMemberEnd().clear();
  EXPECT_TRUE(association.getOwnedEnd().empty());
  EXPECT_TRUE(association.getNavigableOwnedEnd().empty());
  EXPECT_TRUE(end.getOwner().isNull());
}

TEST_F(LinksTest, AnEndThatMovesToAClassStaysAMemberEnd) {
  auto const association = make<umlmm::Association>();
  auto const owner = make<umlmm::Class>();
  auto const end = make<umlmm::Property>();
  association.getOwnedEnd().push_back(end);
  end.setClass(owner);
  EXPECT_TRUE(association.getOwnedEnd().empty());
  EXPECT_EQ(association.getMemberEnd().front(), end);
  EXPECT_EQ(end.getAssociation(), association);
}

TEST_F(LinksTest, ARealizationIsADependencyOfItsOwner) {
  auto const owner = make<umlmm::Class>();
  auto const contract = make<umlmm::Interface>();
  auto const other = make<umlmm::Interface>();
  auto const realization = make<umlmm::InterfaceRealization>();
  realization.setContract(contract);
  owner.getInterfaceRealization().push_back(realization);
  EXPECT_EQ(realization.getClient().front().get(), owner.get());
  EXPECT_EQ(owner.getClientDependency().front().get(), realization.get());
  EXPECT_EQ(realization.getSupplier().size(), 1);

  realization.setContract(other);
  ASSERT_EQ(realization.getSupplier().size(), 1) << "the old contract is a supplier no longer";
  EXPECT_EQ(realization.getSupplier().front().get(), other.get());
  realization.setImplementingClassifier(umlmm::BehavioredClassifier());
  EXPECT_TRUE(realization.getClient().empty());
  EXPECT_TRUE(owner.getClientDependency().empty());
}

TEST_F(LinksTest, ARedefinitionNarrowsTheInheritedName) {
  auto const extension = make<umlmm::Extension>();
  auto const plain = make<umlmm::Property>();
  auto const end = make<umlmm::ExtensionEnd>();
  auto const other = make<umlmm::ExtensionEnd>();
  umlmm::Association const asAssociation(extension);

  EXPECT_NE(failureOf([&] { asAssociation.getOwnedEnd().push_back(plain); }).find("ExtensionEnd"),
            std::string::npos);
  EXPECT_NE(failureOf([&] { plain.setOwningAssociation(asAssociation); }).find("ExtensionEnd"),
            std::string::npos);
  EXPECT_TRUE(plain.getAssociation().isNull());
  asAssociation.getOwnedEnd().push_back(end);
  EXPECT_EQ(extension.getOwnedEnd(), end) << "one slot under both names";
  EXPECT_NE(failureOf([&] { asAssociation.getOwnedEnd().push_back(other); }).find("one value"),
            std::string::npos);
  extension.setOwnedEnd(other);
  EXPECT_EQ(asAssociation.getOwnedEnd().size(), 1);
  EXPECT_EQ(asAssociation.getOwnedEnd().front().get(), other.get());
}

TEST_F(LinksTest, ElementsOfOtherModelsAreRefused) {
  auto const other = Kelm::NSInterface::FactoryIntf::createNewModel();
  auto const package = make<umlmm::Package>();
  auto const stranger = umlmm::Class::create(other);
  EXPECT_NE(failureOf([&] { package.getPackagedElement().push_back(stranger); }).find("same model"),
            std::string::npos);
  EXPECT_TRUE(package.getPackagedElement().empty());
  other.object().close();
}

TEST_F(LinksTest, CreationWithReferencesSetsThemByTheSameRules) {
  auto const specific = make<umlmm::Class>();
  auto const general = make<umlmm::Class>();
  auto const generalization = umlmm::Generalization::create(fModel, specific, general);
  EXPECT_EQ(specific.getGeneralization().front(), generalization);
  EXPECT_EQ(generalization.getGeneral().get(), general.get());
  auto const incomplete = umlmm::Generalization::create(fModel, umlmm::Class(), general);
  EXPECT_TRUE(incomplete.getSpecific().isNull());
}

TEST_F(LinksTest, AReadOnlyVariantShowsTheModelAndRefusesChanges) {
  auto const owner = named<umlmm::Class>(u"Order");
  Kelm::Deviant const frozen = fModel.object().readOnlyDeviant();
  umlmm::Class const view(owner.get(), frozen);
  EXPECT_EQ(view.getName().text(), u"Order");
  EXPECT_NE(failureOf([&] { view.setName(umlmm::String(std::u16string(u"x"))); }).find("read-only"),
            std::string::npos);
  EXPECT_NE(failureOf([&] { view.getOwnedAttribute().clear(); }).find("read-only"), std::string::npos);
  EXPECT_NE(failureOf([&] { view.destroy(); }).find("read-only"), std::string::npos);
  owner.setName(umlmm::String(std::u16string(u"Invoice")));
  EXPECT_EQ(view.getName().text(), u"Invoice") << "a live view, no copy";
}
