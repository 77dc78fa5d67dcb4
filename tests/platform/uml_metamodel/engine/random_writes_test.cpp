#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "models.h"

namespace {

using Kelm::NSInterface::ClassIntf;
using Kelm::NSInterface::ModelElementIntf;
using Kelm::NSInterface::ObjectIntf;
using Kelm::NSInterface::PropertyIntf;
using Access = Kelm::Generic::RefAccess<Kelm::Object>;

/// A model that is written at random through the accessor tables, and what must hold of it whatever was
/// written.
class RandomWritesTest : public ModelTest, public testing::WithParamInterface<unsigned> {
 protected:
  RandomWritesTest() : fRandom(GetParam()), fDeviant(fModel.getDeviant()) {}

  std::size_t below(std::size_t aLimit) { return fRandom() % aLimit; }

  void makeElements(int aCount) {
    std::vector<int> concrete;
    auto const classes = umlmm::MetaPackage().get()->classes();
    for (std::size_t index = 0; index < classes.size(); ++index)
      if (!classes[index]->isAbstract()) concrete.push_back(static_cast<int>(index));
    for (int count = 0; count < aCount; ++count)
      fElements.emplace_back(umlmm::detail::createElement(concrete[below(concrete.size())], fModel),
                             fDeviant);
  }

  /// A reference of the metamodel's own: what the kernel adds to every element are views of the model.
  static bool isReference(PropertyIntf const& aProperty) {
    return dynamic_cast<ClassIntf const*>(&aProperty.getType()) != nullptr &&
           &aProperty.getOwner() != Kelm::ImmutableClassObject::MetaClass().get();
  }

  std::vector<ObjectIntf*> valuesOf(Kelm::ClassObject const& aElement, PropertyIntf const& aProperty) const {
    auto const& methods = aProperty.accessors();
    std::vector<ObjectIntf*> values;
    if (!aProperty.isMultivalued()) {
      auto const value = methods.getEntry(aElement.get(), fDeviant, aProperty.getId());
      if (!value.isNull()) values.push_back(value.get());
      return values;
    }
    auto* const sequence = methods.getSequenceEntry(aElement.get(), fDeviant, aProperty.getId());
    for (int index = 0; index < sequence->generic_size(fDeviant); ++index)
      values.push_back(Access::get(sequence->generic_at(fDeviant, index)).get());
    return values;
  }

  void writeOnce() {
    auto const& element = fElements[below(fElements.size())];
    auto const properties = element.get()->getMetaClass().get()->allProperties();
    PropertyIntf const& property = *properties[below(properties.size())];
    if (!isReference(property) || property.isReadOnly()) return;
    auto const& value = fElements[below(fElements.size())];
    auto const& methods = property.accessors();
    try {
      if (!property.isMultivalued()) {
        if (below(4) == 0)
          methods.unsetEntry(element.get(), fDeviant, property.getId());
        else
          methods.setEntry(element.get(), fDeviant, property.getId(), Kelm::Object(value.get(), fDeviant));
        return;
      }
      auto* const list = methods.getSequenceEntry(element.get(), fDeviant, property.getId());
      int const size = list->generic_size(fDeviant);
      auto const reference = Access::make(Kelm::Object(value.get(), fDeviant));
      switch (below(5)) {
        case 0:
          if (size > 0)
            list->generic_erase(fDeviant, static_cast<int>(below(static_cast<std::size_t>(size))));
          break;
        case 1:
          if (size > 0)
            list->generic_replace(fDeviant, static_cast<int>(below(static_cast<std::size_t>(size))),
                                  reference);
          break;
        case 2:
          list->generic_insert(fDeviant, static_cast<int>(below(static_cast<std::size_t>(size) + 1)),
                               reference);
          break;
        default:
          list->generic_push_back(fDeviant, reference);
      }
    } catch (Kelm::Exception const&) {
      ++fRefused;
    }
  }

  bool has(std::vector<ObjectIntf*> const& aValues, ObjectIntf const* aValue) const {
    return std::find(aValues.begin(), aValues.end(), aValue) != aValues.end();
  }

