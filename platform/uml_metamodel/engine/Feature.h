#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "engine/counts.h"
#include "uml_metamodel/umlmm/detail/stored.h"

/// The metamodel as the engine sees it: one record a feature and a metaclass, made from the catalogue and by
/// extensions of it.
namespace umlmm::engine {

/// The number of a feature: those of the catalogue in order of metaclass and id, then added ones as they
/// came.
using FeatureIndex = std::uint16_t;
inline constexpr FeatureIndex kNoFeature = 0xFFFF;

enum class ValueType : std::uint8_t { Boolean, Integer, UnlimitedNatural, String, Enumeration, Reference };

using detail::Storage;

struct Feature {
  char const* fName = "";
  Feature const* fRootRecord = nullptr;  ///< The record of `fRoot`.
  std::uint16_t fOwner = 0;              ///< Metaclass that declares it.
  std::uint16_t fType = 0;               ///< Metaclass, or enumeration, by index.
  FeatureIndex fRoot = kNoFeature;       ///< The feature whose slot it is; itself unless it redefines one.
  FeatureIndex fOpposite = kNoFeature;   ///< Root of the far end, or none.
  /// Of a containment or its far end: the topmost stored containment that holds the part.
  FeatureIndex fContainment = kNoFeature;
  FeatureIndex fNamedOpposite = kNoFeature;  ///< The far end as the tables name it, or none.
  /// Of a containment: the computed feature whose default is gone for good once a part leaves, or none.
  FeatureIndex fForgetsDefaultOf = kNoFeature;
  FeatureIndex fIndex = kNoFeature;
  std::uint16_t fId = 0;
  std::int8_t fLower = 0;
  std::int8_t fUpper = 1;  ///< -1 for unlimited.
  ValueType fValueType = ValueType::Reference;
  Storage fStorage = Storage::Computed;
  bool fComposite : 1 = false;
  bool fOrdered : 1 = false;
  bool fUnique : 1 = true;
  bool fDerived : 1 = false;
  bool fUnion : 1 = false;
  bool fReadOnly : 1 = false;
  /// Of a stored containment: the owner is the part's namespace, featuring classifier, redefinition context.
  bool fGivesNamespace : 1 = false;
  bool fGivesFeaturingClassifier : 1 = false;
  bool fGivesContext : 1 = false;
  /// Of an added Boolean or enumeration: its bits on elements where it was never set.
  std::uint8_t fUnsetBits : 5 = 0;
  char const* fDefault = "";  ///< As text; empty for none.
  /// Stored features that hold what this one holds, direct ones.
  std::span<FeatureIndex const> fSupersets = {};
  /// Stored features that this one holds the values of, direct ones.
  std::span<FeatureIndex const> fSubsets = {};
  /// Of a root: the redefinitions of it, general ones first.
  std::span<FeatureIndex const> fNarrowings = {};
  /// Direct supersets of any kind, as the tables name them.
  std::span<FeatureIndex const> fAllSupersets = {};
  /// Features that it redefines directly.
  std::span<FeatureIndex const> fRedefined = {};

