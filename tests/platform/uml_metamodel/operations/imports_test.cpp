#include "names.h"

using umlmm::VisibilityKind;

class ImportsTest : public NamedModelTest {
 protected:
  umlmm::Package const fUser = package(u"user");
  umlmm::Package const fLibrary = package(u"library");
  umlmm::Class const fShape = packaged<umlmm::Class>(fLibrary, u"Shape");
};

TEST_F(ImportsTest, APackageShowsItsPublicMembersAndWhatItImportsPublicly) {
  packaged<umlmm::Class>(fLibrary, u"Hidden").setVisibility(VisibilityKind(VisibilityKind::Private));
  auto const base = package(u"base");
  packaged<umlmm::Class>(base, u"Point");
  auto const toBase = import(fLibrary, base);
  import(fUser, fLibrary);
  EXPECT_EQ(listOf(fLibrary.visibleMembers()), "Shape Point");
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Shape Point");
  EXPECT_EQ(listOf(fUser.getMember()), "Shape Point");

  toBase.setVisibility(VisibilityKind(VisibilityKind::Private));
  EXPECT_EQ(listOf(fLibrary.getImportedMember()), "Point");
  EXPECT_EQ(listOf(fLibrary.visibleMembers()), "Shape");
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Shape");
}

TEST_F(ImportsTest, MakesVisibleAnswersForEachWayOfGettingAMember) {
  auto const hidden = packaged<umlmm::Class>(fLibrary, u"Hidden");
  hidden.setVisibility(VisibilityKind(VisibilityKind::Private));
  EXPECT_TRUE(fLibrary.makesVisible(fShape).value());
  EXPECT_FALSE(fLibrary.makesVisible(hidden).value());
  EXPECT_FALSE(fUser.makesVisible(fShape).value());
  EXPECT_FALSE(fUser.makesVisible(umlmm::ImmutableNamedElement()).value());

  auto const toLibrary = import(fUser, fLibrary);
  EXPECT_TRUE(fUser.makesVisible(fShape).value());
  toLibrary.setVisibility(VisibilityKind(VisibilityKind::Private));
  EXPECT_FALSE(fUser.makesVisible(fShape).value());
  auto const toHidden = import(fUser, hidden);
  EXPECT_TRUE(fUser.makesVisible(hidden).value()) << "whoever names it gets it";
  toHidden.setVisibility(VisibilityKind(VisibilityKind::Private));
  EXPECT_FALSE(fUser.makesVisible(hidden).value());
}

TEST_F(ImportsTest, AnElementImportNamesItsElement) {
  auto const toShape = import(fUser, fShape);
  EXPECT_EQ(toShape.getName().to_string(), "Shape");
  toShape.setAlias(umlmm::String(std::u16string(u"Figure")));
  EXPECT_EQ(toShape.getName().to_string(), "Figure");
  EXPECT_EQ(listOf(fUser.getNamesOfMember(fShape)), "Figure");
  import(fUser, fShape);
  import(fUser, fLibrary);
  EXPECT_EQ(listOf(fUser.getNamesOfMember(fShape)), "Figure Shape") << "each name once";
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Shape") << "and the element once";
  EXPECT_TRUE(make<umlmm::ElementImport>().getName().empty());
}

TEST_F(ImportsTest, NamesComeThroughPackagesUnlessTheElementIsImportedItself) {
  auto const middle = package(u"middle");
  auto const toShape = import(middle, fShape);
  toShape.setAlias(umlmm::String(std::u16string(u"Figure")));
  import(fUser, middle);
  EXPECT_EQ(listOf(fUser.getNamesOfMember(fShape)), "Figure");
  import(fUser, fLibrary);
  EXPECT_EQ(listOf(fUser.getNamesOfMember(fShape)), "Figure Shape");
  auto const own = import(fUser, fShape);
  own.setAlias(umlmm::String(std::u16string(u"Mine")));
  EXPECT_EQ(listOf(fUser.getNamesOfMember(fShape)), "Mine");
  EXPECT_EQ(listOf(fLibrary.getNamesOfMember(fShape)), "Shape");
  EXPECT_EQ(listOf(middle.getNamesOfMember(fUser)), "") << "no member";
}