  /// The property as the element's metaclass sees it, or null.
  static bool hasProperty(ClassIntf const& aClass, PropertyIntf const& aProperty) {
    return aClass.conformsTo(aProperty.getOwner());
  }

  void checkElement(Kelm::ClassObject const& aElement) const {
    ClassIntf const& metaClass = *aElement.get()->getMetaClass().get();
    for (PropertyIntf const* const property : metaClass.allProperties()) {
      if (!isReference(*property)) continue;
      auto const values = valuesOf(aElement, *property);
      auto const label = std::string(metaClass.getName()) + " " +
                         std::string(property->getOwner().getName()) + "." + std::string(property->getName());
      EXPECT_EQ(std::set<ObjectIntf*>(values.begin(), values.end()).size(), values.size()) << label;
      if (!property->isMultivalued()) {
        EXPECT_LE(values.size(), 1U) << label;
      }
      for (ObjectIntf* const value : values) checkValue(aElement, *property, value, label);
    }
  }

  void checkValue(Kelm::ClassObject const& aElement, PropertyIntf const& aProperty, ObjectIntf* aValue,
                  std::string const& aLabel) const {
    auto* const far = Kelm::queryInterface<Kelm::NSInterface::ClassObjectIntf>(aValue);
    ASSERT_NE(far, nullptr);
    EXPECT_TRUE(far->getMetaClass().get()->conformsTo(aProperty.getType())) << aLabel;
    if (PropertyIntf const* const opposite = aProperty.getOpposite();
        opposite != nullptr && hasProperty(*far->getMetaClass().get(), *opposite)) {
      EXPECT_TRUE(has(valuesOf(Kelm::ClassObject(far, fDeviant), *opposite), aElement.get())) << aLabel;
    }
    for (PropertyIntf const* const wide : aProperty.subsetted()) {
      if (!hasProperty(*aElement.get()->getMetaClass().get(), *wide)) continue;
      EXPECT_TRUE(has(valuesOf(aElement, *wide), aValue)) << aLabel << " in " << wide->getName();
    }
  }

  /// Every element is held by one owner at most, and knows it.
  void checkOwners() const {
    std::map<ObjectIntf*, ObjectIntf*> owners;
    for (auto const& element : fElements) {
      umlmm::Element const owner = Kelm::queryHandle<umlmm::Element, umlmm::VisitationDomain>(element);
      for (umlmm::ImmutableElement const& part : owner.getOwnedElement().values()) {
        ObjectIntf* const object = const_cast<umlmm::NSInterface::ElementIntf*>(part.get());
        EXPECT_TRUE(owners.emplace(object, element.get()).second);
        EXPECT_EQ(part.getOwner().get(), owner.get());
      }
    }
  }

  void checkAll() const {
    for (auto const& element : fElements) checkElement(element);
    checkOwners();
  }

  std::mt19937 fRandom;
  Kelm::Deviant fDeviant;
  std::vector<Kelm::ClassObject> fElements;
  int fRefused = 0;
};

}  // namespace

TEST_P(RandomWritesTest, KeepPairsOwnersAndSubsets) {
  makeElements(400);
  for (int round = 0; round < 5; ++round) {
    for (int count = 0; count < 20000; ++count) writeOnce();
    checkAll();
    if (HasFailure()) return;
  }
  EXPECT_GT(fRefused, 0);
}

TEST_P(RandomWritesTest, DestroyedElementsLeaveNoTrace) {
  makeElements(300);
  for (int count = 0; count < 60000; ++count) writeOnce();
  for (int round = 0; round < 100 && !fElements.empty(); ++round) {
    fElements[below(fElements.size())].destroy();
    std::erase_if(fElements, [](Kelm::ClassObject const& aElement) { return !aElement.isvalid(); });
    for (int count = 0; count < 50 && !fElements.empty(); ++count) writeOnce();
  }
  for (auto const& element : fElements) {
    for (PropertyIntf const* const property : element.get()->getMetaClass().get()->allProperties()) {
      if (!isReference(*property)) continue;
      for (ObjectIntf* const value : valuesOf(element, *property)) {
        EXPECT_TRUE(value->deviant_isValid(fDeviant)) << property->getName();
      }
    }
  }
  checkAll();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomWritesTest, testing::Values(1U, 2U, 3U));
