#include "names.h"

using OwnershipTest = NamedModelTest;

TEST_F(OwnershipTest, OwnedElementsComeLevelByLevelWithinEachPart) {
  auto const root = package(u"root");
  auto const left = package(u"left", root);
  auto const right = package(u"right", root);
  auto const leaf = packaged<umlmm::Class>(left, u"leaf");
  attribute(leaf, u"a");
  packaged<umlmm::Class>(right, u"other");
  packaged<umlmm::Class>(left, u"second");

  EXPECT_EQ(listOf(root.allOwnedElements()), "left right leaf second a other");
  EXPECT_EQ(listOf(leaf.allOwnedElements()), "a");
  EXPECT_TRUE(umlmm::Comment::create(fModel).allOwnedElements().empty());
}

TEST_F(OwnershipTest, OwnedElementsAreListedInTheOrderOfTheMetaProperties) {
  auto const owner = named<umlmm::Class>(u"owner");
  owner.getOwnedComment().push_back(make<umlmm::Comment>());
  generalize(owner, named<umlmm::Class>(u"general"));
  operation(owner, u"run");
  attribute(owner, u"a");
  EXPECT_EQ(listOf(owner.allOwnedElements()), "a run unnamed unnamed");
  EXPECT_EQ(listOf(owner.getOwnedElement()), listOf(owner.allOwnedElements()));
  EXPECT_EQ(listOf(owner.getFeature()), "a run");
}

TEST_F(OwnershipTest, OwningPackagesAreFoundPastOwnersOfOtherKinds) {
  auto const root = package(u"root");
  auto const inner = package(u"inner", root);
  auto const owner = packaged<umlmm::Class>(inner, u"owner");
  auto const run = operation(owner, u"run");
  EXPECT_EQ(listOf(run.allOwningPackages()), "inner root");
  EXPECT_TRUE(root.allOwningPackages().empty());
}

TEST_F(OwnershipTest, OnlyPackagesNeedNoOwner) {
  EXPECT_FALSE(make<umlmm::Package>().mustBeOwned().value());
  EXPECT_FALSE(make<umlmm::Profile>().mustBeOwned().value());
  EXPECT_TRUE(make<umlmm::Class>().mustBeOwned().value());
}

TEST_F(OwnershipTest, AnAnswerOutlivesWhatItFound) {
  auto const owner = named<umlmm::Class>(u"owner");
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

TEST_F(OwnershipTest, AQueryOfAnElementThatIsGoneFails) {
  auto const owner = named<umlmm::Class>(u"owner");
  umlmm::ImmutableClass const kept = owner;
  owner.destroy();
  EXPECT_NE(failureOf([&] { kept.allOwnedElements(); }), "");
  EXPECT_NE(failureOf([&] { kept.mustBeOwned(); }), "");
  EXPECT_FALSE(make<umlmm::Class>().conformsTo(kept).value()) << "as an argument it is nothing";
}
