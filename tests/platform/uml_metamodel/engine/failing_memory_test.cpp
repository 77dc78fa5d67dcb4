#include <functional>
#include <map>
#include <new>
#include <set>
#include <sstream>

#include "kelm/ElementQueries.h"
#include "kelm/IntrospectiveMethods.h"
#include "kelm/kernel/containers/Ref.h"
#include "kelm/kernel/containers/failing_allocations.h"
#include "kelm/values.h"
#include "reviews.h"

// Every feature that can be written, in every way in which it can: whichever allocation fails on the way, the
// model is as it was, and the same change succeeds afterwards.

namespace {

using Kelm::Object;
using Element = Kelm::NSInterface::ModelElementIntf;
using Property = Kelm::NSInterface::PropertyIntf;
using Sequence = Kelm::Generic::SequenceIntf;

Kelm::NSInterface::ClassIntf const& classAt(int aIndex) { return *umlmm::detail::metaClass(aIndex).get(); }

/// All metaclasses, those of an extension behind the published ones.
int metaclassCount() {
  return static_cast<int>(umlmm::MetaPackage().get()->classes().size() + reviews().get()->classes().size());
}

/// Concrete metaclasses at or below a type, by index.
std::vector<int> concreteBelow(Kelm::NSInterface::TypeIntf const& aType) {
  std::vector<int> found;
  for (int index = 0; index < metaclassCount(); ++index)
    if (!classAt(index).isAbstract() && classAt(index).conformsTo(aType)) found.push_back(index);
  return found;
}

/// A model with two elements that have the feature and four that it can hold: the first has one or two of
/// them, the second, which is the way for parts and single far ends, has the third. Others refer to some of
/// them.
class World {
 public:
  World(Property const& aProperty, int aOwner, int aValue) : fProperty(aProperty) {
    for (Element*& owner : fOwners) owner = make(aOwner);
    if (aValue >= 0)
      for (Element*& value : fValues) value = make(aValue);
    for (Element* const element : {fOwners[0], fValues[0], fValues[2]}) {
      if (element == nullptr) continue;
      for (int i = 0; i < 2; ++i)
        umlmm::Comment::create(fModel).getAnnotatedElement().get()->generic_push_back(
            variant(), Kelm::Generic::RefAccess<Object>::make(Object(element, variant())));
    }
    setUp();
    Kelm::elementQueries().instancesOf(fModel.object(), variant(), classAt(aOwner))->decRef();
  }
  ~World() { fModel.object().close(); }

  Kelm::Deviant variant() const { return fModel.getDeviant(); }
  Element& owner(int aAt = 0) const { return *fOwners[aAt]; }
  Element& value(int aAt) const { return *fValues[aAt]; }
  Object object(int aAt) const {
    if (fProperty.getType().conformsTo(*umlmm::ImmutableElement::MetaClass().get()))
      return Object(fValues[aAt], variant());
    auto const number = static_cast<std::uint32_t>(aAt);
    std::string_view const type = fProperty.getType().getName();
    if (type == "String")
      return umlmm::String(u"a text of its own, number " + std::u16string(1, u'0' + number));
    if (type == "Boolean") return umlmm::Boolean(number % 2 == 0);
    if (type == "Integer") return umlmm::Integer(static_cast<int>(number));
    if (type == "UnlimitedNatural") return umlmm::UnlimitedNatural(number);
    return umlmm::VisibilityKind(umlmm::VisibilityKind::Private);
  }
  Kelm::Generic::Ref ref(int aAt) const {
    if (fValues[0] != nullptr) return Kelm::Generic::RefAccess<Object>::make(object(aAt));
    if (fProperty.getType().getName() == "String")
      return Kelm::Generic::RefAccess<umlmm::String>::make(umlmm::String(object(aAt)));
    return Kelm::Generic::RefAccess<umlmm::Boolean>::make(umlmm::Boolean(object(aAt)));
  }
  void set(int aAt, int aOwner = 0) const {
    fProperty.accessors().setEntry(fOwners[aOwner], variant(), fProperty.getId(), object(aAt));
  }
  void unset() const { fProperty.accessors().unsetEntry(fOwners[0], variant(), fProperty.getId()); }
  Sequence& list(int aOwner = 0) const {
    return *fProperty.accessors().getSequenceEntry(fOwners[aOwner], variant(), fProperty.getId());
  }
  void assign(int aFrom) const {
    fProperty.accessors().setSequenceEntry(fOwners[0], variant(), fProperty.getId(), &list(aFrom), variant());
  }

