#include "metamodel/metamodel.h"

#include "catalogue/layout.h"

/// The tables of the engine, put together from the rows of all metaclasses while this unit is compiled.
namespace umlmm::catalogue {

namespace {

using engine::Feature;
using engine::kConcreteCount;
using engine::Layout;
using engine::Metaclass;
using engine::Union;

/// A run of indices in the pool, or of unions.
struct Run {
  Index fBegin = 0;
  Index fCount = 0;
};

struct FeatureLists {
  Run fSupersets, fSubsets, fNarrowings, fAllSupersets, fRedefined;
};
struct MetaclassLists {
  Run fSupers, fAncestors, fConcrete, fVisible, fUnions, fRequired;
  Index fNaming = kNoFeature;
};
struct UnionLists {
  Index fFeature = kNoFeature;
  Run fMembers;
};
struct Slots {
  std::uint32_t fDefaultFlags = 0;
  std::uint16_t fWords = 0;
  std::uint64_t fStringWords = 0;
  std::uint64_t fReferenceWords = 0;
  std::uint64_t fListWords = 0;
  std::uint64_t fSequenceWords = 0;
};

/// All that follows from the rows, lists as runs: a constant can't hold a vector.
struct Draft {
  std::array<Index, std::size_t{64} * kMetaclassCount + std::size_t{16} * kFeatureCount> fPool{};
  std::array<UnionLists, std::size_t{16} * kMetaclassCount> fUnions{};
  Index fPoolSize = 0;
  Index fUnionCount = 0;
  std::array<Feature, kFeatureCount> fFeatures{};
  std::array<FeatureLists, kFeatureCount> fFeatureLists{};
  std::array<Metaclass, kMetaclassCount> fMetaclasses{};
  std::array<MetaclassLists, kMetaclassCount> fMetaclassLists{};
  std::array<Index, kConcreteCount> fConcrete{};
  std::array<Slots, kConcreteCount> fLayouts{};
  std::array<std::array<std::uint8_t, kFeatureCount>, kConcreteCount> fSlots{};
  std::array<std::uint64_t, (kMetaclassCount * kMetaclassCount + 63) / 64> fConformance{};

