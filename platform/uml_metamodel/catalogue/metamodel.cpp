#include "metamodel/metamodel.h"

#include "catalogue/records.h"

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

struct UnionLists {
  Index fFeature = kNoFeature;
  Run fMembers;
};
using Rows = Consequences<FixedRoom>;
using Builder = LayoutBuilder<Rows>;

/// All that follows from the rows, lists as runs: a constant can't hold a vector.
struct Draft {
  std::array<Index, std::size_t{64} * kMetaclassCount + std::size_t{16} * kFeatureCount> fPool{};
  std::array<UnionLists, std::size_t{16} * kMetaclassCount> fUnions{};
  Index fPoolSize = 0;
  Index fUnionCount = 0;
  std::array<Feature, kFeatureCount> fFeatures{};
  std::array<FeatureLists<Run>, kFeatureCount> fFeatureLists{};
  std::array<Metaclass, kMetaclassCount> fMetaclasses{};
  std::array<MetaclassLists<Run>, kMetaclassCount> fMetaclassLists{};
  std::array<Run, kMetaclassCount> fUnionsOf{};
  std::array<Layout, kConcreteCount> fLayouts{};
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

constexpr void addFeatures(Draft& aDraft, Rows const& aRows) {
  for (Index index = 0; index < kFeatureCount; ++index) {
    aDraft.fFeatures[index] = record(aRows, index);
    aDraft.fFeatureLists[index] =
        listsOf(aRows, index, [&](auto const& aItems) { return aDraft.add(aItems); });
  }
}

constexpr Run addUnions(Draft& aDraft, Rows const& aRows, Rows::Indices const& aVisible) {
  Run run{aDraft.fUnionCount, 0};
  for (Index const feature : aVisible) {
    if (!aRows.row(feature).fUnion) continue;
    aDraft.fUnions.at(aDraft.fUnionCount++) = {feature, aDraft.add(aRows.members(feature, aVisible))};
    ++run.fCount;
  }
  return run;
}

constexpr void addMetaclass(Draft& aDraft, Rows const& aRows, Index aIndex, Rows::Indices const& aVisible) {
  aDraft.fMetaclasses[aIndex] = metaclassRecord(aRows, aIndex, aVisible);
  aDraft.fMetaclassLists[aIndex] =
      listsOf(aRows, aIndex, aVisible, [&](auto const& aItems) { return aDraft.add(aItems); });
  aDraft.fUnionsOf[aIndex] = addUnions(aDraft, aRows, aVisible);
  for (Index const general : aRows.ancestors(aIndex)) {
    unsigned const bit = static_cast<unsigned>(aIndex * kMetaclassCount + general);
    aDraft.fConformance[bit / 64] |= std::uint64_t{1} << bit % 64;
  }
}

constexpr Draft draft() {
  Rows const rows(kMetaclassRows);
  Draft all;
  addFeatures(all, rows);
  std::size_t concrete = 0;
  for (Index index = 0; index < kMetaclassCount; ++index) {
    Rows::Indices const visible = rows.visible(index);
    addMetaclass(all, rows, index, visible);
    if (!rows.isConcrete(index)) continue;
    Builder const layout(rows, kLiterals, visible);
    all.fLayouts[concrete] = layoutRecord(index, layout);
    all.fSlots[concrete++] = layout.fSlots;
  }
  return all;
}

constexpr Draft kDraft = draft();

/// The union of owners, a feature of the root metaclass, and its far end.
struct Owner {
  Index fOwner = 0;
  Index fOpposite = kNoFeature;
};
constexpr Owner kOwner = [] {
  Rows const rows(kMetaclassRows);
  Index const owner = rows.roleFeature(Role::Owner);
  return Owner{rows.ownerOf(owner), rows.namedOpposite(owner)};
}();

/// Whether the interfaces, by which typed accessors read, say of each feature what follows from the rows.
constexpr bool interfacesAgree() {
  Index const owner = Rows(kMetaclassRows).roleFeature(Role::Owner);
  for (Metaclass const& metaclass : kDraft.fMetaclasses) {
    auto const& stored = kStoredFeatures[metaclass.fIndex];
    if (stored.size() != std::size_t{metaclass.fFeatureCount} + 1) return false;
    for (std::size_t id = 1; id < stored.size(); ++id) {
      auto const index = static_cast<Index>(metaclass.fFirstFeature + id - 1);
      Feature const& feature = kDraft.fFeatures[index];
      Index const number = feature.fStorage == engine::Storage::Computed ? index : feature.fRoot;
      if (stored[id].fNumber != number || stored[id].fStorage != feature.fStorage ||
          stored[id].fIsOwner != (index == owner))
        return false;
    }
  }
  return true;
}
static_assert(interfacesAgree(), "an interface places a feature where the rows do not");

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
  engine::records::Features features{};
  for (std::size_t at = 0; at < kFeatureCount; ++at) {
    Feature& feature = features.fRecords[at];
    feature = kDraft.fFeatures[at];
    feature.fRootRecord = &engine::records::sFeatures.fRecords[feature.fRoot];
    FeatureLists<Run> const& lists = kDraft.fFeatureLists[at];
    setLists(feature, {listOf(lists.fSupersets), listOf(lists.fSubsets), listOf(lists.fNarrowings),
                       listOf(lists.fAllSupersets), listOf(lists.fRedefined)});
  }
  return features;
}

