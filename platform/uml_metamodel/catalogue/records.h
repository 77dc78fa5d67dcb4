#pragma once

#include "catalogue/layout.h"

/// The engine's records, made from what follows of the rows.
namespace umlmm::catalogue {

/// The lists of a feature's record, as whoever makes it keeps lists.
template <class Kept>
struct FeatureLists {
  Kept fSupersets, fSubsets, fNarrowings, fAllSupersets, fRedefined;
};
template <class Rows>
constexpr auto listsOf(Rows const& aRows, Index aIndex, auto aKeep) {
  return FeatureLists<decltype(aKeep(aRows.own(0)))>{.fSupersets = aKeep(aRows.storedSupersets(aIndex)),
                                                     .fSubsets = aKeep(aRows.storedSubsets(aIndex)),
                                                     .fNarrowings = aKeep(aRows.narrowings(aIndex)),
                                                     .fAllSupersets = aKeep(aRows.row(aIndex).fSubsets),
                                                     .fRedefined = aKeep(aRows.row(aIndex).fRedefines)};
}
constexpr void setLists(engine::Feature& aFeature, FeatureLists<std::span<Index const>> const& aLists) {
  aFeature.fSupersets = aLists.fSupersets;
  aFeature.fSubsets = aLists.fSubsets;
  aFeature.fNarrowings = aLists.fNarrowings;
  aFeature.fAllSupersets = aLists.fAllSupersets;
  aFeature.fRedefined = aLists.fRedefined;
}

/// The lists of a metaclass's record, its unions apart.
template <class Kept>
struct MetaclassLists {
  Kept fSupers, fAncestors, fConcrete, fVisible, fRequired;
};
template <class Rows>
constexpr auto listsOf(Rows const& aRows, Index aIndex, typename Rows::Indices const& aVisible, auto aKeep) {
  return MetaclassLists<decltype(aKeep(aVisible))>{.fSupers = aKeep(aRows.metaclasses()[aIndex]->fSupers),
                                                   .fAncestors = aKeep(aRows.ancestors(aIndex)),
                                                   .fConcrete = aKeep(aRows.concreteBelow(aIndex)),
                                                   .fVisible = aKeep(aVisible),
                                                   .fRequired = aKeep(aRows.required(aVisible))};
}
constexpr void setLists(engine::Metaclass& aMetaclass, MetaclassLists<std::span<Index const>> const& aLists) {
  aMetaclass.fSupers = aLists.fSupers;
  aMetaclass.fAncestors = aLists.fAncestors;
  aMetaclass.fConcrete = aLists.fConcrete;
  aMetaclass.fVisible = aLists.fVisible;
}

/// A feature's record without its lists.
template <class Rows>
constexpr engine::Feature record(Rows const& aRows, Index aIndex) {
  FeatureRow const& row = aRows.row(aIndex);
  engine::Feature feature;
  feature.fName = row.fName;
  feature.fOwner = aRows.ownerOf(aIndex);
  feature.fType = row.fType.fIndex;
  feature.fRoot = aRows.root(aIndex);
  feature.fOpposite = aRows.opposite(aIndex);
  feature.fContainment = aRows.containment(aIndex);
  feature.fIndex = aIndex;
  auto const& siblings = aRows.own(feature.fOwner);
  feature.fId =
      static_cast<std::uint16_t>(std::find(siblings.begin(), siblings.end(), aIndex) - siblings.begin() + 1);
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

/// A metaclass's record without its lists and unions.
template <class Rows>
constexpr engine::Metaclass metaclassRecord(Rows const& aRows, Index aIndex,
                                            typename Rows::Indices const& aVisible) {
  MetaclassRow const& row = *aRows.metaclasses()[aIndex];
  engine::Metaclass metaclass;
  metaclass.fName = row.fName;
  metaclass.fIndex = aIndex;
  metaclass.fAbstract = row.fAbstract;
  metaclass.fFirstFeature = row.fFeatures.empty() ? Index{0} : aRows.own(aIndex)[0];
  metaclass.fFeatureCount = static_cast<std::uint8_t>(row.fFeatures.size());
  metaclass.fNaming = aRows.naming(aVisible);
  return metaclass;
}

/// Where the elements of a metaclass keep their values, but for the slots of the features.
template <class Rows>
constexpr engine::Layout layoutRecord(Index aMetaclass, LayoutBuilder<Rows> const& aSlots) {
  engine::Layout layout;
  layout.fMetaclass = aMetaclass;
  layout.fWords = aSlots.words();
  layout.fDefaultFlags = aSlots.fDefaultFlags;
  layout.fStringWords = aSlots.fStringWords;
  layout.fReferenceWords = aSlots.fReferenceWords;
  layout.fListWords = aSlots.fListWords;
  layout.fSequenceWords = aSlots.fSequenceWords;
  return layout;
}

}  // namespace umlmm::catalogue