TEST_F(ImportsTest, WhatCollidesIsNotImported) {
  auto const other = package(u"other");
  auto const second = packaged<umlmm::Component>(other, u"Shape");
  packaged<umlmm::Class>(other, u"Line");
  import(fUser, fLibrary);
  import(fUser, other);
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Line") << "a component is a class: both go";
  second.destroy();
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Shape Line");
  auto const own = packaged<umlmm::Class>(fUser, u"Line");
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Shape") << "an owned member stays";
  own.setName(umlmm::String(std::u16string(u"Own")));
  packaged<umlmm::DataType>(fUser, u"Shape");
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Shape Line") << "a data type is no class";
}

TEST_F(ImportsTest, ACollisionFurtherOffHidesOnlyWhatCameThatWay) {
  auto const middle = package(u"middle");
  packaged<umlmm::Class>(middle, u"Shape");
  import(middle, fLibrary);
  packaged<umlmm::Class>(fLibrary, u"Line");
  import(fUser, middle);
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Shape Line");
  EXPECT_EQ(fUser.getImportedMember().front().getNamespace().get(),
            static_cast<umlmm::ImmutableNamespace>(middle).get());
}

TEST_F(ImportsTest, WhatAPackageImportsForItselfCollidesThere) {
  auto const middle = package(u"middle");
  auto const other = package(u"other");
  packaged<umlmm::Class>(other, u"Shape");
  import(middle, fShape);
  import(fUser, middle);
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Shape");
  import(middle, other).setVisibility(VisibilityKind(VisibilityKind::Private));
  EXPECT_EQ(listOf(fUser.getImportedMember()), "");
}

TEST_F(ImportsTest, AWayRoundACircleIsAnotherWay) {
  fShape.setVisibility(VisibilityKind(VisibilityKind::Private));
  import(fLibrary, fShape);
  auto const between = package(u"between");
  import(fLibrary, between);
  import(between, fLibrary);
  import(between, fUser);
  import(fUser, fLibrary).setVisibility(VisibilityKind(VisibilityKind::Private));
  EXPECT_EQ(listOf(fUser.visibleMembers()), "");
  import(fUser, between);
  EXPECT_EQ(listOf(fUser.visibleMembers()), "Shape") << "publicly by way of the other package";
}

TEST_F(ImportsTest, CandidatesAreJudgedAgainstOwnedMembersAlone) {
  packaged<umlmm::Class>(fUser, u"Shape");
  EXPECT_EQ(listOf(fUser.importMembers(fShape)), "Shape") << "it has no name here before it is imported";
  import(fUser, fShape);
  EXPECT_EQ(listOf(fUser.importMembers(fShape)), "");
  EXPECT_EQ(listOf(fLibrary.importMembers(fShape)), "Shape") << "it does not collide with itself";
  EXPECT_EQ(listOf(fUser.excludeCollisions(fShape)), "Shape");
  EXPECT_TRUE(fUser.importMembers(umlmm::ImmutablePackageableElement()).empty());
  EXPECT_TRUE(fUser.excludeCollisions(umlmm::ImmutablePackageableElement()).empty());
}

TEST_F(ImportsTest, ImportsInACircleEnd) {
  packaged<umlmm::Class>(fUser, u"User");
  import(fUser, fLibrary);
  import(fLibrary, fUser);
  import(fUser, fUser);
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Shape");
  EXPECT_EQ(listOf(fLibrary.getImportedMember()), "User");
  EXPECT_EQ(listOf(fUser.visibleMembers()), "User Shape");
  EXPECT_FALSE(fUser.makesVisible(fUser).value());
  EXPECT_EQ(listOf(fUser.getNamesOfMember(fShape)), "Shape");

  // An alias on the way has the circle followed package by package.
  auto const third = package(u"third");
  packaged<umlmm::Class>(third, u"Third");
  import(fLibrary, third);
  import(third, fUser);
  import(third, fShape).setAlias(umlmm::String(std::u16string(u"Figure")));
  EXPECT_EQ(listOf(fUser.getImportedMember()), "Shape Third");
  EXPECT_EQ(listOf(third.getImportedMember()), "Shape User");
  EXPECT_EQ(listOf(fUser.getNamesOfMember(fShape)), "Shape") << "its owner's name for it";
  EXPECT_EQ(listOf(third.getNamesOfMember(fShape)), "Figure");
}

TEST_F(ImportsTest, AnImportWithoutAnElementBringsNothing) {
  umlmm::PackageImport const toNothing = make<umlmm::PackageImport>();
  fUser.getPackageImport().push_back(toNothing);
  fUser.getElementImport().push_back(make<umlmm::ElementImport>());
  EXPECT_TRUE(fUser.getImportedMember().empty());
  EXPECT_TRUE(fUser.visibleMembers().empty());
}
