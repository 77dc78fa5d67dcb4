#include "kelm/tags.h"

#include <gtest/gtest.h>

#include "kelm/Generic.h"
#include "kelm/ObjectIntf.h"
#include "kelm/meta.h"
#include "platform/kelm/support/objects.h"

namespace {

using namespace Kelm::CooperativeVisitor::internal;

struct OtherDomain {};
struct Interface {};

TEST(Tags, AreStableForAPairAndApartForOthers) {
  Tag const first = GetTag(typeid(Interface), typeid(Kelm::VisitationDomain));
  EXPECT_EQ(GetTag(typeid(Interface), typeid(Kelm::VisitationDomain)), first);
  EXPECT_NE(GetTag(typeid(Interface), typeid(OtherDomain)), first);
  EXPECT_NE(GetTag(typeid(OtherDomain), typeid(Kelm::VisitationDomain)), first);
}

TEST(Tags, AreDenseFromOne) {
  struct New {};
  Tag const limit = tagLimit();
  EXPECT_EQ(GetTag(typeid(New), typeid(OtherDomain)), limit);
  EXPECT_EQ(tagLimit(), limit + 1);
  EXPECT_GE(GetTag(typeid(Interface), typeid(OtherDomain)), 1u);
}

TEST(Tags, APairJoinsDomainAndType) {
  ClassInfo const& pair = Kelm::tagPair<Interface, OtherDomain>();
  EXPECT_EQ(pair.fDomain, GetTag(typeid(OtherDomain), typeid(RootVisitationDomain)));
  EXPECT_EQ(pair.fType, GetTag(typeid(Interface), typeid(OtherDomain)));
  EXPECT_EQ((&Kelm::tagPair<Interface, OtherDomain>()), &pair);
}

TEST(Tags, QueriesFindWhatAnObjectIsAndNothingElse) {
  CountedObject object;
  EXPECT_EQ(Kelm::queryInterface<Kelm::NSInterface::ObjectIntf>(&object), &object);
  EXPECT_EQ(Kelm::queryInterface<Kelm::ReferenceCountingIntf>(&object), &object);
  EXPECT_EQ(Kelm::queryInterface<Kelm::NSInterface::ModelIntf>(&object), nullptr);
  EXPECT_EQ(Kelm::queryInterface<Kelm::Generic::SequenceIntf>(&object), nullptr);
  EXPECT_EQ((Kelm::queryInterface<Kelm::NSInterface::ObjectIntf, OtherDomain>(&object)), nullptr);
  EXPECT_EQ(Kelm::queryInterface<Kelm::NSInterface::ObjectIntf>(nullptr), nullptr);

  OpenModel const model;
  EXPECT_EQ(Kelm::queryInterface<Kelm::NSInterface::ModelIntf>(&model.object()), &model.object());
  auto const* const elementClass = Kelm::ImmutableClassObject::MetaClass().get();
  EXPECT_EQ(Kelm::queryInterface<Kelm::NSInterface::ClassIntf>(elementClass), elementClass);
  EXPECT_EQ(Kelm::queryInterface<Kelm::NSInterface::TypeIntf>(elementClass), elementClass);
  EXPECT_EQ(Kelm::queryInterface<Kelm::NSInterface::DataTypeIntf>(elementClass), nullptr);
}

}  // namespace
