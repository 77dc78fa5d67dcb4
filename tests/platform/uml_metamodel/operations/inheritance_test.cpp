#include "names.h"

using umlmm::VisibilityKind;

class InheritanceTest : public NamedModelTest {
 protected:
  void redefine(umlmm::Property const& aSpecial, umlmm::Property const& aGeneral) const {
    aSpecial.getRedefinedProperty().push_back(aGeneral);
  }

  umlmm::Class const fTop = named<umlmm::Class>(u"Top");
  umlmm::Class const fMiddle = named<umlmm::Class>(u"Middle");
  umlmm::Class const fBottom = named<umlmm::Class>(u"Bottom");
  umlmm::Property const fTopA = attribute(fTop, u"topA");
  umlmm::Property const fMiddleA = attribute(fMiddle, u"middleA");
};

TEST_F(InheritanceTest, MembersOfAllAncestorsAreInheritedNearestFirst) {
  generalize(fBottom, fMiddle);
  generalize(fMiddle, fTop);
  attribute(fBottom, u"bottomA");
  packaged<umlmm::UseCase>(package(u"p"), u"none");
  fMiddle.getOwnedUseCase().push_back(named<umlmm::UseCase>(u"middleU"));
  EXPECT_EQ(listOf(fBottom.getInheritedMember()), "middleA topA middleU")
      << "what a parent inherits stands between its features and its use cases";
  EXPECT_EQ(listOf(fBottom.getMember()), "bottomA middleA topA middleU");
  EXPECT_EQ(listOf(fBottom.allFeatures()), "bottomA middleA topA");
  EXPECT_TRUE(fTop.getInheritedMember().empty());
}

TEST_F(InheritanceTest, PrivateMembersStayWhereTheyAre) {
  generalize(fBottom, fMiddle);
  generalize(fMiddle, fTop);
  fMiddleA.setVisibility(VisibilityKind(VisibilityKind::Private));
  EXPECT_EQ(listOf(fBottom.getInheritedMember()), "topA");
  EXPECT_FALSE(fBottom.hasVisibilityOf(fMiddleA).value());
  EXPECT_TRUE(fMiddle.hasVisibilityOf(fMiddleA).value()) << "its own";
  EXPECT_TRUE(fTop.hasVisibilityOf(fMiddleA).value()) << "no member of an ancestor";
  EXPECT_TRUE(fBottom.hasVisibilityOf(fTopA).value());
  EXPECT_FALSE(fBottom.hasVisibilityOf(umlmm::ImmutableNamedElement()).value());
}

TEST_F(InheritanceTest, PrivateMemberEndsOfAncestorsAreHiddenToo) {
  auto const general = named<umlmm::Association>(u"General");
  auto const special = named<umlmm::Association>(u"Special");
  generalize(special, general);
  general.getMemberEnd().push_back(fTopA);
  fTopA.setVisibility(VisibilityKind(VisibilityKind::Private));
  EXPECT_FALSE(special.hasVisibilityOf(fTopA).value());
  EXPECT_TRUE(special.getInheritedMember().empty());
}

TEST_F(InheritanceTest, WhatAClassRedefinesIsNotPassedOn) {
  generalize(fBottom, fMiddle);
  generalize(fMiddle, fTop);
  redefine(fMiddleA, fTopA);
  EXPECT_EQ(listOf(fMiddle.getInheritedMember()), "");
  EXPECT_EQ(listOf(fBottom.getInheritedMember()), "middleA");
  EXPECT_EQ(listOf(fMiddle.inherit(fTop.getMember())), "");
  EXPECT_EQ(listOf(fBottom.inherit(fTop.getMember())), "topA");
  EXPECT_TRUE(fBottom.inherit({}).empty());
}

TEST_F(InheritanceTest, ARedefinitionHoldsOnItsOwnWayOnly) {
  auto const other = named<umlmm::Class>(u"Other");
  attribute(other, u"otherA");
  generalize(fBottom, fMiddle);
  generalize(fBottom, other);
  generalize(fMiddle, fTop);
  generalize(other, fTop);
  EXPECT_EQ(listOf(fBottom.getInheritedMember()), "middleA topA otherA");
  redefine(fMiddleA, fTopA);
  EXPECT_EQ(listOf(fBottom.getInheritedMember()), "middleA otherA topA")
      << "it comes by the other parent now";
  redefine(attribute(fBottom, u"bottomA"), fTopA);
  EXPECT_EQ(listOf(fBottom.getInheritedMember()), "middleA otherA");
}

TEST_F(InheritanceTest, InterfacesPassOnWhatTheyRedefine) {
  auto const general = named<umlmm::Interface>(u"General");
  auto const special = named<umlmm::Interface>(u"Special");
  auto const x = attribute(general, u"x");
  redefine(attribute(special, u"y"), x);
  generalize(special, general);
  EXPECT_EQ(listOf(special.getInheritedMember()), "x");
  auto const type = named<umlmm::DataType>(u"Type");
  redefine(attribute(type, u"z"), x);
  generalize(type, general);
  EXPECT_EQ(listOf(type.getInheritedMember()), "");
}

TEST_F(InheritanceTest, InheritableMembersAreForProperDescendants) {
  generalize(fMiddle, fTop);
  EXPECT_EQ(listOf(fTop.inheritableMembers(fMiddle)), "topA");
  EXPECT_EQ(listOf(fTop.inheritableMembers(fTop)), "");
  EXPECT_EQ(listOf(fMiddle.inheritableMembers(fTop)), "");
  EXPECT_EQ(listOf(fTop.inheritableMembers(umlmm::ImmutableClassifier())), "");
  fTopA.setVisibility(VisibilityKind(VisibilityKind::Private));
  EXPECT_EQ(listOf(fTop.inheritableMembers(fMiddle)), "");
}

TEST_F(InheritanceTest, ClassifiersOfOneCircleGiveEachOtherNothing) {
  generalize(fMiddle, fTop);
  generalize(fTop, fMiddle);
  generalize(fBottom, fMiddle);
  EXPECT_EQ(listOf(fMiddle.getInheritedMember()), "");
  EXPECT_EQ(listOf(fTop.inheritableMembers(fMiddle)), "");
  EXPECT_EQ(listOf(fBottom.getInheritedMember()), "middleA") << "those below get what each has itself";
  generalize(fBottom, fTop);
  EXPECT_EQ(listOf(fBottom.getInheritedMember()), "middleA topA");
  generalize(fBottom, fBottom);
  EXPECT_EQ(listOf(fBottom.getInheritedMember()), "middleA topA");
}

TEST_F(InheritanceTest, ImportedMembersAreInheritedUnderNoName) {
  auto const library = package(u"library");
  auto const shape = packaged<umlmm::Class>(library, u"Shape");
  import(fTop, library);
  generalize(fBottom, fTop);
  EXPECT_EQ(listOf(fBottom.getInheritedMember()), "topA Shape");
  EXPECT_EQ(listOf(fTop.getNamesOfMember(shape)), "Shape");
  EXPECT_EQ(listOf(fBottom.getNamesOfMember(shape)), "");
}
