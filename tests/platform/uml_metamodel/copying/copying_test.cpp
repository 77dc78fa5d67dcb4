#include "uml_metamodel/umlmm/copying.h"

#include <map>
#include <sstream>

#include "kelm/IntrospectiveMethods.h"
#include "kelm/kernel/containers/Ref.h"
#include "kelm/kernel/containers/failing_allocations.h"
#include "kelm/values.h"
#include "platform/uml_metamodel/engine/reviews.h"

namespace {

using Kelm::Object;
using Element = Kelm::NSInterface::ClassObjectIntf;
using Property = Kelm::NSInterface::PropertyIntf;
using Elements = std::vector<Element*>;

Elements elementsOf(Kelm::Model const& aModel) {
  Elements all;
  for (umlmm::Element const& element : umlmm::instancesOf<umlmm::Element>(aModel))
    all.push_back(element.get());
  return all;
}

/// An element and all that it owns, owners first.
Elements elementsOf(umlmm::Element const& aRoot) {
  Elements all{aRoot.get()};
  for (umlmm::ImmutableElement const& element : aRoot.allOwnedElements())
    all.push_back(const_cast<umlmm::NSInterface::ElementIntf*>(element.get()));
  return all;
}

/// What can be read of elements: values, derived ones too, with each other by number and all others by
/// address.
std::string picture(Elements const& aElements, Kelm::Deviant const& aVariant) {
  std::ostringstream out;
  std::map<void const*, std::size_t> numbers;
  for (Element* const element : aElements) numbers.emplace(element, numbers.size());
  auto const show = [&](Object const& aValue) {
    auto const* const element = Kelm::queryInterface<Element>(aValue.get());
    auto const found = numbers.find(element);
    if (aValue.isNull())
      out << " -";
    else if (auto const* const text = Kelm::asString(aValue))
      out << " '" << Kelm::toUtf8(text->text()) << '\'';
    else if (found != numbers.end())
      out << " #" << found->second;
    else
      out << ' ' << aValue.get() << ':' << (element == nullptr ? aValue.getDeviant().word() : 0);
  };
  for (Element* const element : aElements) {
    out << '#' << numbers.at(element) << ' ' << element->getMetaClass().get()->getName() << '\n';
    for (Property const* const property : element->getMetaClass().get()->allProperties()) {
      auto const& accessors = property->accessors();
      std::string_view const name = property->getName();
      // They tell of the model.
      if (name == "modelKelm" || name == "uri") continue;
      out << "  " << name << (accessors.isSetEntry(element, aVariant, property->getId()) ? " =" : " unset");
      if (!property->isMultivalued()) {
        show(accessors.getEntry(element, aVariant, property->getId()));
      } else {
        auto& values = *accessors.getSequenceEntry(element, aVariant, property->getId());
        bool const refers = property->getType().conformsTo(*umlmm::ImmutableElement::MetaClass().get()) ||
                            property->getType().getName() == "ClassObject";
        for (int i = 0; i < values.generic_size(aVariant); ++i) {
          auto const value = values.generic_at(aVariant, i);
          if (refers)
            show(Kelm::Generic::RefAccess<Object>::get(value));
          else if (property->getType().getName() == "String")
            show(Kelm::Generic::RefAccess<umlmm::String>::get(value));
          else
            show(Kelm::Generic::RefAccess<umlmm::Boolean>::get(value));
        }
      }
      out << '\n';
    }
  }
  return out.str();
}
std::string picture(Kelm::Model const& aModel) { return picture(elementsOf(aModel), aModel.getDeviant()); }

Object valueOf(std::string_view aType, unsigned aNumber) {
  if (aType == "String") return umlmm::String(u"text " + std::u16string(1, char16_t(u'A' + aNumber % 26)));
  if (aType == "Boolean") return umlmm::Boolean(aNumber % 2 == 0);
  if (aType == "Integer") return umlmm::Integer(static_cast<int>(aNumber));
  if (aType == "UnlimitedNatural") return umlmm::UnlimitedNatural(aNumber);
  if (aType == "VisibilityKind") return umlmm::VisibilityKind(umlmm::VisibilityKind::Private);
  return umlmm::AggregationKind(umlmm::AggregationKind::Composite);
}

/// Sets a feature, or adds to it, where it takes the value.
void give(Element& aElement, Property const& aProperty, Object const& aValue, Kelm::Deviant const& aVariant) {
  using Kelm::Generic::RefAccess;
  auto const& accessors = aProperty.accessors();
  try {
    if (!aProperty.isMultivalued()) return accessors.setEntry(&aElement, aVariant, aProperty.getId(), aValue);
    auto& list = *accessors.getSequenceEntry(&aElement, aVariant, aProperty.getId());
    if (Kelm::queryInterface<Element>(aValue.get()) != nullptr)
      list.generic_push_back(aVariant, RefAccess<Object>::make(aValue));
    else if (aProperty.getType().getName() == "String")
      list.generic_push_back(aVariant, RefAccess<umlmm::String>::make(umlmm::String(aValue)));
    else
      list.generic_push_back(aVariant, RefAccess<umlmm::Boolean>::make(umlmm::Boolean(aValue)));
  } catch (Kelm::Exception const&) {  // the model is as it was
  }
}

class CopyingTest : public ModelTest {
 protected:
  /// Two elements of each metaclass, added ones too, and something in nearly every feature of the first.
  void fillModel() const {
    Elements all;
    for (auto const& package : {umlmm::MetaPackage(), reviews()})
      for (auto const* const metaclass : package.get()->classes())
        for (int i = 0; i < 2 && !metaclass->isAbstract(); ++i)
          all.push_back(umlmm::createElement(fModel, {metaclass, Kelm::metaDeviant()}).get());
    unsigned number = 0;
    for (std::size_t at = 0; at < all.size(); at += 2) {
      for (Property const* const property : all[at]->getMetaClass().get()->allProperties()) {
        if (property->isReadOnly()) continue;
        Elements fitting;
        for (Element* const other : all)
          if (other->getMetaClass().get()->conformsTo(property->getType())) fitting.push_back(other);
        for (int i = 0; i < 3; ++i, ++number) {
          Object const value = fitting.empty()
                                   ? valueOf(property->getType().getName(), number)
                                   : Object(fitting[number * 7 % fitting.size()], fModel.getDeviant());
          give(*all[at], *property, value, fModel.getDeviant());
        }
      }
    }
  }
};

TEST_F(CopyingTest, aCopiedModelReadsAsTheOriginal) {
  fillModel();
  umlmm::Comment::create(fModel).get()->setKernelEntry(fModel.getDeviant(), Element::ExternalId,
                                                       umlmm::String(u"id of another tool"));
  Kelm::Model const copy = umlmm::createNewModel();
  std::string const before = picture(fModel);
  umlmm::copyInto(copy, Kelm::ImmutableModel(fModel.get(), fModel.object().readOnlyDeviant()));
  EXPECT_EQ(picture(copy), before);
  EXPECT_EQ(picture(fModel), before);
  EXPECT_GT(std::count(before.begin(), before.end(), '='), 3000);
  copy.object().close();
}

TEST_F(CopyingTest, aCloneHasItsOwnPartsAndTheOthersOfTheOriginal) {
  auto const shop = named<umlmm::Package>(u"shop");
  auto const order = named<umlmm::Class>(u"Order"), item = named<umlmm::Class>(u"Item");
  auto const outside = named<umlmm::Class>(u"Outside");
  for (auto const& element : {order, item}) shop.getPackagedElement().push_back(element);
  umlmm::Property const ends[] = {named<umlmm::Property>(u"items"), named<umlmm::Property>(u"order"),
                                  named<umlmm::Property>(u"other")};
  ends[0].setType(item);
  ends[1].setType(order);  // a cycle
  ends[2].setType(outside);
  order.getOwnedAttribute().push_back(ends[2]);
  order.getOwnedAttribute().push_back(ends[0]);
  item.getOwnedAttribute().push_back(ends[1]);
  auto const inner = make<umlmm::Association>();
  shop.getPackagedElement().push_back(inner);
  for (auto const& end : {ends[1], ends[0]}) inner.getMemberEnd().push_back(end);
  auto const uses = make<umlmm::Dependency>();
  shop.getPackagedElement().push_back(uses);
  for (auto const& client : {outside, item, order}) uses.getClient().push_back(client);
  for (auto const& general : {outside, item, make<umlmm::Class>()}) order.getSuperClass().push_back(general);
  order.setIsAbstract(umlmm::Boolean(true));
  Elements const originals = elementsOf(shop);
  std::string const before = picture(originals, fModel.getDeviant());

  umlmm::Package const copy = umlmm::clone(shop);
  EXPECT_EQ(picture(elementsOf(copy), fModel.getDeviant()), before);
  EXPECT_EQ(picture(originals, fModel.getDeviant()), before);
  EXPECT_EQ(fModel.object().roots()->at(fModel.object().roots()->size() - 1), copy.get());
  // Where an element must have a reference, the far end holds the copy as well.
  EXPECT_EQ(outside.getClientDependency().size(), 2);
  // No other reference changes its far end, and no far end that holds one element gives it away.
  EXPECT_TRUE(umlmm::clone(ends[0]).getAssociation().isNull());
  EXPECT_TRUE(umlmm::clone(item).getClientDependency().empty());
  inner.getOwnedEnd().push_back(named<umlmm::Property>(u"own"));
  EXPECT_EQ(umlmm::clone(inner).getMemberEnd().size(), 1);
  EXPECT_EQ(inner.getMemberEnd().size(), 3);
}

TEST_F(CopyingTest, depthIsBoundedByMemoryAlone) {
  auto const root = named<umlmm::Package>(u"0");
  umlmm::Package inner = root;
  for (int i = 0; i < 10000; ++i) {
    auto const next = make<umlmm::Package>();
    inner.getPackagedElement().push_back(next);
    inner = next;
  }
  umlmm::Package const copy = umlmm::clone(root);
  EXPECT_EQ(copy.allOwnedElements().size(), 10000);
}

TEST_F(CopyingTest, whatCannotBeCopiedIsRefused) {
  auto const element = named<umlmm::Class>(u"Order");
  Kelm::Deviant const readOnly = fModel.object().readOnlyDeviant();
  EXPECT_THROW(umlmm::clone(umlmm::Class()), Kelm::Exception);
  EXPECT_THROW(umlmm::clone(umlmm::Class(element.get(), readOnly)), Kelm::Exception);
  EXPECT_THROW(umlmm::copyInto(Kelm::Model(fModel.get(), readOnly), fModel), Kelm::Exception);
  EXPECT_THROW(umlmm::copyInto(fModel, Kelm::Model()), Kelm::Exception);
  element.destroy();
  EXPECT_THROW(umlmm::clone(element), Kelm::Exception);
  EXPECT_EQ(Kelm::ElementList::size(fModel.object().roots()), 0u);
}

TEST_F(CopyingTest, whatFailsForWantOfMemoryLeavesNothingBehind) {
  fillModel();
  umlmm::Package root;
  for (umlmm::Package const& package : umlmm::instancesOf<umlmm::Package>(fModel))
    if (root.isNull() || package.allOwnedElements().size() > root.allOwnedElements().size()) root = package;
  ASSERT_GT(root.allOwnedElements().size(), 3);
  std::string const before = picture(fModel);
  std::string const original = picture(elementsOf(root), fModel.getDeviant());
  bool wasReached = true;
  for (int failsAt = 1; wasReached && !HasFailure(); failsAt += 1 + failsAt / 16) {
    bool failed = false;
    sequence_suite::sAllocationFailsAt = failsAt;
    try {
      umlmm::clone(root).destroy();
    } catch (std::bad_alloc const&) {
      failed = true;
    }
    wasReached = sequence_suite::sAllocationFailsAt == 0;
    sequence_suite::sAllocationFailsAt = 0;
    EXPECT_EQ(picture(fModel), before) << "allocation " << failsAt << (failed ? "" : ", which did not fail");
  }
  EXPECT_EQ(picture(elementsOf(root), fModel.getDeviant()), original);
}

}  // namespace
