#include "reflection/meta.h"

#include <algorithm>
#include <array>
#include <deque>
#include <functional>
#include <iterator>
#include <string>
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
using engine::kFeatures;
using engine::kMetaclassCount;
using engine::kMetaclasses;
using Kelm::NSInterface::ClassIntf;
using Kelm::NSInterface::DataTypeIntf;
using Kelm::NSInterface::PackageIntf;
using Kelm::NSInterface::PropertyIntf;
using Kelm::NSInterface::TypeIntf;

class MetaClass final : public ClassIntf {
 public:
  void fill(int aIndex);

  std::string_view getName() const override { return kMetaclasses[fIndex].fName; }
  std::string_view getQualifiedName() const override { return fQualifiedName; }
  bool conformsTo(TypeIntf const& aOther) const override;
  bool isAbstract() const override { return kMetaclasses[fIndex].fAbstract; }
  std::span<ClassIntf const* const> superClasses() const override { return fSupers; }
  std::span<PropertyIntf const* const> ownedProperties() const override { return fOwned; }
  std::span<PropertyIntf const* const> allProperties() const override { return fAll; }

 private:
  int fIndex = 0;
  std::string fQualifiedName;
  std::vector<ClassIntf const*> fSupers;
  std::vector<PropertyIntf const*> fOwned;
  std::vector<PropertyIntf const*> fAll;
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
  Kelm::IntrospectiveMethods const& accessors() const override { return *kAccessors[record().fOwner]; }

 private:
  engine::Feature const& record() const noexcept { return kFeatures[fIndex]; }

  int fIndex = 0;
  TypeIntf const* fType = nullptr;
  std::vector<PropertyIntf const*> fSubsetted;
  std::vector<PropertyIntf const*> fRedefined;
};

class MetaPackage final : public PackageIntf {
 public:
  std::string_view getName() const override { return "umlmm"; }
  std::string_view getUri() const override { return "umlmm"; }
  std::span<ClassIntf const* const> classes() const override { return fClasses; }
  std::span<DataTypeIntf const* const> dataTypes() const override { return fDataTypes; }

  std::vector<ClassIntf const*> fClasses;
  std::vector<DataTypeIntf const*> fDataTypes;
};

/// All meta objects; never destroyed.
struct Metamodel {
  std::array<MetaClass, kMetaclassCount> fClasses;
  std::array<MetaProperty, kFeatureCount> fProperties;
  std::deque<MetaDataType> fPrimitives;
  std::deque<MetaDataType> fEnumerations;
  MetaPackage fPackage;
};

Metamodel* sMetamodel = nullptr;

constexpr std::string_view kPrimitiveNames[] = {"Boolean", "Integer", "UnlimitedNatural", "String"};

/// The index of a class of this metamodel, told by its place in the table; -1 for any other type.
int indexIn(TypeIntf const& aType) noexcept {
  auto const* const type = static_cast<void const*>(&aType);
  auto const& classes = sMetamodel->fClasses;
  static_assert(std::is_base_of_v<TypeIntf, MetaClass>);
  if (std::less<>()(type, static_cast<void const*>(classes.data())) ||
      !std::less<>()(type, static_cast<void const*>(classes.data() + classes.size())))
    return -1;
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
      return &sMetamodel->fClasses[aFeature.fType];
    case engine::ValueType::Enumeration:
      return &sMetamodel->fEnumerations[aFeature.fType];
    default:
      return &sMetamodel->fPrimitives[static_cast<std::size_t>(aFeature.fValueType)];
  }
}

template <class Indices, class Out>
void addProperties(Indices const& aIndices, Out& aOut) {
  for (auto const index : aIndices) aOut.push_back(&sMetamodel->fProperties[index]);
}

void MetaClass::fill(int aIndex) {
  fIndex = aIndex;
  engine::Metaclass const& own = kMetaclasses[aIndex];
  fQualifiedName = std::string("umlmm::") + own.fName;
  for (auto const base : own.fSupers) fSupers.push_back(&sMetamodel->fClasses[base]);
  // The kernel's class of all elements stands above the metamodel's root.
  if (own.fSupers.empty()) fSupers.push_back(Kelm::ImmutableClassObject::MetaClass().get());
  for (int feature = own.fFirstFeature; feature < own.fFirstFeature + own.fFeatureCount; ++feature)
    fOwned.push_back(&sMetamodel->fProperties[static_cast<std::size_t>(feature)]);
  // The kernel's features follow those of the root.
  for (auto const index : own.fVisible) {
    fAll.push_back(&sMetamodel->fProperties[index]);
    engine::Metaclass const& owner = kMetaclasses[kFeatures[index].fOwner];
    if (owner.fSupers.empty() && kFeatures[index].fId == owner.fFeatureCount)
      std::ranges::copy(Kelm::ImmutableClassObject::MetaClass().get()->ownedProperties(),
                        std::back_inserter(fAll));
  }
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
    engine::Metaclass const& own = kMetaclasses[index];
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
    sMetamodel->fClasses[static_cast<std::size_t>(index)].fill(index);
  for (int index = 0; index < kFeatureCount; ++index)
    sMetamodel->fProperties[static_cast<std::size_t>(index)].fill(index);
  fillTables();
  for (auto const& one : sMetamodel->fClasses) sMetamodel->fPackage.fClasses.push_back(&one);
  for (auto const& one : sMetamodel->fPrimitives) sMetamodel->fPackage.fDataTypes.push_back(&one);
  for (auto const& one : sMetamodel->fEnumerations) sMetamodel->fPackage.fDataTypes.push_back(&one);
  Kelm::NSInterface::metaclassName = [](int aMetaclass) { return kMetaclasses[aMetaclass].fName; };
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
  return &metamodel().fProperties[static_cast<std::size_t>(aFeature)];
}
PackageIntf const* metaPackage() { return &metamodel().fPackage; }

}  // namespace umlmm::reflection

namespace umlmm::engine {

Kelm::NSInterface::ClassIntf const* metaClasses[kMetaclassCount];
Kelm::MetaPropertyRecord metaProperties[kFeatureCount + kMetaclassCount];

Kelm::NSInterface::ClassIntf const* metaClass(int aMetaclass) {
  return &reflection::metamodel().fClasses[static_cast<std::size_t>(aMetaclass)];
}
int metaclassIndex(Kelm::NSInterface::ClassIntf const& aClass) {
  reflection::metamodel();
  return reflection::indexIn(aClass);
}

}  // namespace umlmm::engine