  constexpr Run add(auto const& aItems) {
    Run run{fPoolSize, 0};
    for (Index const item : aItems) {
      fPool.at(fPoolSize++) = item;
      ++run.fCount;
    }
    return run;
  }
};

constexpr Feature record(Derivation const& aRows, Index aIndex) {
  FeatureRow const& row = aRows.row(aIndex);
  Feature feature;
  feature.fName = row.fName;
  feature.fOwner = aRows.ownerOf(aIndex);
  feature.fType = row.fType.fIndex;
  feature.fRoot = aRows.root(aIndex);
  feature.fOpposite = aRows.opposite(aIndex);
  feature.fContainment = aRows.containment(aIndex);
  feature.fId = static_cast<std::uint8_t>(aIndex - aRows.firstFeature(feature.fOwner) + 1);
  feature.fLower = static_cast<std::int8_t>(row.fLower);
  feature.fUpper = static_cast<std::int8_t>(row.fUpper);
  feature.fValueType = row.fType.fKind;
  feature.fStorage = aRows.storage(aIndex);
  feature.fComposite = aRows.row(feature.fRoot).fComposite;
  feature.fOrdered = row.fOrdered;
  feature.fUnique = row.fUnique;
  feature.fDerived = row.fDerived;
  feature.fUnion = row.fUnion;
  feature.fReadOnly = row.fReadOnly;
  feature.fGivesNamespace = aRows.gives(aIndex, Role::Namespace);
  feature.fGivesFeaturingClassifier = aRows.gives(aIndex, Role::Featuring);
  feature.fGivesContext = aRows.gives(aIndex, Role::Redefining);
  feature.fDefault = row.fDefault;
  feature.fNamedOpposite = aRows.namedOpposite(aIndex);
  feature.fForgetsDefaultOf = row.fForgets;
  return feature;
}

constexpr void addFeatures(Draft& aDraft, Derivation const& aRows) {
  for (Index index = 0; index < kFeatureCount; ++index) {
    aDraft.fFeatures[index] = record(aRows, index);
    aDraft.fFeatureLists[index] = {.fSupersets = aDraft.add(aRows.storedSupersets(index)),
                                   .fSubsets = aDraft.add(aRows.storedSubsets(index)),
                                   .fNarrowings = aDraft.add(aRows.narrowings(index)),
                                   .fAllSupersets = aDraft.add(aRows.row(index).fSubsets),
                                   .fRedefined = aDraft.add(aRows.row(index).fRedefines)};
  }
}

constexpr Run addUnions(Draft& aDraft, Derivation const& aRows, Indices const& aVisible) {
  Run run{aDraft.fUnionCount, 0};
  for (Index const feature : aVisible) {
    if (!aRows.row(feature).fUnion) continue;
    aDraft.fUnions.at(aDraft.fUnionCount++) = {feature, aDraft.add(aRows.members(feature, aVisible))};
    ++run.fCount;
  }
  return run;
}

constexpr void addMetaclass(Draft& aDraft, Derivation const& aRows, Index aIndex, Indices const& aVisible) {
  MetaclassRow const& row = *aRows.metaclasses()[aIndex];
  Metaclass& metaclass = aDraft.fMetaclasses[aIndex];
  metaclass.fName = row.fName;
  metaclass.fAbstract = row.fAbstract;
  metaclass.fFirstFeature = aRows.firstFeature(aIndex);
  metaclass.fFeatureCount = static_cast<std::uint8_t>(row.fFeatures.size());
  metaclass.fNaming = aRows.naming(aVisible);
  aDraft.fMetaclassLists[aIndex] = {.fSupers = aDraft.add(row.fSupers),
                                    .fAncestors = aDraft.add(aRows.ancestors(aIndex)),
                                    .fConcrete = aDraft.add(aRows.concreteBelow(aIndex)),
                                    .fVisible = aDraft.add(aVisible),
                                    .fUnions = addUnions(aDraft, aRows, aVisible),
                                    .fRequired = aDraft.add(aRows.required(aVisible))};
  for (Index const general : aRows.ancestors(aIndex)) {
    unsigned const bit = static_cast<unsigned>(aIndex * kMetaclassCount + general);
    aDraft.fConformance[bit / 64] |= std::uint64_t{1} << bit % 64;
  }
}

constexpr Draft draft() {
  Derivation const rows(kMetaclassRows);
  Draft all;
  addFeatures(all, rows);
  std::size_t concrete = 0;
  for (Index index = 0; index < kMetaclassCount; ++index) {
    Indices const visible = rows.visible(index);
    addMetaclass(all, rows, index, visible);
    if (!rows.isConcrete(index)) continue;
    LayoutBuilder const layout(rows, kLiterals, visible);
    all.fConcrete[concrete] = index;
    all.fLayouts[concrete] = {layout.fDefaultFlags,   layout.words(),    layout.fStringWords,
                              layout.fReferenceWords, layout.fListWords, layout.fSequenceWords};
    all.fSlots[concrete++] = layout.fSlots;
  }
  return all;
}

constexpr Draft kDraft = draft();

constexpr auto kPool = [] {
  std::array<Index, kDraft.fPoolSize> pool{};
  std::copy_n(kDraft.fPool.begin(), pool.size(), pool.begin());
  return pool;
}();
constexpr std::span<Index const> listOf(Run aRun) {
  return std::span(kPool).subspan(aRun.fBegin, aRun.fCount);
}

constexpr auto kUnions = [] {
  std::array<Union, kDraft.fUnionCount> unions{};
  for (std::size_t at = 0; at < unions.size(); ++at)
    unions[at] = {kDraft.fUnions[at].fFeature, listOf(kDraft.fUnions[at].fMembers)};
  return unions;
}();
constexpr auto kSlots = kDraft.fSlots;

constexpr auto features() {
  auto features = kDraft.fFeatures;
  for (std::size_t at = 0; at < features.size(); ++at) {
    FeatureLists const& lists = kDraft.fFeatureLists[at];
    features[at].fSupersets = listOf(lists.fSupersets);
    features[at].fSubsets = listOf(lists.fSubsets);
    features[at].fNarrowings = listOf(lists.fNarrowings);
    features[at].fAllSupersets = listOf(lists.fAllSupersets);
    features[at].fRedefined = listOf(lists.fRedefined);
  }
  return features;
}

constexpr auto metaclasses() {
  auto metaclasses = kDraft.fMetaclasses;
  for (std::size_t at = 0; at < metaclasses.size(); ++at) {
    MetaclassLists const& lists = kDraft.fMetaclassLists[at];
    metaclasses[at].fSupers = listOf(lists.fSupers);
    metaclasses[at].fAncestors = listOf(lists.fAncestors);
    metaclasses[at].fConcrete = listOf(lists.fConcrete);
    metaclasses[at].fVisible = listOf(lists.fVisible);
    metaclasses[at].fUnions = std::span(kUnions).subspan(lists.fUnions.fBegin, lists.fUnions.fCount);
  }
  return metaclasses;
}

constexpr auto layouts() {
  std::array<Layout, kConcreteCount> layouts{};
  for (std::size_t at = 0; at < layouts.size(); ++at) {
    Index const metaclass = kDraft.fConcrete[at];
    Slots const& slots = kDraft.fLayouts[at];
    layouts[at] = {.fMetaclass = metaclass,
                   .fWords = slots.fWords,
                   .fDefaultFlags = slots.fDefaultFlags,
                   .fStringWords = slots.fStringWords,
                   .fReferenceWords = slots.fReferenceWords,
                   .fListWords = slots.fListWords,
                   .fSequenceWords = slots.fSequenceWords,
                   .fSlotOfFeature = kSlots[at].data(),
                   .fRequired = listOf(kDraft.fMetaclassLists[metaclass].fRequired)};
  }
  return layouts;
}

}  // namespace

}  // namespace umlmm::catalogue

namespace umlmm::engine {

constinit std::array<Feature, kFeatureCount> const kFeatures = catalogue::features();
constinit std::array<Metaclass, kMetaclassCount> const kMetaclasses = catalogue::metaclasses();
constinit std::array<Layout, kConcreteCount> const kLayouts = catalogue::layouts();
constinit Conformance const kConformance = catalogue::kDraft.fConformance;

}  // namespace umlmm::engine
