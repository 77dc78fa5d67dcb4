#include "names.h"

using NamingTest = NamedModelTest;

TEST_F(NamingTest, AQualifiedNameNeedsANameAtEveryLevel) {
  auto const root = package(u"root");
  auto const inner = package(u"inner", root);
  auto const owner = packaged<umlmm::Class>(inner, u"Owner");
  auto const name = attribute(owner, u"name");
  EXPECT_EQ(name.getQualifiedName().to_string(), "root::inner::Owner::name");
  EXPECT_EQ(listOf(name.allNamespaces()), "Owner inner root");
  EXPECT_EQ(name.separator().to_string(), "::");

  inner.setName(umlmm::String());
  EXPECT_TRUE(name.getQualifiedName().empty());
  EXPECT_EQ(root.getQualifiedName().to_string(), "root");
  inner.setName(umlmm::String(std::u16string(300, u'x')));
  EXPECT_EQ(name.getQualifiedName().to_string(), "root::" + std::string(300, 'x') + "::Owner::name");
}

TEST_F(NamingTest, AnOwnerThatIsNoNamespaceGivesNone) {
  auto const activity = named<umlmm::Activity>(u"activity");
  auto const node = named<umlmm::InitialNode>(u"node");
  activity.getNode().push_back(node);
  EXPECT_EQ(nameOf(node.getOwner()), "activity");
  EXPECT_TRUE(node.getNamespace().isNull());
  EXPECT_EQ(node.getQualifiedName().to_string(), "node");
  EXPECT_TRUE(node.allNamespaces().empty());
}

TEST_F(NamingTest, MembersOfOneNameMustDifferInKind) {
  auto const owner = named<umlmm::Class>(u"owner");
  auto const first = attribute(owner, u"x");
  auto const run = operation(owner, u"x");
  EXPECT_TRUE(first.isDistinguishableFrom(run, owner).value());
  EXPECT_TRUE(run.isDistinguishableFrom(first, owner).value());
  EXPECT_TRUE(owner.membersAreDistinguishable().value());

  auto const port = named<umlmm::Port>(u"x");
  owner.getOwnedAttribute().push_back(port);
  EXPECT_FALSE(first.isDistinguishableFrom(port, owner).value()) << "a port is a property";
  EXPECT_FALSE(port.isDistinguishableFrom(first, owner).value());
  EXPECT_FALSE(owner.membersAreDistinguishable().value());
  EXPECT_FALSE(first.isDistinguishableFrom(first, owner).value());

  port.setName(umlmm::String());
  EXPECT_TRUE(port.isDistinguishableFrom(first, owner).value());
  EXPECT_TRUE(owner.membersAreDistinguishable().value());
}

TEST_F(NamingTest, OperationsOfOneNameMustDifferInTheTypesOfTheirParameters) {
  auto const owner = named<umlmm::Class>(u"owner");
  auto const first = operation(owner, u"run");
  auto const second = operation(owner, u"run");
  EXPECT_FALSE(first.isDistinguishableFrom(second, owner).value());
  EXPECT_TRUE(first.isDistinguishableFrom(first, owner).value());
  EXPECT_FALSE(owner.membersAreDistinguishable().value());

  auto const parameter = named<umlmm::Parameter>(u"p");
  second.getOwnedParameter().push_back(parameter);
  EXPECT_TRUE(first.isDistinguishableFrom(second, owner).value()) << "another number of parameters";
  first.getOwnedParameter().push_back(named<umlmm::Parameter>(u"q"));
  EXPECT_FALSE(first.isDistinguishableFrom(second, owner).value())
      << "names do not count, no types are equal";
  parameter.setType(owner);
  EXPECT_TRUE(second.isDistinguishableFrom(first, owner).value());
  EXPECT_TRUE(owner.membersAreDistinguishable().value());
}

TEST_F(NamingTest, WithoutASecondElementOrNamespaceThereIsNothingToConfuse) {
  auto const owner = named<umlmm::Class>(u"owner");
  auto const run = operation(owner, u"run");
  EXPECT_TRUE(run.isDistinguishableFrom(umlmm::ImmutableNamedElement(), owner).value());
  EXPECT_TRUE(owner.isDistinguishableFrom(owner, umlmm::ImmutableNamespace()).value());
  EXPECT_TRUE(owner.getNamesOfMember(umlmm::ImmutableNamedElement()).empty());
  EXPECT_TRUE(make<umlmm::Package>().membersAreDistinguishable().value());
}
