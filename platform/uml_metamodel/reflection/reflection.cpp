#include "reflection/reflection.h"

#include <algorithm>
#include <array>
#include <deque>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "engine/accessors.h"
#include "engine/engine.h"
#include "engine/enumerations.h"
#include "engine/kernel_features.h"
#include "kelm/ModelElementIntf.h"
#include "reflection/interfaces.h"

namespace umlmm::reflection {

namespace {

using engine::kFeatureCount;
using engine::kMetaclassCount;
using Kelm::NSInterface::ClassIntf;
using Kelm::NSInterface::DataTypeIntf;
using Kelm::NSInterface::PackageIntf;
using Kelm::NSInterface::PropertyIntf;
using Kelm::NSInterface::TypeIntf;

Kelm::IntrospectiveMethods const& accessorsAt(int aMetaclass);

class MetaClass final : public ClassIntf {
 public:
  void fill(int aIndex, std::string_view aPackage);
  /// Makes the lists with the properties that have joined, and shows them: whoever holds the lists of before
  /// may go on reading them.
  void prepareProperties();
  void showProperties() noexcept;
  int index() const noexcept { return fIndex; }

  std::string_view getName() const override { return engine::metaclass(fIndex).fName; }
  std::string_view getQualifiedName() const override { return fQualifiedName; }
  bool conformsTo(TypeIntf const& aOther) const override;
  bool isAbstract() const override { return engine::metaclass(fIndex).fAbstract; }
  std::span<ClassIntf const* const> superClasses() const override { return fSupers; }
  std::span<PropertyIntf const* const> ownedProperties() const override { return fOwned; }
  std::span<PropertyIntf const* const> allProperties() const override { return fAll; }

 private:
  using Properties = std::vector<PropertyIntf const*>;

  Properties owned() const;
  Properties all() const;

  int fIndex = 0;
  std::string fQualifiedName;
  std::vector<ClassIntf const*> fSupers;
  Properties fOwned;
  Properties fAll;
  /// Two for each time that properties joined: the coming ones, and then those of before.
  std::deque<Properties> fOther;
  bool fIsPrepared = false;
};

class MetaDataType final : public DataTypeIntf {
 public:
  MetaDataType(std::string_view aName, std::span<std::string_view const> aLiterals)
      : fName(aName), fQualifiedName("umlmm::" + fName), fLiterals(aLiterals) {}

  std::string_view getName() const override { return fName; }
  std::string_view getQualifiedName() const override { return fQualifiedName; }
  bool conformsTo(TypeIntf const& aOther) const override { return this == &aOther; }
  std::span<std::string_view const> literals() const override { return fLiterals; }

 private:
  std::string fName;
  std::string fQualifiedName;
  std::span<std::string_view const> fLiterals;
};

class MetaProperty final : public PropertyIntf {
 public:
  void fill(int aIndex);
  int index() const noexcept { return fIndex; }

  std::string_view getName() const override { return record().fName; }
  unsigned getId() const override { return record().fId; }
  ClassIntf const& getOwner() const override { return *metaClass(record().fOwner); }
  TypeIntf const& getType() const override { return *fType; }
  int getLower() const override { return record().fLower; }
  int getUpper() const override { return record().fUpper; }
  std::string_view getDefault() const override { return record().fDefault; }
  bool isReadOnly() const override { return record().fReadOnly; }
  bool isComposite() const override { return record().fComposite; }
  bool isDerived() const override { return record().fDerived; }
  bool isOrdered() const override { return record().fOrdered; }
  bool isUnique() const override { return record().fUnique; }
  PropertyIntf const* getOpposite() const override {
    return record().fNamedOpposite == engine::kNoFeature ? nullptr : metaProperty(record().fNamedOpposite);
  }
  std::span<PropertyIntf const* const> subsetted() const override { return fSubsetted; }
  std::span<PropertyIntf const* const> redefined() const override { return fRedefined; }
  Kelm::IntrospectiveMethods const& accessors() const override { return accessorsAt(record().fOwner); }

 private:
  engine::Feature const& record() const noexcept {
    return engine::feature(static_cast<engine::FeatureIndex>(fIndex));
  }