  /// All that can be asked about the model, by the numbers of its elements.
  std::string picture() const {
    std::ostringstream out;
    std::map<Kelm::NSInterface::ObjectIntf const*, std::size_t> numbers;
    auto const nameOf = [&](Object const& aValue) {
      auto const* const element = Kelm::queryInterface<Kelm::NSInterface::ClassObjectIntf>(aValue.get());
      if (element == nullptr) return valueText(aValue);
      return "#" + std::to_string(numbers.emplace(aValue.get(), numbers.size()).first->second);
    };
    auto const all = [&](Sequence& aSequence) {
      for (int i = 0; i < aSequence.generic_size(variant()); ++i)
        out << ' ' << nameOf(Kelm::Generic::RefAccess<Object>::get(aSequence.generic_at(variant(), i)));
      out << '\n';
    };
    for (Element* const element : fOwners) nameOf(Object(element, variant()));
    for (Element* const element : fValues)
      if (element != nullptr) nameOf(Object(element, variant()));
    for (Element* const root : *fModel.object().roots())
      if (root != nullptr) out << ' ' << nameOf(Object(root, variant()));
    out << '\n';
    auto const extent = [&](auto const& aClass) {
      Sequence* const found = Kelm::elementQueries().instancesOf(fModel.object(), variant(), aClass);
      all(*found);
      return found;
    };
    Sequence* const everything = extent(*umlmm::ImmutableElement::MetaClass().get());
    extent(*fOwners[0]->getMetaClass().get())->decRef();
    for (int i = 0; i < everything->generic_size(variant()); ++i) {
      auto const object = Kelm::Generic::RefAccess<Object>::get(everything->generic_at(variant(), i));
      auto const* const element = Kelm::queryInterface<Kelm::NSInterface::ClassObjectIntf>(object.get());
      out << nameOf(object) << ' ' << element->getMetaClass().get()->getName() << " in "
          << nameOf(element->getKernelEntry(variant(), Kelm::NSInterface::ClassObjectIntf::ContainerKelm))
          << '\n';
      for (Property const* const property : element->getMetaClass().get()->allProperties()) {
        auto const& accessors = property->accessors();
        if (property->getName() == "modelKelm") continue;
        if (!property->isMultivalued()) {
          Object const value = accessors.getEntry(element, variant(), property->getId());
          if (!value.isNull()) out << "  " << property->getName() << ' ' << nameOf(value) << '\n';
        } else if (Sequence& values = *accessors.getSequenceEntry(element, variant(), property->getId());
                   !values.generic_empty(variant())) {
          out << "  " << property->getName();
          if (property->getType().conformsTo(*umlmm::ImmutableElement::MetaClass().get()))
            all(values);
          else
            out << ' ' << values.generic_size(variant()) << '\n';
        }
      }
      Sequence* const referrers =
          Kelm::elementQueries().referencedBy(static_cast<Element const&>(*element), variant());
      out << "  from";
      all(*referrers);
      referrers->decRef();
    }
    everything->decRef();
    return out.str();
  }

 private:
  Element* make(int aMetaclass) const { return umlmm::detail::createElement(aMetaclass, fModel); }
  static std::string valueText(Object const& aValue) {
    if (aValue.isNull()) return "-";
    if (auto const* const text = Kelm::asString(aValue)) return Kelm::toUtf8(text->text());
    return std::to_string(reinterpret_cast<std::uintptr_t>(aValue.get())) + ":" +
           std::to_string(aValue.getDeviant().word());
  }
  void setUp() const {
    if (fProperty.isMultivalued()) {
      list().generic_push_back(variant(), ref(0));
      list().generic_push_back(variant(), ref(1));
      list(1).generic_push_back(variant(), ref(2));
    } else {
      set(0);
      set(2, 1);
    }
  }