constexpr auto metaclasses() {
  std::array<Metaclass, kMetaclassCount + 1> metaclasses{};
  for (std::size_t at = 0; at < kDraft.fMetaclasses.size(); ++at) {
    metaclasses[at] = kDraft.fMetaclasses[at];
    MetaclassLists<Run> const& lists = kDraft.fMetaclassLists[at];
    setLists(metaclasses[at], {listOf(lists.fSupers), listOf(lists.fAncestors), listOf(lists.fConcrete),
                               listOf(lists.fVisible), listOf(lists.fRequired)});
    Run const unions = kDraft.fUnionsOf[at];
    metaclasses[at].fUnions = std::span(kUnions).subspan(unions.fBegin, unions.fCount);
  }
  return metaclasses;
}

constexpr auto layouts() {
  auto layouts = kDraft.fLayouts;
  for (std::size_t at = 0; at < layouts.size(); ++at) {
    layouts[at].fSlotOfFeature = kSlots[at].data();
    layouts[at].fRequired = listOf(kDraft.fMetaclassLists[layouts[at].fMetaclass].fRequired);
  }
  return layouts;
}

}  // namespace

}  // namespace umlmm::catalogue

namespace umlmm::engine {

constinit records::Features records::sFeatures = catalogue::features();
constinit std::array<Metaclass, kMetaclassCount + 1> records::sMetaclasses = catalogue::metaclasses();
bool conformsAdded(int aMetaclass, int aGeneral) noexcept {
  auto const& ancestors = metaclass(aMetaclass).fAncestors;
  return std::find(ancestors.begin(), ancestors.end(), aGeneral) != ancestors.end();
}

constinit std::span<Feature* const> records::sAddedFeatures;
constinit std::span<Metaclass* const> records::sAddedMetaclasses;
constinit std::array<Layout, kConcreteCount> const kLayouts = catalogue::layouts();
constinit Conformance const kConformance = catalogue::kDraft.fConformance;
constinit FeatureIndex const kOwnedElements = catalogue::kOwner.fOpposite;
constinit Feature const kAppliedStereotypeInstance{.fName = "appliedStereotypeInstance",
                                                   .fOwner = catalogue::kOwner.fOwner,
                                                   .fType = catalogue::kOwner.fOwner,
                                                   .fLower = 0,
                                                   .fUpper = catalogue::kUnlimited,
                                                   .fDerived = true,
                                                   .fReadOnly = true};

}  // namespace umlmm::engine
