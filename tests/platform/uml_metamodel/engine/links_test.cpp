#include "models.h"

using LinksTest = ModelTest;

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
