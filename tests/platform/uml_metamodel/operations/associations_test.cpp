#include "names.h"

using AssociationsTest = NamedModelTest;

TEST_F(AssociationsTest, AnAssociationClassHasTheConnectionsOfItsParents) {
  auto const job = named<umlmm::AssociationClass>(u"Job");
  auto const contract = named<umlmm::AssociationClass>(u"Contract");
  auto const relation = named<umlmm::Association>(u"Relation");
  job.getMemberEnd().push_back(named<umlmm::Property>(u"j"));
  contract.getMemberEnd().push_back(named<umlmm::Property>(u"c"));
  relation.getMemberEnd().push_back(named<umlmm::Property>(u"r"));
  generalize(job, contract);
  generalize(job, named<umlmm::Class>(u"NoAssociation"));
  generalize(contract, relation);
  auto const hidden = named<umlmm::Association>(u"Hidden");
  hidden.getMemberEnd().push_back(named<umlmm::Property>(u"h"));
  generalize(relation, hidden);
  EXPECT_EQ(listOf(job.allConnections()), "j c r") << "a plain association gives its own ends only";
  generalize(contract, job);
  EXPECT_EQ(listOf(job.allConnections()), "j c r");
}

TEST_F(AssociationsTest, NavigabilityFollowsFromTheOwner) {
  auto const association = make<umlmm::Association>();
  auto const end = named<umlmm::Property>(u"end");
  association.getOwnedEnd().push_back(end);
  EXPECT_FALSE(end.isNavigable().value());
  association.getNavigableOwnedEnd().push_back(end);
  EXPECT_TRUE(end.isNavigable().value());
  EXPECT_TRUE(attribute(named<umlmm::Class>(u"C"), u"a").isNavigable().value());
  auto const signal = named<umlmm::Signal>(u"S");
  EXPECT_TRUE(attribute(signal, u"a").isNavigable().value());
  EXPECT_FALSE(make<umlmm::Property>().isNavigable().value());
}

TEST_F(AssociationsTest, SubsettingIsJudgedAtTheOtherEnds) {
  auto const person = named<umlmm::Class>(u"Person");
  auto const firm = named<umlmm::Class>(u"Firm");
  auto const association = make<umlmm::Association>();
  auto const employer = attribute(person, u"employer");
  EXPECT_EQ(listOf(employer.subsettingContext()), "Person");
  auto const employee = named<umlmm::Property>(u"employee");
  employer.setType(firm);
  employee.setType(person);
  association.getMemberEnd().push_back(employer);
  association.getMemberEnd().push_back(employee);
  association.getMemberEnd().push_back(named<umlmm::Property>(u"untyped"));
  EXPECT_EQ(listOf(employer.subsettingContext()), "Person");
  EXPECT_EQ(listOf(employee.subsettingContext()), "Firm");

  auto const qualifier = named<umlmm::Property>(u"q");
  employer.getQualifier().push_back(qualifier);
  EXPECT_TRUE(qualifier.subsettingContext().empty());
}

TEST_F(AssociationsTest, TheMetaclassEndIsTheOneThatTheExtensionDoesNotOwn) {
  auto const extension = make<umlmm::Extension>();
  EXPECT_TRUE(extension.metaclassEnd().isNull());
  extension.setOwnedEnd(make<umlmm::ExtensionEnd>());
  EXPECT_TRUE(extension.metaclassEnd().isNull());
  auto const base = named<umlmm::Property>(u"base");
  extension.getMemberEnd().push_back(base);
  EXPECT_EQ(nameOf(extension.metaclassEnd()), "base");
}

TEST_F(AssociationsTest, ALinkActionHasTheAssociationOfItsFirstEnd) {
  auto const action = make<umlmm::ReadLinkAction>();
  EXPECT_TRUE(action.association().isNull());
  auto const data = make<umlmm::LinkEndData>();
  action.getEndData().push_back(data);
  EXPECT_TRUE(action.association().isNull());
  auto const end = named<umlmm::Property>(u"end");
  data.setEnd(end);
  EXPECT_TRUE(action.association().isNull());
  named<umlmm::Association>(u"Link").getMemberEnd().push_back(end);
  EXPECT_EQ(nameOf(action.association()), "Link");
}

TEST_F(AssociationsTest, ReturnParametersAreFoundAmongTheOthers) {
  auto const run = make<umlmm::Operation>();
  for (char16_t const* const name : {u"in", u"first", u"second"}) {
    auto const parameter = named<umlmm::Parameter>(name);
    run.getOwnedParameter().push_back(parameter);
    if (name[0] != u'i')
      parameter.setDirection(umlmm::ParameterDirectionKind(umlmm::ParameterDirectionKind::Return));
  }
  EXPECT_EQ(listOf(run.returnResult()), "first second");
}
