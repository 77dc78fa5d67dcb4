#include "kelm/ModelElementIntf.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "kelm/meta.h"
#include "platform/kelm/support/failure.h"
#include "platform/kelm/support/objects.h"

namespace {

using Kelm::Object;
using Kelm::NSInterface::ClassObjectIntf;
using Kelm::NSInterface::PropertyIntf;

constexpr char kSource[] = "kelm/Kelm/ClassObject";

TEST(BareInterface, AnswersAsIfNobodyStoodBehindIt) {
  TestElement bare(nullptr);
  Kelm::ElementState::hint(bare) = 3;
  EXPECT_EQ(bare.incRef(), 0);
  EXPECT_EQ(bare.decRef(), 0);
  EXPECT_EQ(bare.numRef(), 0);
  EXPECT_EQ(Kelm::queryInterface<ClassObjectIntf>(&bare), nullptr);
  OpenModel const model;
  Kelm::ElementState::model(bare) = &model.object();
  EXPECT_FALSE(bare.deviant_isValid(model.base()));
  EXPECT_TRUE(bare.getMetaClass().isNull());

  Kelm::NSInterface::metaclassName = [](int aMetaclass) { return aMetaclass == 3 ? "Comment" : "?"; };
  for (bool const immutable : {true, false})
    EXPECT_TRUE(tells(failureOf([&] { bare.getVeskName(immutable); }), "Internal Error",
                      "uml_metamodel/umlmm/NSInterface/CommentIntf"));
  Kelm::NSInterface::metaclassName = nullptr;
}

TEST(Element, ExistsInTheVariantsOfItsOpenModelOnly) {
  OpenModel const model;
  OpenModel const other;
  TestElement element;
  Kelm::ElementState::model(element) = &model.object();
  EXPECT_TRUE(element.deviant_isValid(model.base()));
  EXPECT_TRUE(element.deviant_isValid(model.object().readOnlyDeviant()));
  EXPECT_FALSE(element.deviant_isValid(other.base()));
  EXPECT_FALSE(element.deviant_isValid(Kelm::Deviant()));
  EXPECT_FALSE(element.deviant_isValid(Kelm::Deviant::ofValue(1)));
  model.object().close();
  EXPECT_FALSE(element.deviant_isValid(model.base()));
}

TEST(ElementClass, ListsTheKernelsFeaturesInIdOrder) {
  auto const elementClass = Kelm::ImmutableClassObject::MetaClass();
  EXPECT_EQ(elementClass.get()->getQualifiedName(), "Kelm::ClassObject");
  EXPECT_EQ(elementClass.get()->getName(), "ClassObject");
  auto const properties = elementClass.get()->allProperties();
  ASSERT_EQ(properties.size(), ClassObjectIntf::kKernelFeatureCount);
  auto const& methods = ClassObjectIntf::sIntrospectiveMethods;
  EXPECT_EQ(*methods.owner, elementClass.get());
  EXPECT_EQ(methods.metaPropertyTable[0].fProperty, nullptr);
  std::set<std::string> settable;
  for (unsigned id = 1; id <= properties.size(); ++id) {
    PropertyIntf const& property = *properties[id - 1];
    EXPECT_EQ(methods.metaPropertyTable[id].fProperty, &property);
    EXPECT_EQ(property.getId(), id);
    EXPECT_EQ(&property.getOwner(), elementClass.get());
    EXPECT_EQ(&property.accessors(), &methods);
    PropertyIntf const* const opposite = property.getOpposite();
    EXPECT_TRUE(opposite == nullptr || opposite->getOpposite() == &property);
    if (!property.isReadOnly()) settable.emplace(property.getName());
  }
  EXPECT_EQ(settable, (std::set<std::string>{"externalId", "externalToolInfo"}));
  EXPECT_TRUE(properties[ClassObjectIntf::ContaineeKelm - 1]->isMultivalued());
}

/// Answers text for id 6 once it is set; remembers who was asked.
struct Engine {
  static inline Object sExternalId;
  static inline unsigned sSequenceAsked = 0;

  Engine() {
    auto& engine = TestElement::engine();
    engine.getKernelEntry = [](auto const*, auto const&, unsigned aId) {
      return aId == ClassObjectIntf::ExternalId ? sExternalId : Object();
    };
    engine.setKernelEntry = [](auto*, auto const&, unsigned, Object const& aValue) { sExternalId = aValue; };
    engine.getKernelSequence = [](auto const*, auto const&, unsigned aId) -> Kelm::Generic::SequenceIntf* {
      sSequenceAsked = aId;
      return nullptr;
    };
  }
  ~Engine() { sExternalId = Object(); }
};

TEST(KernelFeatures, GoToTheElementsEngine) {
  Engine const engine;
  OpenModel const model;
  TestElement element;
  auto const& methods = ClassObjectIntf::sIntrospectiveMethods;
  Kelm::Deviant const base = model.base();
  Kelm::Deviant const readOnly = model.object().readOnlyDeviant();
  Kelm::String const text(std::u16string(u"id"));
  Object const value(text.record(), Kelm::Deviant());
  constexpr unsigned kId = ClassObjectIntf::ExternalId;

  EXPECT_FALSE(methods.isSetEntry(&element, base, kId));
  methods.setEntry(&element, base, kId, value);
  EXPECT_TRUE(methods.isSetEntry(&element, base, kId));
  EXPECT_EQ(methods.getEntry(&element, base, kId), value);
  EXPECT_NE(failureOf([&] { methods.unsetEntry(&element, readOnly, kId); }), "");
  EXPECT_TRUE(methods.isSetEntry(&element, readOnly, kId));
  methods.unsetEntry(&element, base, kId);
  EXPECT_FALSE(methods.isSetEntry(&element, base, kId));

  EXPECT_TRUE(methods.getEntry(&element, base, ClassObjectIntf::ContaineeKelm).isNull());
  EXPECT_FALSE(methods.isSetEntry(&element, base, ClassObjectIntf::ContaineeKelm));
  EXPECT_EQ(Engine::sSequenceAsked, ClassObjectIntf::ContaineeKelm);
  EXPECT_EQ(methods.getSequenceEntry(&element, base, kId), nullptr);
  EXPECT_TRUE(tells(failureOf([&] { methods.setEntry(&element, base, ClassObjectIntf::Uri, value); }),
                    "You cannot set a read-only property", kSource));
  for (unsigned const id : {0u, 9u})
    EXPECT_TRUE(
        tells(failureOf([&] { methods.getEntry(&element, base, id); }), "invalid meta property id", kSource));
}

TEST(Object, ThatCannotBeDestroyedSaysSo) {
  CountedObject counted;
  counted.incRef();
  EXPECT_NE(failureOf([&] { Object(&counted, Kelm::Deviant()).destroy(); }), "");
  EXPECT_TRUE(counted.getMetaType(Kelm::Deviant()).isNull());
  EXPECT_TRUE(tells(failureOf([] { Object().destroy(); }),
                    "Cannot access NULL ref. Use isValid() before calling methods", "kelm/Kelm/Object_h"));
}

}  // namespace