  int fIndex = 0;
  TypeIntf const* fType = nullptr;
  std::vector<PropertyIntf const*> fSubsetted;
  std::vector<PropertyIntf const*> fRedefined;
};

class MetaPackage final : public PackageIntf {
 public:
  explicit MetaPackage(char const* aName) noexcept : fName(aName) {}

  std::string_view getName() const override { return fName; }
  std::string_view getUri() const override { return fName; }
  std::span<ClassIntf const* const> classes() const override { return fClasses; }
  std::span<DataTypeIntf const* const> dataTypes() const override { return fDataTypes; }

  std::vector<ClassIntf const*> fClasses;
  std::vector<DataTypeIntf const*> fDataTypes;

 private:
  char const* fName;
};

/// What extensions have added: metaclasses with accessors of their own, properties, packages.
struct AddedClass {
  MetaClass fClass;
  ClassIntf const* fSelf = &fClass;
  Kelm::IntrospectiveMethods fAccessors{};
};

/// All meta objects; never destroyed.
struct Metamodel {
  std::array<MetaClass, kMetaclassCount> fClasses;
  std::array<MetaProperty, kFeatureCount> fProperties;
  std::deque<MetaDataType> fPrimitives;
  std::deque<MetaDataType> fEnumerations;
  MetaPackage fPackage{"umlmm"};
  std::deque<AddedClass> fAddedClasses;
  std::deque<MetaProperty> fAddedProperties;
  std::deque<MetaPackage> fAddedPackages;
  /// By id of an added metaclass's properties, for all of them; of earlier states, too.
  std::deque<std::vector<Kelm::MetaPropertyRecord>> fAddedTables;
};

Metamodel* sMetamodel = nullptr;

constexpr std::string_view kPrimitiveNames[] = {"Boolean", "Integer", "UnlimitedNatural", "String"};

MetaClass& classAt(int aIndex) {
  auto const index = static_cast<std::size_t>(aIndex);
  return index < kMetaclassCount ? sMetamodel->fClasses[index]
                                 : sMetamodel->fAddedClasses[index - kMetaclassCount].fClass;
}
MetaProperty& propertyAt(int aIndex) {
  auto const index = static_cast<std::size_t>(aIndex);
  return index < kFeatureCount ? sMetamodel->fProperties[index]
                               : sMetamodel->fAddedProperties[index - kFeatureCount];
}
Kelm::IntrospectiveMethods const& accessorsAt(int aMetaclass) {
  if (aMetaclass < kMetaclassCount) return *kAccessors[aMetaclass];
  return sMetamodel->fAddedClasses[static_cast<std::size_t>(aMetaclass - kMetaclassCount)].fAccessors;
}

/// The index of a class of this metamodel, told by its place in the table; -1 for any other type.
int indexIn(TypeIntf const& aType) noexcept {
  auto const* const type = static_cast<void const*>(&aType);
  auto const& classes = sMetamodel->fClasses;
  static_assert(std::is_base_of_v<TypeIntf, MetaClass>);
  if (std::less<>()(type, static_cast<void const*>(classes.data())) ||
      !std::less<>()(type, static_cast<void const*>(classes.data() + classes.size()))) {
    for (AddedClass const& added : sMetamodel->fAddedClasses)
      if (&added.fClass == &aType) return added.fClass.index();
    return -1;
  }
  return static_cast<int>(static_cast<MetaClass const*>(&aType) - classes.data());
}

bool MetaClass::conformsTo(TypeIntf const& aOther) const {
  int const other = indexIn(aOther);
  if (other >= 0) return engine::conforms(fIndex, other);
  return Kelm::ImmutableClassObject::MetaClass().get() == &aOther;
}

TypeIntf const* typeOf(engine::Feature const& aFeature) {
  switch (aFeature.fValueType) {
    case engine::ValueType::Reference:
      return &classAt(aFeature.fType);
    case engine::ValueType::Enumeration:
      return &sMetamodel->fEnumerations[aFeature.fType];
    default:
      return &sMetamodel->fPrimitives[static_cast<std::size_t>(aFeature.fValueType)];
  }
}

template <class Indices, class Out>
void addProperties(Indices const& aIndices, Out& aOut) {
  for (auto const index : aIndices) aOut.push_back(&propertyAt(index));
}

MetaClass::Properties MetaClass::owned() const {
  engine::Metaclass const& own = engine::metaclass(fIndex);
  Properties found;
  for (int feature = own.fFirstFeature; feature < own.fFirstFeature + own.fFeatureCount; ++feature)
    found.push_back(&propertyAt(feature));
  reflection::addProperties(own.fAdded, found);
  return found;
}

MetaClass::Properties MetaClass::all() const {
  Properties found;
  for (auto const index : engine::metaclass(fIndex).fVisible) {
    found.push_back(&propertyAt(index));
    // The kernel's features follow those of the root.
    engine::Feature const& feature = engine::feature(index);
    engine::Metaclass const& owner = engine::metaclass(feature.fOwner);
    if (owner.fSupers.empty() && feature.fId == owner.fFeatureCount)
      std::ranges::copy(Kelm::ImmutableClassObject::MetaClass().get()->ownedProperties(),
                        std::back_inserter(found));
  }
  return found;
}

void MetaClass::fill(int aIndex, std::string_view aPackage) {
  fIndex = aIndex;
  engine::Metaclass const& own = engine::metaclass(aIndex);
  fQualifiedName = aPackage;
  fQualifiedName += "::";
  fQualifiedName += own.fName;
  for (auto const base : own.fSupers) fSupers.push_back(&classAt(base));
  // The kernel's class of all elements stands above the metamodel's root.
  if (own.fSupers.empty()) fSupers.push_back(Kelm::ImmutableClassObject::MetaClass().get());
  fOwned = owned();
  fAll = all();
}

void MetaClass::prepareProperties() {
  fIsPrepared = false;
  Properties now = all();
  if (now == fAll) return;
  fOther.push_back(owned());
  fOther.push_back(std::move(now));
  fIsPrepared = true;
}

void MetaClass::showProperties() noexcept {
  if (!std::exchange(fIsPrepared, false)) return;
  fAll.swap(fOther.back());
  fOwned.swap(*std::prev(fOther.end(), 2));
}

void MetaProperty::fill(int aIndex) {
  fIndex = aIndex;
  fType = typeOf(record());
  addProperties(record().fAllSupersets, fSubsetted);
  addProperties(record().fRedefined, fRedefined);
}

void fillDataTypes() {
  for (std::string_view const name : kPrimitiveNames)
    sMetamodel->fPrimitives.emplace_back(name, std::span<std::string_view const>());
  for (int index = 0; index < engine::kEnumerationCount; ++index) {
    auto& type = engine::enumeration(index);
    type.fMetaType = &sMetamodel->fEnumerations.emplace_back(type.name(), type.literals());
  }
}

void fillTables() {
  for (int index = 0; index < kMetaclassCount; ++index) {
    engine::Metaclass const& own = engine::metaclass(index);
    engine::metaClasses[index] = &sMetamodel->fClasses[static_cast<std::size_t>(index)];
    for (unsigned id = 1; id <= own.fFeatureCount; ++id)
      engine::metaProperties[own.fFirstFeature + static_cast<unsigned>(index) + id].fProperty =
          &sMetamodel->fProperties[own.fFirstFeature + id - 1];
  }
}

Metamodel& make() {
  sMetamodel = new Metamodel();
  fillDataTypes();
  for (int index = 0; index < kMetaclassCount; ++index)
    sMetamodel->fClasses[static_cast<std::size_t>(index)].fill(index, sMetamodel->fPackage.getName());
  for (int index = 0; index < kFeatureCount; ++index)
    sMetamodel->fProperties[static_cast<std::size_t>(index)].fill(index);
  fillTables();
  for (auto const& one : sMetamodel->fClasses) sMetamodel->fPackage.fClasses.push_back(&one);
  for (auto const& one : sMetamodel->fPrimitives) sMetamodel->fPackage.fDataTypes.push_back(&one);
  for (auto const& one : sMetamodel->fEnumerations) sMetamodel->fPackage.fDataTypes.push_back(&one);
  Kelm::NSInterface::metaclassName = [](int aMetaclass) { return engine::metaclass(aMetaclass).fName; };
  engine::installQueries();
  return *sMetamodel;
}

Metamodel& metamodel() {
  static Metamodel& all = make();
  return all;
}

// The accessor tables are read without a call, so the objects must be there once the library is loaded.
[[maybe_unused]] Metamodel const& sLoaded = metamodel();

}  // namespace

PropertyIntf const* metaProperty(int aFeature) {
  metamodel();
  return &propertyAt(aFeature);
}
PackageIntf const* metaPackage() { return &metamodel().fPackage; }
int featureIndex(PropertyIntf const& aProperty) {
  // One of a published class stands where the class and its number say.
  metamodel();
  int const owner = indexIn(aProperty.getOwner());
  if (owner >= 0 && owner < kMetaclassCount) {
    engine::Metaclass const& own = engine::metaclass(owner);
    unsigned const place = aProperty.getId() - 1;
    if (place < own.fFeatureCount) return own.fFirstFeature + static_cast<int>(place);
  }
  for (std::size_t index = 0; index < metamodel().fAddedProperties.size(); ++index)
    if (&metamodel().fAddedProperties[index] == &aProperty) return kFeatureCount + static_cast<int>(index);
  return -1;
}
int dataTypeIndex(DataTypeIntf const& aType, engine::ValueType& aKind) {
  for (auto const* const types : {&metamodel().fPrimitives, &metamodel().fEnumerations})
    for (std::size_t at = 0; at < types->size(); ++at) {
      if (&(*types)[at] != &aType) continue;
      bool const isPrimitive = types == &metamodel().fPrimitives;
      aKind = isPrimitive ? static_cast<engine::ValueType>(at) : engine::ValueType::Enumeration;
      return isPrimitive ? 0 : static_cast<int>(at);
    }
  return -1;
}

PackageIntf const* addPackage(char const* aName, int aFirst, int aFirstFeature) {
  Metamodel& all = metamodel();
  auto const firstFeature = static_cast<std::size_t>(aFirstFeature - kFeatureCount);
  // An attempt that failed may have left some.
  all.fAddedClasses.resize(static_cast<std::size_t>(aFirst - kMetaclassCount));
  all.fAddedProperties.resize(firstFeature);
  all.fAddedClasses.resize(static_cast<std::size_t>(engine::metaclassCount() - kMetaclassCount));
  all.fAddedProperties.resize(engine::records::sAddedFeatures.size());
  MetaPackage& package = all.fAddedPackages.emplace_back(aName);
  for (int index = aFirst; index < engine::metaclassCount(); ++index) {
    classAt(index).fill(index, package.getName());
    package.fClasses.push_back(&classAt(index));
  }
  for (std::size_t at = firstFeature; at < all.fAddedProperties.size(); ++at)
    all.fAddedProperties[at].fill(static_cast<int>(kFeatureCount + at));
  auto& table = all.fAddedTables.emplace_back(1);
  for (MetaProperty const& property : all.fAddedProperties) table.push_back({&property});
  for (int index = 0; index < engine::metaclassCount(); ++index) classAt(index).prepareProperties();
  return &package;
}

void showPackage() noexcept {
  Metamodel& all = metamodel();
  for (AddedClass& added : all.fAddedClasses) {
    added.fAccessors = engine::accessorsOf<engine::kAddedMetaclass, 0>();
    added.fAccessors.owner = &added.fSelf;
    added.fAccessors.metaPropertyTable = all.fAddedTables.back().data();
  }
  for (int index = 0; index < engine::metaclassCount(); ++index) classAt(index).showProperties();
}

}  // namespace umlmm::reflection

namespace umlmm::engine {

Kelm::NSInterface::ClassIntf const* metaClasses[kMetaclassCount];
Kelm::MetaPropertyRecord metaProperties[kFeatureCount + kMetaclassCount];

Kelm::NSInterface::ClassIntf const* metaClass(int aMetaclass) {
  reflection::metamodel();
  return &reflection::classAt(aMetaclass);
}
int metaclassIndex(Kelm::NSInterface::ClassIntf const& aClass) {
  reflection::metamodel();
  return reflection::indexIn(aClass);
}

}  // namespace umlmm::engine
