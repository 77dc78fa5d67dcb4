#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "kelm/ClassObject.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "kelm/meta.h"
#include "kelm/values.h"
#include "kelm_mi/KelmmiPropertyFactory.h"

/// A metamodel of two classes, Animal and Dog, whose elements keep their values in maps.
namespace kelm_mi_test {

using Kelm::Deviant;
using Kelm::Object;
using Kelm::Generic::SequenceIntf;
using Kelm::NSInterface::ClassIntf;
using Kelm::NSInterface::ClassObjectIntf;
using Kelm::NSInterface::PropertyIntf;

class TestMetaClass final : public ClassIntf {
 public:
  /// A class without properties of its own has those of its first superclass.
  TestMetaClass(char const* aName, ClassIntf const* aSuper, std::vector<PropertyIntf const*> aProperties)
      : fName(aName),
        fQualified(std::string("zoo::") + aName),
        fSupers{aSuper},
        fProperties(std::move(aProperties)) {}
  std::string_view getName() const override { return fName; }
  std::string_view getQualifiedName() const override { return fQualified; }
  bool conformsTo(Kelm::NSInterface::TypeIntf const& aOther) const override {
    if (&aOther == this) return true;
    for (ClassIntf const* super : fSupers)
      if (super->conformsTo(aOther)) return true;
    return false;
  }
  bool isAbstract() const override { return false; }
  std::span<ClassIntf const* const> superClasses() const override { return fSupers; }
  std::span<PropertyIntf const* const> ownedProperties() const override { return fProperties; }
  std::span<PropertyIntf const* const> allProperties() const override {
    return fProperties.empty() ? fSupers[0]->allProperties() : ownedProperties();
  }

 private:
  std::string fName;
  std::string fQualified;
  std::vector<ClassIntf const*> fSupers;
  std::vector<PropertyIntf const*> fProperties;
};

ClassIntf const& animal();
ClassIntf const& dog();

/// Features of Animal.
enum Feature : unsigned { Friend = 1, Herd, Kind, Leader, Flock };
extern Kelm::IntrospectiveMethods const kAccessors;

class Beast final : public ClassObjectIntf {
 public:
  explicit Beast(ClassIntf const& aClass) : fClass(aClass) { ++sAlive; }
  ~Beast() override { --sAlive; }

  int incRef() const override { return ++fCount; }
  int decRef() const override {
    if (--fCount > 0) return fCount;
    delete this;
    return 0;
  }
  int numRef() const override { return fCount; }
  char const* getVeskName(bool aImmutable) const override {
    if (&fClass == &dog()) return aImmutable ? "zoo.ImmutableDog" : "zoo.Dog";
    return aImmutable ? "zoo.ImmutableAnimal" : "zoo.Animal";
  }
  bool deviant_isValid(Deviant) const override { return true; }
  Kelm::ImmutableType getMetaType(Deviant const&) const override { return {&fClass, Kelm::metaDeviant()}; }
  Kelm::ImmutableClass getMetaClass() const override { return {&fClass, Kelm::metaDeviant()}; }
  Object getKernelEntry(Deviant const&, unsigned aId) const override {
    auto const found = fKernel.find(aId);
    return found == fKernel.end() ? Object() : found->second;
  }
  void setKernelEntry(Deviant const&, unsigned aId, Object const& aValue) override { fKernel[aId] = aValue; }
  SequenceIntf* getKernelSequence(Deviant const&, unsigned) const override { return fHerd.get(); }
  void destroy(Deviant const&) override { fDestroyed = true; }

  static inline int sAlive = 0;
  bool fDestroyed = false;
  std::map<unsigned, Object> fValues;
  std::map<unsigned, Object> fKernel;
  Kelm::Sequence<Object> fHerd = Kelm::SequenceCreator::create<Object>({Deviant(), Kelm::MULTI_INDEX, true});
  Kelm::Sequence<Object> fFlock = Kelm::SequenceCreator::create<Object>({Deviant(), Kelm::MULTI_INDEX, true});

 private:
  mutable int fCount = 0;
  ClassIntf const& fClass;
};

/// A new element with a handle, in a variant of its own making.
Kelm::ClassObject makeBeast(ClassIntf const& aClass, Deviant aDeviant = Deviant());
inline Beast& beast(Kelm::ClassObject const& aObject) { return *static_cast<Beast*>(aObject.get()); }

/// Announces package "zoo": the classes of Animal and Dog and their sequences. Brings the kernel up first.
void publishZoo();

}  // namespace kelm_mi_test
