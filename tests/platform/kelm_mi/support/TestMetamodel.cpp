#include "platform/kelm_mi/support/TestMetamodel.h"

#include "kelm/Model.h"
#include "kelm_mi/refClassInfos.h"
#include "platform/vesk/support/TestClasses.h"
#include "uml_metamodel_mi/frame/ElementClassInfo.h"
#include "uml_metamodel_mi/frame/addTypedMethod.h"

namespace kelm_mi_test {

namespace {

using namespace Kelm::mi;

class TestProperty final : public PropertyIntf {
 public:
  TestProperty(char const* aName, unsigned aId, int aUpper, bool aReadOnly)
      : fName(aName), fId(aId), fUpper(aUpper), fReadOnly(aReadOnly) {}
  std::string_view getName() const override { return fName; }
  unsigned getId() const override { return fId; }
  ClassIntf const& getOwner() const override { return animal(); }
  Kelm::NSInterface::TypeIntf const& getType() const override { return fId == Leader ? dog() : animal(); }
  int getLower() const override { return 0; }
  int getUpper() const override { return fUpper; }
  std::string_view getDefault() const override { return "none"; }
  bool isReadOnly() const override { return fReadOnly; }
  bool isComposite() const override { return false; }
  bool isDerived() const override { return fReadOnly; }
  bool isOrdered() const override { return false; }
  bool isUnique() const override { return true; }
  PropertyIntf const* getOpposite() const override;
  std::span<PropertyIntf const* const> subsetted() const override { return {}; }
  std::span<PropertyIntf const* const> redefined() const override { return {}; }
  Kelm::IntrospectiveMethods const& accessors() const override { return kAccessors; }

 private:
  std::string_view fName;
  unsigned fId;
  int fUpper;
  bool fReadOnly;
};

TestProperty const kFriend("friend", Friend, 1, false);
TestProperty const kHerd("herd", Herd, -1, false);
TestProperty const kKind("kind", Kind, 1, false);
TestProperty const kLeader("leader", Leader, 1, false);
TestProperty const kFlock("flock", Flock, -1, true);

PropertyIntf const* TestProperty::getOpposite() const { return this == &kHerd ? &kFriend : nullptr; }

Kelm::MetaPropertyRecord const kProperties[] = {{nullptr}, {&kFriend}, {&kHerd},
                                                {&kKind},  {&kLeader}, {&kFlock}};

Beast& asBeast(ClassObjectIntf const* aElement) {
  return *static_cast<Beast*>(const_cast<ClassObjectIntf*>(aElement));
}

void addRows(vesk::VeskClass& aClass, bool aImmutable) {
  if (!aImmutable) return;
  KelmmiPropertyFactory const factory{&aClass, "zoo.ImmutableAnimal", &kAccessors};
  factory.ClassObject("friend", MultiplicityOptional, MutabilityChangeable, Friend, "zoo.ImmutableAnimal", 0);
  factory.ClassObject("herd", MultiplicityMany, MutabilityChangeable, Herd,
                      "zoo.ImmutableSequenceOfImmutableAnimal", 0);
  factory.ClassObject("leader", MultiplicityOptional, MutabilityChangeable, Leader, "zoo.ImmutableDog", 0);
  factory.ClassObject("flock", MultiplicityMany, MutabilityReadOnly, Flock,
                      "zoo.ImmutableSequenceOfImmutableAnimal", 0);
  factory.ClassObject("fixed", MultiplicityOptional, MutabilityReadOnly, Friend, "zoo.ImmutableAnimal", 0);
}

/// The class of one view of one metaclass.
class BeastInfo final : public ClassMetaData {
 public:
  BeastInfo(char const* aName, std::vector<char const*> aSupers)
      : ClassMetaData(aName, ""), fSupers(std::move(aSupers)) {}
  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override {
    for (char const* const super : fSupers) addSuperclass(aClass, super);
    addRows(*aClass, std::string_view(getName()) == "ImmutableAnimal");
  }