  bool isMany() const noexcept { return fUpper != 1; }
  bool isOptional() const noexcept { return fLower == 0 && fUpper == 1; }
  bool isReference() const noexcept { return fValueType == ValueType::Reference; }
  /// A slot that owns what it holds.
  bool isContainment() const noexcept {
    return fComposite && (fStorage == Storage::List || fStorage == Storage::Reference);
  }
};

/// A derived union as one metaclass sees it: the stored and computed features whose values it lists, in their
/// order.
struct Union {
  FeatureIndex fFeature = kNoFeature;
  std::span<FeatureIndex const> fMembers;
};

struct Metaclass {
  char const* fName = "";
  std::uint16_t fIndex = 0;
  bool fAbstract = false;
  std::uint8_t fFeatureCount = 0;
  FeatureIndex fFirstFeature = 0;
  /// Features that extensions have added, whose ids follow those of the others.
  std::span<FeatureIndex const> fAdded = {};
  /// The text by which failures call an element, or none.
  FeatureIndex fNaming = kNoFeature;
  std::span<std::uint16_t const> fSupers;
  /// Itself and all above it, in the order of the meta-property list.
  std::span<std::uint16_t const> fAncestors;
  /// Concrete metaclasses below or at it.
  std::span<std::uint16_t const> fConcrete;
  /// Features in the order of the meta-property list, hidden ones left out.
  std::span<FeatureIndex const> fVisible;
  std::span<Union const> fUnions;
};

/// How elements of one concrete metaclass are laid out; see Kelm::ClassTable.
struct Layout {
  std::uint16_t fMetaclass = 0;
  std::uint16_t fWords = 0;
  std::uint32_t fDefaultFlags = 0;
  std::uint64_t fStringWords = 0;
  std::uint64_t fReferenceWords = 0;
  std::uint64_t fListWords = 0;
  std::uint64_t fSequenceWords = 0;
  /// By feature: position of its slot, or 0xFF.
  std::uint8_t const* fSlotOfFeature = nullptr;
  /// Required references in the order in which creation takes them.
  std::span<FeatureIndex const> fRequired = {};
};

/// Bit (a * kMetaclassCount + b) says that metaclass a is b or a specialization of it.
using Conformance = std::array<std::uint64_t, (kMetaclassCount * kMetaclassCount + 63) / 64>;

extern std::array<Layout, kConcreteCount> const kLayouts;
extern Conformance const kConformance;
/// The feature of the root metaclass by which all elements have what they own.
extern FeatureIndex const kOwnedElements;
/// The kernel's feature for applied stereotypes, of which there are none yet. It stands in no table.
extern Feature const kAppliedStereotypeInstance;

/// Where the records are. An extension writes them, and nobody else; whoever asks calls the functions below.
namespace records {
/// Records point at records beside them, which a std::array could not do while it is made.
struct Features {
  Feature fRecords[kFeatureCount];
  Feature& operator[](std::size_t aIndex) noexcept { return fRecords[aIndex]; }
};
extern Features sFeatures;
/// With an empty one behind the last.
extern std::array<Metaclass, kMetaclassCount + 1> sMetaclasses;
extern std::span<Feature* const> sAddedFeatures;
extern std::span<Metaclass* const> sAddedMetaclasses;
}  // namespace records

constexpr bool isAdded(FeatureIndex aIndex) noexcept { return aIndex >= kFeatureCount; }
inline Feature const& feature(FeatureIndex aIndex) noexcept {
  if (isAdded(aIndex)) [[unlikely]]
    return *records::sAddedFeatures[aIndex - std::size_t{kFeatureCount}];
  return records::sFeatures[aIndex];
}
/// The feature whose slot it is.
inline Feature const& rootOf(Feature const& aFeature) noexcept { return *aFeature.fRootRecord; }
inline FeatureIndex indexOf(Feature const& aFeature) noexcept { return aFeature.fIndex; }

inline int metaclassCount() noexcept {
  return kMetaclassCount + static_cast<int>(records::sAddedMetaclasses.size());
}
inline Metaclass const& metaclass(int aIndex) noexcept {
  auto const index = static_cast<std::size_t>(aIndex);
  if (aIndex >= kMetaclassCount) [[unlikely]]
    return *records::sAddedMetaclasses[index - kMetaclassCount];
  return records::sMetaclasses[index];
}
/// The same where one of them is added.
bool conformsAdded(int aMetaclass, int aGeneral) noexcept;
/// Whether a metaclass is another one or a specialization of it.
inline bool conforms(int aMetaclass, int aGeneral) noexcept {
  if (aMetaclass >= kMetaclassCount || aGeneral >= kMetaclassCount) [[unlikely]]
    return conformsAdded(aMetaclass, aGeneral);
  unsigned const bit = static_cast<unsigned>(aMetaclass * kMetaclassCount + aGeneral);
  return (kConformance[bit / 64] >> (bit % 64) & 1) != 0;
}

}  // namespace umlmm::engine
