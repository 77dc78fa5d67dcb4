#pragma once

#include <cstdint>
#include <deque>
#include <string_view>
#include <unordered_map>

#include "kelm/IntrospectiveMethods.h"
#include "kelm/meta.h"
#include "kelm/values.h"
#include "uml_metamodel/umlmm/detail/direct.h"

/// The metamodel by the names that files use: what reflection tells, found in a step.
namespace umlmm::files {

struct Metaclass;

/// What a value of a feature is made of.
enum class Kind : std::uint8_t { Boolean, Integer, UnlimitedNatural, String, Enumeration, Reference };

struct Feature {
  std::string_view fName;
  Kelm::NSInterface::PropertyIntf const* fProperty = nullptr;
  Kelm::IntrospectiveMethods const* fMethods = nullptr;
  unsigned fId = 0;
  Kind fKind = Kind::Reference;
  bool fMany = false;
  bool fComposite = false;
  bool fOrdered = false;
  bool fDerived = false;
  bool fReadOnly = false;
  /// How elements keep its values, if they do.
  umlmm::detail::StoredFeature fStored = {};
  /// Of a reference.
  Metaclass const* fType = nullptr;
  Kelm::EnumerationType const* fEnumeration = nullptr;
  Feature const* fOpposite = nullptr;
};

struct Metaclass {
  std::string_view fName;
  Kelm::NSInterface::ClassIntf const* fClass = nullptr;
  bool fAbstract = false;
  /// Among all metaclasses, from 0 on.
  std::size_t fNumber = 0;
  /// Of behaviors, whose default in files is not that of the metamodel; null for others.
  Feature const* fReentrant = nullptr;
  /// By name, own and inherited ones; a redefinition stands for what it redefines.
  std::unordered_map<std::string_view, Feature const*> fFeatures;
  /// The same in the order of the metamodel.
  std::vector<Feature const*> fOrder;

  Feature const* feature(std::string_view aName) const {
    auto const found = fFeatures.find(aName);
    return found == fFeatures.end() ? nullptr : found->second;
  }
  bool isA(Metaclass const& aOther) const { return fClass->conformsTo(*aOther.fClass); }
};

/// Made once, of the published metamodel; any thread may ask.
class Metamodel {
 public:
  static Metamodel const& instance();

  /// Null if there is none of this name.
  Metaclass const* metaclass(std::string_view aName) const {
    auto const found = fByName.find(aName);
    return found == fByName.end() ? nullptr : found->second;
  }
  std::size_t size() const noexcept { return fMetaclasses.size(); }
  template <class Visit>
  void forEach(Visit aVisit) const {
    for (Metaclass const& metaclass : fMetaclasses) aVisit(metaclass);
  }
  Metaclass const& metaclassOf(Kelm::NSInterface::ClassObjectIntf const& aElement) const;

 private:
  Metamodel();
  Feature const& featureOf(Kelm::NSInterface::PropertyIntf const& aProperty);

  std::deque<Metaclass> fMetaclasses;
  std::deque<Feature> fFeatures;
  std::unordered_map<std::string_view, Metaclass const*> fByName;
  std::unordered_map<Kelm::NSInterface::ClassIntf const*, Metaclass const*> fByClass;
  std::unordered_map<Kelm::NSInterface::PropertyIntf const*, Feature*> fByProperty;
};

}  // namespace umlmm::files