  Property const& fProperty;
  Kelm::Model fModel = Kelm::NSInterface::FactoryIntf::createNewModel();
  Element* fOwners[2]{};
  Element* fValues[4]{};
};

struct Way {
  char const* fName;
  bool fIsOfLists;
  std::function<void(World const&)> fAct;
};

std::vector<Way> const kWays{
    {"set another", false, [](World const& aIn) { aIn.set(3); }},
    {"set what another has", false, [](World const& aIn) { aIn.set(2); }},
    {"unset", false, [](World const& aIn) { aIn.unset(); }},
    {"append", true, [](World const& aIn) { aIn.list().generic_push_back(aIn.variant(), aIn.ref(3)); }},
    {"append what another has", true,
     [](World const& aIn) { aIn.list().generic_push_back(aIn.variant(), aIn.ref(2)); }},
    {"append several", true,
     [](World const& aIn) {
       aIn.list().splice(aIn.variant(), aIn.list().generic_size(aIn.variant()), 0, {aIn.ref(3), aIn.ref(0)});
     }},
    {"append what another has, and more", true,
     [](World const& aIn) {
       aIn.list().splice(aIn.variant(), aIn.list().generic_size(aIn.variant()), 0, {aIn.ref(3), aIn.ref(2)});
     }},
    {"insert at the front", true,
     [](World const& aIn) { aIn.list().generic_insert(aIn.variant(), 0, aIn.ref(2)); }},
    {"replace", true, [](World const& aIn) { aIn.list().generic_replace(aIn.variant(), 0, aIn.ref(2)); }},
    {"erase the first", true, [](World const& aIn) { aIn.list().generic_erase(aIn.variant(), 0); }},
    {"erase at an iterator", true,
     [](World const& aIn) {
       Sequence& list = aIn.list();
       list.generic_erase(aIn.variant(), list.generic_begin(aIn.variant()).get());
     }},
    {"erase between iterators", true,
     [](World const& aIn) {
       Sequence& list = aIn.list();
       list.generic_erase(aIn.variant(), list.generic_begin(aIn.variant()).get(),
                          list.generic_end(aIn.variant()).get());
     }},
    {"clear", true, [](World const& aIn) { aIn.list().generic_clear(aIn.variant()); }},
    {"swap the two", true,
     [](World const& aIn) {
       int const from[] = {0, 1};
       int const to[] = {1, 0};
       aIn.list().generic_rearrange(aIn.variant(), from, to);
     }},
    {"assign those of another", true, [](World const& aIn) { aIn.assign(1); }},
    {"unset the list", true, [](World const& aIn) { aIn.unset(); }},
};

/// Runs the change with each of its allocations failing in turn; answers whether it is a change at all.
bool sweep(Property const& aProperty, int aOwner, int aValue, Way const& aWay) {
  std::string const what = std::string(aProperty.getOwner().getName()) + "." +
                           std::string(aProperty.getName()) + ": " + aWay.fName;
  std::string changed;
  try {
    World const undisturbed(aProperty, aOwner, aValue);
    aWay.fAct(undisturbed);
    changed = undisturbed.picture();
  } catch (Kelm::Exception const&) {
    return false;  // refused for other reasons
  }
  for (int failsAt = 1;; ++failsAt) {
    World const world(aProperty, aOwner, aValue);
    std::string const before = world.picture();
    bool failed = false;
    sequence_suite::sAllocationFailsAt = failsAt;
    try {
      aWay.fAct(world);
    } catch (std::bad_alloc const&) {
      failed = true;
    }
    bool const wasReached = sequence_suite::sAllocationFailsAt == 0;
    sequence_suite::sAllocationFailsAt = 0;
    if (failed) {
      EXPECT_EQ(world.picture(), before) << what << ", allocation " << failsAt;
      aWay.fAct(world);
    }
    EXPECT_EQ(world.picture(), changed) << what << ", allocation " << failsAt << (failed ? ", again" : "");
    if (!wasReached || testing::Test::HasFailure()) return true;
  }
}

template <class Visit>
void forEachWritable(Visit aVisit) {
  for (int index = 0; index < metaclassCount(); ++index)
    for (Property const* const property : classAt(index).ownedProperties())
      if (!property->isReadOnly()) aVisit(*property);
}

/// The narrowest of what fits: an owner and a value with which the feature can be set up.
std::pair<int, int> fitting(Property const& aProperty) {
  bool const isReference = aProperty.getType().conformsTo(*umlmm::ImmutableElement::MetaClass().get());
  std::vector<int> const values = isReference ? concreteBelow(aProperty.getType()) : std::vector<int>{-1};
  for (int const owner : concreteBelow(aProperty.getOwner()))
    for (int const value : values) try {
        World const probe(aProperty, owner, value);
        return {owner, value};
      } catch (Kelm::Exception const&) {
      }
  return {-1, -1};
}

TEST(FailingMemory, LeavesTheModelAsItWas) {
  std::set<std::string_view> taken;
  int swept = 0;
  forEachWritable([&](Property const& aProperty) {
    auto const [owner, value] = fitting(aProperty);
    if (owner < 0) return;
    for (Way const& way : kWays)
      if (!testing::Test::HasFailure() && way.fIsOfLists == aProperty.isMultivalued() &&
          sweep(aProperty, owner, value, way)) {
        taken.insert(way.fName);
        ++swept;
      }
  });
  EXPECT_EQ(taken.size(), kWays.size());
  EXPECT_GT(swept, 700);
}

TEST(FailingMemory, IsNotAskedForByDestroyAndClose) {
  forEachWritable([&](Property const& aProperty) {
    auto const [owner, value] = fitting(aProperty);
    if (owner < 0) return;
    World const world(aProperty, owner, value);
    Kelm::ModelObject& model = *world.owner().model();
    Object const part(value >= 0 ? &world.value(0) : nullptr, world.variant());
    Object const whole(&world.owner(), world.variant());
    sequence_suite::sAllocationFailsAt = 1;
    if (!part.isNull()) world.value(0).destroy(world.variant());
    // It may have been owned by the value.
    if (whole.isvalid()) world.owner().destroy(world.variant());
    model.close();
    EXPECT_EQ(sequence_suite::sAllocationFailsAt, 1) << aProperty.getName();
    sequence_suite::sAllocationFailsAt = 0;
  });
}

TEST(FailingMemory, LeavesNothingOfARefusedElement) {
  for (char16_t const* const text :
       {u"Class Order { isAbstract = true }", u"OpaqueExpression { body = [\"a\", \"b\", \"c\"] }",
        u"Property total { lower = 0; upper = *; default = 'none' }"}) {
    for (int failsAt = 1;; ++failsAt) {
      auto const model = Kelm::NSInterface::FactoryIntf::createNewModel();
      sequence_suite::sAllocationFailsAt = failsAt;
      bool failed = false;
      try {
        umlmm::Factory::createNewFactory(model).createFromString(umlmm::String(std::u16string(text)));
      } catch (std::bad_alloc const&) {
        failed = true;
      }
      bool const wasReached = sequence_suite::sAllocationFailsAt == 0;
      sequence_suite::sAllocationFailsAt = 0;
      EXPECT_EQ(Kelm::ElementList::size(model.object().roots()), failed ? 0U : 1U) << failsAt;
      model.object().close();
      if (!wasReached) break;
    }
  }
}

TEST(FailingMemory, LeavesNothingOfARefusedExtension) {
  reviews();
  auto const& clazz = classAt(umlmm::NSInterface::ClassIntf::kMetaclassIndex);
  std::size_t const before = clazz.allProperties().size();
  // There are thousands, most of them alike.
  for (int failsAt = 1;; failsAt += 1 + failsAt / 32) {
    umlmm::MetamodelExtension extension("plans");
    auto const plan = extension.addMetaclass("Plan", {umlmm::ImmutablePackageableElement::MetaClass()});
    extension.addFeature(umlmm::ImmutableClass::MetaClass(), {.fName = "plan", .fType = plan});
    sequence_suite::sAllocationFailsAt = failsAt;
    bool failed = false;
    try {
      extension.commit();
    } catch (std::bad_alloc const&) {
      failed = true;
    }
    bool const wasReached = sequence_suite::sAllocationFailsAt == 0;
    sequence_suite::sAllocationFailsAt = 0;
    EXPECT_EQ(clazz.allProperties().size(), before + (failed ? 0U : 1U)) << failsAt;
    if (!wasReached) break;
  }
}

TEST(FailingMemory, AsksAgainWhatAnAddedMetaclassOwns) {
  reviews();
  umlmm::MetamodelExtension extension("dossiers");
  extension.addMetaclass("Dossier", {umlmm::ImmutablePackage::MetaClass()});
  Kelm::ImmutableClass const dossier(extension.commit().get()->classes().front(), Kelm::metaDeviant());
  auto const model = Kelm::NSInterface::FactoryIntf::createNewModel();
  umlmm::Package const package(Kelm::queryInterface<umlmm::Package::InterfaceType, umlmm::VisitationDomain>(
                                   umlmm::createElement(model, dossier).get()),
                               model.getDeviant());
  package.getPackagedElement().push_back(umlmm::Actor::create(model));
  int visible = -1;
  for (int failsAt = 1; visible < 0; ++failsAt) {
    sequence_suite::sAllocationFailsAt = failsAt;
    try {
      visible = package.visibleMembers().size();
    } catch (std::bad_alloc const&) {
    }
  }
  sequence_suite::sAllocationFailsAt = 0;
  EXPECT_EQ(visible, 1);
  model.object().close();
}

TEST(FailingMemory, LeavesTheCacheAsItWas) {
  auto const model = Kelm::NSInterface::FactoryIntf::createNewModel();
  auto& cache = Kelm::ModelCache::instance();
  cache.unbindModel(model.object());
  // A first uri, and another one.
  for (std::u16string const uri :
       {u"a uri that is too long for a text without memory of its own", u"another, long enough too"})
    for (int failsAt = 1;; ++failsAt) {
      bool const wasBound = cache.isBound(model.object());
      sequence_suite::sAllocationFailsAt = failsAt;
      try {
        cache.bindModel(uri, model);
      } catch (std::bad_alloc const&) {
      }
      bool const failed = sequence_suite::sAllocationFailsAt == 0;
      sequence_suite::sAllocationFailsAt = 0;
      EXPECT_EQ(cache.isBound(model.object()), wasBound || !failed) << failsAt;
      EXPECT_EQ(cache.findModel(uri).isNull(), failed) << failsAt;
      if (!failed) break;
    }
  model.object().close();
  EXPECT_TRUE(cache.findModel(u"another, long enough too").isNull());
}

}  // namespace
