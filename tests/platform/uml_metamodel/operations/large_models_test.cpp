#include "names.h"

using LargeModelsTest = NamedModelTest;

TEST_F(LargeModelsTest, ContainmentTenThousandDeepIsWalkedWithoutRecursion) {
  constexpr int kDepth = 10000;
  auto const root = package(u"p");
  umlmm::Package inner = root;
  for (int level = 1; level < kDepth; ++level) inner = package(u"p", inner);
  EXPECT_EQ(root.allOwnedElements().size(), kDepth - 1);
  EXPECT_EQ(inner.allNamespaces().size(), kDepth - 1);
  EXPECT_EQ(inner.allOwningPackages().size(), kDepth - 1);
  EXPECT_EQ(inner.getQualifiedName().text().size(), 3U * kDepth - 2);
}

TEST_F(LargeModelsTest, AHundredThousandMembersAreToldApartOneByOne) {
  constexpr int kWidth = 100000;
  auto const library = package(u"library");
  auto const user = package(u"user");
  for (int number = 0; number < kWidth; ++number) {
    auto const made = make<umlmm::Class>();
    auto const digits = std::to_string(number);
    made.setName(umlmm::String(std::u16string(digits.begin(), digits.end())));
    library.getPackagedElement().push_back(made);
  }
  import(user, library);
  EXPECT_EQ(user.getImportedMember().size(), kWidth);
  EXPECT_TRUE(user.membersAreDistinguishable().value());
  packaged<umlmm::Class>(user, u"7");
  EXPECT_EQ(user.getImportedMember().size(), kWidth - 1);
  EXPECT_EQ(library.visibleMembers().size(), kWidth);
}

// Each layer inherits from and imports all of the one above: 2 to the 200th paths.
TEST_F(LargeModelsTest, TwoHundredLayersOfDiamondsAreFollowedOnce) {
  constexpr int kLayers = 200;
  umlmm::Class classes[2] = {named<umlmm::Class>(u"c"), named<umlmm::Class>(u"d")};
  umlmm::Package packages[2] = {package(u"p"), package(u"q")};
  auto const top = attribute(classes[0], u"top");
  packaged<umlmm::Class>(packages[0], u"Top");
  for (int layer = 1; layer < kLayers; ++layer) {
    umlmm::Class const below[2] = {named<umlmm::Class>(u"c"), named<umlmm::Class>(u"d")};
    umlmm::Package const importing[2] = {package(u"p"), package(u"q")};
    for (int side = 0; side < 2; ++side)
      for (int other = 0; other < 2; ++other) {
        generalize(below[side], classes[other]);
        import(importing[side], packages[other]);
      }
    std::copy(below, below + 2, classes);
    std::copy(importing, importing + 2, packages);
  }
  EXPECT_EQ(classes[0].allParents().size(), 2 * (kLayers - 1));
  EXPECT_EQ(listOf(classes[0].getInheritedMember()), "top");
  attribute(classes[1], u"bottom").getRedefinedProperty().push_back(top);
  EXPECT_EQ(listOf(classes[0].getInheritedMember()), "top");
  EXPECT_EQ(listOf(classes[1].getInheritedMember()), "");
  EXPECT_EQ(listOf(packages[0].getImportedMember()), "Top");
  import(packages[1], packages[1]);
  import(packages[0], packages[1]).setVisibility(umlmm::VisibilityKind(umlmm::VisibilityKind::Private));
  EXPECT_EQ(listOf(packages[0].getImportedMember()), "Top");
}

TEST_F(LargeModelsTest, RingsOfTenThousandEnd) {
  constexpr int kLength = 10000;
  auto const first = named<umlmm::Class>(u"c");
  auto const start = package(u"start");
  umlmm::Class last = first;
  umlmm::Package end = start;
  for (int number = 1; number < kLength; ++number) {
    auto const next = named<umlmm::Class>(u"c");
    generalize(last, next);
    last = next;
    auto const imported = package(u"p");
    auto const digits = std::to_string(number);
    auto const member = make<umlmm::Class>();
    member.setName(umlmm::String(std::u16string(digits.begin(), digits.end())));
    imported.getPackagedElement().push_back(member);
    import(end, imported);
    end = imported;
  }
  attribute(last, u"last");
  EXPECT_EQ(listOf(first.getInheritedMember()), "last");
  generalize(last, first);
  import(end, start);
  EXPECT_EQ(first.allParents().size(), kLength);
  EXPECT_TRUE(first.getInheritedMember().empty());
  EXPECT_EQ(start.getImportedMember().size(), kLength - 1);
}
