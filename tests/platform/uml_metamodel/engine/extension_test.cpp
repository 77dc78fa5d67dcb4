#include "kelm/ElementQueries.h"
#include "kelm/IntrospectiveMethods.h"
#include "kelm/kernel/containers/Ref.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "kelm/values.h"
#include "reviews.h"

// Metaclasses and features that join while the process runs.

namespace {

using Kelm::Object;
using umlmm::MetamodelExtension;
using Property = Kelm::NSInterface::PropertyIntf;

Property const& propertyOf(Kelm::ImmutableClass const& aClass, std::string_view aName) {
  for (Property const* const property : aClass.get()->allProperties())
    if (property->getName() == aName) return *property;
  throw std::logic_error("no property " + std::string(aName));
}

/// A model from before the extension joined, with its package.
struct Reviews {
  Kelm::Model fEarlier = Kelm::NSInterface::FactoryIntf::createNewModel();
  umlmm::Class fOld = umlmm::Class::create(fEarlier);
  Kelm::ImmutablePackage fPackage;

  Reviews() {
    umlmm::Property::create(fEarlier).setClass(fOld);
    // What is kept of the metamodel as it was must not stay.
    EXPECT_EQ(fOld.allOwnedElements().size(), 1);
    fPackage = reviews();
  }
};

class ExtensionTest : public ModelTest {
 protected:
  static Reviews& all() {
    static Reviews reviews;
    return reviews;
  }
  static Kelm::ImmutableClass classAt(int aIndex) {
    return {all().fPackage.get()->classes()[static_cast<std::size_t>(aIndex)], Kelm::metaDeviant()};
  }
  Kelm::ClassObject makeAt(int aIndex) const { return umlmm::createElement(fModel, classAt(aIndex)); }
  Kelm::ClassObject review() const { return makeAt(0); }
  Kelm::ClassObject finding() const { return makeAt(1); }

