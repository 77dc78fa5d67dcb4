#include "../operations/names.h"

using EndsTest = NamedModelTest;

TEST_F(EndsTest, AConnectorEndIsDefinedByTheMemberEndAtItsPlace) {
  auto const connector = make<umlmm::Connector>();
  auto const association = make<umlmm::Association>();
  umlmm::ConnectorEnd const ends[] = {make<umlmm::ConnectorEnd>(), make<umlmm::ConnectorEnd>()};
  EXPECT_TRUE(ends[0].getDefiningEnd().isNull());
  for (auto const& end : ends) connector.getEnd().push_back(end);
  EXPECT_TRUE(ends[0].getDefiningEnd().isNull());
  connector.setType(association);
  EXPECT_TRUE(ends[0].getDefiningEnd().isNull());
  association.getMemberEnd().push_back(named<umlmm::Property>(u"first"));
  EXPECT_TRUE(ends[1].getDefiningEnd().isNull());
  association.getMemberEnd().push_back(named<umlmm::Property>(u"second"));
  EXPECT_EQ(nameOf(ends[1].getDefiningEnd()), "second");
  ends[0].destroy();
  EXPECT_EQ(nameOf(ends[1].getDefiningEnd()), "first");
}

TEST_F(EndsTest, TheEndsOfAnElementAreThoseInItsRole) {
  auto const role = named<umlmm::Property>(u"role");
  auto const other = named<umlmm::Property>(u"other");
  auto const end = make<umlmm::ConnectorEnd>();
  end.setRole(role);
  EXPECT_EQ(role.getEnd().front(), end);
  other.getEnd().push_back(end);
  EXPECT_TRUE(role.getEnd().empty());
  EXPECT_EQ(end.getRole().get(), static_cast<umlmm::ImmutableConnectableElement>(other).get());
  other.getEnd().clear();
  EXPECT_TRUE(end.getRole().isNull());
  EXPECT_TRUE(end.isvalid());

  end.setRole(role);
  auto const first = make<umlmm::ConnectorEnd>();
  role.getEnd().insert(0, first);
  EXPECT_EQ(role.getEnd().front(), first);
  EXPECT_EQ(role.getEnd().back(), end);
  role.destroy();
  EXPECT_TRUE(end.getRole().isNull());
}

TEST_F(EndsTest, EndTypesComeInTheOrderOfTheEndsWithoutRepeats) {
  auto const association = make<umlmm::Association>();
  auto const type = named<umlmm::Class>(u"Type");
  auto const data = named<umlmm::DataType>(u"Data");
  umlmm::Type const types[] = {data, umlmm::Type(), type, data};
  for (auto const& wanted : types) {
    auto const end = make<umlmm::Property>();
    end.setType(wanted);
    association.getMemberEnd().push_back(end);
  }
  EXPECT_EQ(listOf(association.getEndType()), "Data Type");
  EXPECT_EQ(listOf(association.getRelatedElement()), "Data Type");
}

TEST_F(EndsTest, AnExtensionLeadsToTheClassThatItExtends) {
  auto const metaclass = named<umlmm::Class>(u"Metaclass");
  auto const end = make<umlmm::ExtensionEnd>();
  auto const extension = umlmm::Extension::create(fModel, end);
  EXPECT_TRUE(extension.getMetaclass().isNull());
  EXPECT_FALSE(extension.getIsRequired().value());
  auto const base = named<umlmm::Property>(u"base");
  extension.getMemberEnd().push_back(base);
  base.setType(metaclass);
  EXPECT_EQ(nameOf(extension.getMetaclass()), "Metaclass");
  ASSERT_EQ(metaclass.getExtension().size(), 1);
  EXPECT_EQ(metaclass.getExtension().front(), extension);

  end.setLower(umlmm::Integer(1));
  EXPECT_TRUE(extension.getIsRequired().value());
  base.setType(named<umlmm::DataType>(u"NoClass"));
  EXPECT_TRUE(extension.getMetaclass().isNull());
  EXPECT_TRUE(metaclass.getExtension().empty());
  EXPECT_FALSE(make<umlmm::Extension>().getIsRequired().value());
}
