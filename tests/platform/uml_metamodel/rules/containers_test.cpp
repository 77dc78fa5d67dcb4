#include "../operations/names.h"

using ContainersTest = NamedModelTest;

TEST_F(ContainersTest, TheFeatureThatHoldsAnElementDecidesWhatItsOwnerIsToIt) {
  auto const owner = named<umlmm::Class>(u"Owner");
  auto const a = attribute(owner, u"a");
  EXPECT_EQ(listOf(a.getFeaturingClassifier()), "Owner");
  EXPECT_EQ(listOf(a.getRedefinitionContext()), "Owner");
  EXPECT_EQ(nameOf(a.getNamespace()), "Owner");

  auto const qualifier = named<umlmm::Property>(u"q");
  a.getQualifier().push_back(qualifier);
  EXPECT_EQ(nameOf(qualifier.getOwner()), "a");
  EXPECT_TRUE(qualifier.getFeaturingClassifier().empty());
  EXPECT_TRUE(qualifier.getNamespace().isNull());

  auto const nested = named<umlmm::Class>(u"Nested");
  owner.getNestedClassifier().push_back(nested);
  EXPECT_EQ(listOf(nested.getRedefinitionContext()), "Owner");
  EXPECT_EQ(nameOf(nested.getNamespace()), "Owner");

  auto const reception = named<umlmm::Reception>(u"r");
  owner.getOwnedReception().push_back(reception);
  EXPECT_EQ(listOf(reception.getFeaturingClassifier()), "Owner");
  EXPECT_TRUE(reception.getRedefinitionContext().empty());
  reception.destroy();
  nested.getOwnedComment().push_back(make<umlmm::Comment>());
  EXPECT_EQ(nameOf(nested.getOwnedComment().front().getOwner()), "Nested");
}

TEST_F(ContainersTest, ABehaviorsContextIsTheNearestBehavioredClassifier) {
  auto const owner = named<umlmm::Class>(u"Owner");
  auto const outer = named<umlmm::Activity>(u"outer");
  auto const inner = named<umlmm::Activity>(u"inner");
  EXPECT_TRUE(outer.getContext().isNull());
  owner.getOwnedBehavior().push_back(outer);
  outer.getOwnedBehavior().push_back(inner);
  EXPECT_EQ(nameOf(outer.getContext()), "Owner");
  EXPECT_EQ(nameOf(inner.getContext()), "outer");
  EXPECT_EQ(listOf(inner.getRedefinitionContext()), "outer");

  auto const interface = named<umlmm::Interface>(u"I");
  owner.getNestedClassifier().push_back(interface);
  interface.getNestedClassifier().push_back(inner);
  EXPECT_EQ(listOf(inner.getRedefinitionContext()), "Owner I");
}

TEST_F(ContainersTest, AnActionHasTheContextOfTheBehaviorAroundIt) {
  auto const owner = named<umlmm::Class>(u"Owner");
  auto const activity = named<umlmm::Activity>(u"activity");
  auto const action = make<umlmm::OpaqueAction>();
  activity.getNode().push_back(action);
  EXPECT_TRUE(action.getContext().isNull());
  owner.getOwnedBehavior().push_back(activity);
  EXPECT_EQ(nameOf(action.getContext()), "Owner");

  auto const interaction = named<umlmm::Interaction>(u"interaction");
  activity.getOwnedBehavior().push_back(interaction);
  interaction.getAction().push_back(action);
  EXPECT_EQ(nameOf(action.getContext()), "activity");
}