  template <class E>
  static Property const& property(E const& aElement, std::string_view aName) {
    return propertyOf(aElement.get()->getMetaClass(), aName);
  }
  template <class E>
  static Object get(E const& aElement, std::string_view aName) {
    Property const& asked = property(aElement, aName);
    return asked.accessors().getEntry(aElement.get(), aElement.getDeviant(), asked.getId());
  }
  template <class E>
  static void set(E const& aElement, std::string_view aName, Object const& aValue) {
    Property const& asked = property(aElement, aName);
    asked.accessors().setEntry(aElement.get(), aElement.getDeviant(), asked.getId(), aValue);
  }
  template <class E>
  static Kelm::Generic::SequenceIntf& list(E const& aElement, std::string_view aName) {
    Property const& asked = property(aElement, aName);
    return *asked.accessors().getSequenceEntry(aElement.get(), aElement.getDeviant(), asked.getId());
  }
  template <class E, class V>
  static void add(E const& aElement, std::string_view aName, V const& aValue) {
    list(aElement, aName)
        .generic_push_back(aElement.getDeviant(), Kelm::Generic::RefAccess<Object>::make(objectOf(aValue)));
  }
  /// The element as one of a published metaclass; null if it is none.
  template <class X>
  static X as(Kelm::ClassObject const& aElement) {
    using Intf = typename X::InterfaceType;
    return X(Kelm::queryInterface<Intf, umlmm::VisitationDomain>(aElement.get()), aElement.getDeviant());
  }
  /// To how many of the published metaclasses the element answers.
  template <class... X>
  static int interfaces(Kelm::ClassObject const& aElement) {
    return (0 + ... + (as<X>(aElement).get() != nullptr));
  }
  template <class V>
  static Object objectOf(V const& aValue) {
    return Object(aValue.get(), aValue.getDeviant());
  }
  static Object text(char16_t const* aText) {
    return Object(umlmm::String(std::u16string(aText)).record(), Kelm::Deviant());
  }
  static int number(Object const& aValue) {
    EXPECT_TRUE(Kelm::isPrimitive(aValue, Kelm::PrimitiveKind::Integer) ||
                Kelm::isPrimitive(aValue, Kelm::PrimitiveKind::Boolean));
    return static_cast<int>(aValue.getDeviant().value());
  }
  template <class E>
  static int count(E const& aElement, std::string_view aName) {
    return list(aElement, aName).generic_size(aElement.getDeviant());
  }
};

TEST_F(ExtensionTest, ElementsMadeBeforeReadUnsetAndTakeValues) {
  umlmm::Class const old = all().fOld;
  EXPECT_TRUE(get(old, "note").isNull());
  EXPECT_TRUE(get(old, "annex").isNull());
  EXPECT_TRUE(get(old, "secrecy").isNull());
  EXPECT_EQ(number(get(old, "effort")), 0);
  EXPECT_EQ(number(get(old, "isDone")), 1);
  EXPECT_EQ(count(old, "review"), 0);
  set(old, "effort", Kelm::makePrimitive(Kelm::PrimitiveKind::Integer, 3));
  set(old, "isDone", Kelm::makePrimitive(Kelm::PrimitiveKind::Boolean, 0));
  EXPECT_EQ(number(get(old, "effort")), 3);
  EXPECT_EQ(number(get(old, "isDone")), 0);
  EXPECT_EQ(old.allOwnedElements().size(), 1);
}

TEST_F(ExtensionTest, LinksKeepBothEndsAndBounds) {
  auto const first = named<umlmm::Class>(u"First");
  auto const one = review();
  add(first, "review", one);
  EXPECT_EQ(count(one, "subject"), 1);
  add(one, "subject", make<umlmm::Class>());
  EXPECT_NE(
      failureOf([&] { add(one, "subject", make<umlmm::Class>()); }).find("Review.subject holds 2 values"),
      std::string::npos);
  EXPECT_NE(failureOf([&] { add(one, "subject", make<umlmm::Actor>()); }).find("takes a Class, not an Actor"),
            std::string::npos);
  first.destroy();
  EXPECT_EQ(count(one, "subject"), 1);
  // A reference without a far end is unset with its value, and a destroyed owner leaves no reference behind.
  auto const actor = make<umlmm::Actor>();
  auto const second = make<umlmm::Class>();
  set(second, "owner of record", objectOf(actor));
  actor.destroy();
  EXPECT_TRUE(get(second, "owner of record").isNull());
}

TEST_F(ExtensionTest, PartsAreOwnedLikeAnyOther) {
  auto const clazz = make<umlmm::Class>();
  auto const one = review();
  auto const part = finding();
  add(one, "finding", part);
  EXPECT_EQ(get(part, "review").get(), one.get());
  EXPECT_EQ(as<umlmm::Element>(part).getOwner().get(), as<umlmm::Element>(one).get());
  EXPECT_EQ(as<umlmm::Element>(one).allOwnedElements().size(), 1);
  set(clazz, "annex", objectOf(part));  // moves
  EXPECT_EQ(count(one, "finding"), 0);
  EXPECT_EQ(clazz.getOwnedElement().size(), 1);
  auto const all =
      Kelm::elementQueries().instancesOf(fModel.object(), fModel.getDeviant(), *classAt(1).get());
  EXPECT_EQ(all->generic_size(fModel.getDeviant()), 1);
  all->decRef();
  clazz.destroy();
  EXPECT_FALSE(part.isvalid());
  EXPECT_TRUE(one.isvalid());
}

TEST_F(ExtensionTest, AddedMetaclassesAreMetaclasses) {
  auto const one = review();
  as<umlmm::NamedElement>(one).setName(umlmm::String(std::u16string(u"Spring")));
  EXPECT_EQ(as<umlmm::NamedElement>(one).getName().text(), u"Spring");
  // Their elements are made from classes that have more interfaces, and answer to none of these.
  using namespace umlmm;
  for (Kelm::ClassObject const& element : {one, finding()}) {
    EXPECT_EQ((interfaces<Comment, Slot, LinkEndData, Relationship, DirectedRelationship, MultiplicityElement,
                          Trigger, Message, Lifeline, GeneralOrdering, InteractionFragment, ExtensionPoint,
                          ConnectableElement, RedefinableElement, ActivityNode, PackageableElement,
                          TypedElement, Namespace, ConnectorEnd, MessageEnd, Feature>(element)),
              0);
  }
  EXPECT_TRUE(one.get()->getMetaClass().get()->conformsTo(*umlmm::ImmutableElement::MetaClass().get()));
  EXPECT_FALSE(classAt(1).get()->conformsTo(*umlmm::ImmutableNamedElement::MetaClass().get()));
  EXPECT_EQ(one.get()->getMetaClass().get()->getQualifiedName(), "reviews::Review");
  EXPECT_STREQ(one.get()->getVeskName(false), "umlmm.NamedElement");
  EXPECT_EQ(umlmm::MetaPackage().get()->classes().size(), 166u);
  auto const owned = umlmm::ImmutableClass::MetaClass().get()->ownedProperties();
  for (std::size_t at = 0; at < owned.size(); ++at) EXPECT_EQ(owned[at]->getId(), at + 1);
  EXPECT_EQ(property(one, "subject").getOpposite(),
            &propertyOf(umlmm::ImmutableClass::MetaClass(), "review"));
}

TEST_F(ExtensionTest, ValuesOfAllKinds) {
  auto const clazz = make<umlmm::Class>();
  set(clazz, "note", text(u"read"));
  auto& remarks = list(clazz, "remark");
  remarks.generic_push_back(fModel.getDeviant(), Kelm::Generic::RefAccess<umlmm::String>::make(
                                                     umlmm::String(std::u16string(u"odd"))));
  EXPECT_EQ(remarks.generic_size(fModel.getDeviant()), 1);
  EXPECT_EQ(Kelm::asString(get(clazz, "note"))->text(), u"read");
  clazz.setVisibility(umlmm::VisibilityKind::Private);
  set(clazz, "secrecy", get(clazz, "visibility"));
  EXPECT_EQ(get(clazz, "secrecy").get(), get(clazz, "visibility").get());
  Property const& secrecy = property(clazz, "secrecy");
  EXPECT_TRUE(secrecy.accessors().isSetEntry(clazz.get(), clazz.getDeviant(), secrecy.getId()));
  secrecy.accessors().unsetEntry(clazz.get(), clazz.getDeviant(), secrecy.getId());
  EXPECT_TRUE(get(clazz, "secrecy").isNull());
  // A destroyed element that somebody holds keeps its lists, and they are empty or gone.
  umlmm::Class const held = clazz;
  held.destroy();
  EXPECT_FALSE(held.isvalid());
}

TEST_F(ExtensionTest, WrongRowsAreRefusedAndNothingJoins) {
  int const before = static_cast<int>(umlmm::ImmutableClass::MetaClass().get()->allProperties().size());
  MetamodelExtension extension("wrong");
  MetamodelExtension::Metaclass const clazz = umlmm::ImmutableClass::MetaClass();
  auto const boolean = dataType("Boolean");
  auto const refusal = [&](MetamodelExtension::FeatureRow const& aRow) {
    return failureOf([&] { extension.addFeature(clazz, aRow); });
  };
  for (auto const& [row, words] : std::vector<std::pair<MetamodelExtension::FeatureRow, char const*>>{
           {{.fName = "name", .fType = boolean}, "has the name of a feature of NamedElement"},
           {{.fName = "", .fType = boolean}, "needs a name"},
           {{.fName = "a", .fType = boolean, .fLower = 2}, "can't hold 2..1 values"},
           {{.fName = "b", .fType = boolean, .fDefault = "perhaps"}, "neither true nor false"},
           {{.fName = "c", .fType = boolean, .fComposite = true}, "holds values"},
           {{.fName = "d", .fType = dataType("VisibilityKind"), .fDefault = "secret"},
            "which its enumeration has not"},
           {{.fName = "e", .fType = dataType("Integer")}, "holds a number"},
           {{.fName = "g", .fType = dataType("Integer"), .fUpper = 2}, "holds many values"},
           {{.fName = "f",
           .fType = clazz,
           .fSubsets = {Kelm::ImmutableProperty(&propertyOf(umlmm::ImmutableActor::MetaClass(), "name"),
                                                Kelm::metaDeviant()),
                        Kelm::ImmutableProperty(
                            &propertyOf(umlmm::ImmutableComment::MetaClass(), "annotatedElement"),
                            Kelm::metaDeviant())}},
            "which Class does not specialize"}})
    EXPECT_NE(refusal(row).find(words), std::string::npos) << refusal(row);
  EXPECT_NE(failureOf([&] { extension.addMetaclass("Class", {clazz}); }).find("already"), std::string::npos);
  EXPECT_NE(failureOf([&] { extension.addMetaclass("Lonely", {}); }).find("needs a metaclass above"),
            std::string::npos);
  extension.addMetaclass("Both", {clazz, umlmm::ImmutableComment::MetaClass()});
  EXPECT_NE(failureOf([&] { extension.commit(); }).find("Both specializes metaclasses"), std::string::npos);
  EXPECT_EQ(static_cast<int>(umlmm::ImmutableClass::MetaClass().get()->allProperties().size()), before);
  auto const stranger = extension.addMetaclass("Stranger", {clazz});
  MetamodelExtension empty("empty");
  EXPECT_NE(failureOf([&] {
              empty.addFeature(clazz, {.fName = "h", .fType = stranger});
            }).find("another extension"),
            std::string::npos);
  EXPECT_EQ(empty.commit().get()->classes().size(), 0u);
  EXPECT_NE(failureOf([&] { empty.commit(); }).find("has joined already"), std::string::npos);
}

}  // namespace