 private:
  std::vector<char const*> fSupers;
};

void addSequences(vesk::VeskPackage& aPackage, std::string const& aName,
                  std::vector<std::string> const& aBases) {
  struct Form {
    decltype(&createSequenceOfRefClassInfo) fSequence;
    decltype(&createIteratorOfRefClassInfo) fIterator;
    char const* fBefore;
    char const* fElement;
    char const* fAfter;
  };
  for (Form const& form :
       {Form{&createSequenceOfRefClassInfo, &createIteratorOfRefClassInfo, "", "", ""},
        Form{&createSequenceOfImmutableRefClassInfo, &createIteratorOfImmutableRefClassInfo, "", "Immutable",
             ""},
        Form{&createImmutableSequenceOfRefClassInfo, &createImmutableIteratorOfRefClassInfo, "Immutable", "",
             "Immutable"},
        Form{&createImmutableSequenceOfImmutableRefClassInfo, &createImmutableIteratorOfImmutableRefClassInfo,
             "Immutable", "Immutable", "Immutable"}}) {
    std::string const element = form.fElement + aName;
    std::string const sequence = std::string(form.fBefore) + "SequenceOf" + element;
    std::string const iterator = element + form.fAfter + "Iterator";
    aPackage.addClass(form.fSequence(sequence.c_str(), "", ("zoo." + sequence).c_str(),
                                     ("zoo." + element).c_str(), ("zoo." + iterator).c_str(), aBases),
                      2);
    aPackage.addClass(
        form.fIterator(iterator.c_str(), "", ("zoo." + iterator).c_str(), ("zoo." + element).c_str()), 2);
  }
}

}  // namespace

ClassIntf const& animal() {
  static TestMetaClass const sAnimal("Animal", Kelm::ImmutableClassObject::MetaClass().get(),
                                     {&kFriend, &kHerd, &kKind, &kLeader, &kFlock});
  return sAnimal;
}

ClassIntf const& dog() {
  static TestMetaClass const sDog("Dog", &animal(), {});
  return sDog;
}

Kelm::IntrospectiveMethods const kAccessors = {
    .getEntry =
        [](ClassObjectIntf const* aElement, Deviant const&, unsigned aId) {
          auto const& values = asBeast(aElement).fValues;
          auto const found = values.find(aId);
          return found == values.end() ? Object() : found->second;
        },
    .isSetEntry = [](ClassObjectIntf const* aElement, Deviant const&,
                     unsigned aId) { return asBeast(aElement).fValues.contains(aId); },
    .setEntry = [](ClassObjectIntf* aElement, Deviant const&, unsigned aId,
                   Object const& aValue) { asBeast(aElement).fValues[aId] = aValue; },
    .getSequenceEntry =
        [](ClassObjectIntf const* aElement, Deviant const&, unsigned aId) {
          Beast const& element = asBeast(aElement);
          return (aId == Flock ? element.fFlock : element.fHerd).get();
        },
    .unsetEntry = [](ClassObjectIntf* aElement, Deviant const&,
                     unsigned aId) { asBeast(aElement).fValues.erase(aId); },
    .setSequenceEntry =
        [](ClassObjectIntf* aElement, Deviant const& aDeviant, unsigned, SequenceIntf const* aValues,
           Deviant const& aValuesDeviant) {
          Beast& element = asBeast(aElement);
          element.fHerd.clear();
          for (int i = 0; aValues != nullptr && i < aValues->generic_size(aValuesDeviant); ++i)
            element.fHerd.get()->generic_push_back(aDeviant, aValues->generic_at(aValuesDeviant, i));
        },
    .isReadOnlyEntry = [](ClassObjectIntf const*, Deviant const&, unsigned aId) { return aId == Flock; },
    .owner = nullptr,
    .metaPropertyTable = kProperties,
};

void publishZoo() {
  static bool sDone = false;
  if (std::exchange(sDone, true)) return;
  Kelm::initialize();
  vesk::factory::detail::initStringDataTypes();
  vesk::testing::addPackage("zoo", [](vesk::VeskPackage& aPackage) {
    aPackage.addClass(new BeastInfo("ImmutableAnimal", {"Kelm.ImmutableClassObject"}), 2);
    aPackage.addClass(new BeastInfo("Animal", {"zoo.ImmutableAnimal", "Kelm.ClassObject"}), 2);
    aPackage.addClass(new BeastInfo("ImmutableDog", {"zoo.ImmutableAnimal"}), 2);
    aPackage.addClass(new BeastInfo("Dog", {"zoo.ImmutableDog", "zoo.Animal"}), 2);
    addSequences(aPackage, "Animal", {"Kelm.ClassObject"});
    addSequences(aPackage, "Dog", {"zoo.Animal"});
  });
}

Kelm::ClassObject makeBeast(ClassIntf const& aClass, Deviant aDeviant) {
  return Kelm::ClassObject(new Beast(aClass), aDeviant);
}

}  // namespace kelm_mi_test
