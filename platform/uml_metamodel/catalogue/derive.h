#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "catalogue/rows.h"

/// What follows from the rows, feature by feature and metaclass by metaclass. For the rows of the tables the
/// compiler works it out, so that nothing is left to do when the library is loaded; extensions do it again
/// for those rows and their own. layout.h does the same for slots.
namespace umlmm::catalogue {

using Index = std::uint16_t;
using engine::kFeatureCount;
using engine::kMetaclassCount;
using engine::Storage;

/// Features or metaclasses, with room from the start: to the compiler an entry of a vector is hundreds of
/// steps.
class FixedList {
 public:
  constexpr FixedList() noexcept = default;
  constexpr void add(Index aItem) {
    if (fCount == kMost) throw "a list of the catalogue has more entries than there is room for";
    fItems[fCount++] = aItem;
  }
  constexpr std::size_t size() const { return fCount; }
  constexpr Index operator[](std::size_t aPosition) const { return fItems[aPosition]; }
  constexpr Index const* begin() const { return fItems; }
  constexpr Index const* end() const { return fItems + fCount; }
  constexpr Index* begin() { return fItems; }
  constexpr Index* end() { return fItems + fCount; }

 private:
  static constexpr unsigned kMost = kMetaclassCount;
  Index fItems[kMost]{};
  unsigned fCount = 0;
};

class GrowingList : public std::vector<Index> {
 public:
  void add(Index aItem) { push_back(aItem); }
};

/// A list without repeats.
template <class List>
class Unique : public List {
 public:
  constexpr Unique() noexcept = default;
  constexpr Unique(Few const& aItems) {
    for (Index const item : aItems) this->add(item);
  }
  constexpr void addNew(Index aItem) {
    if (!contains(aItem)) this->add(aItem);
  }
  constexpr bool contains(Index aItem) const {
    for (Index const item : *this)
      if (item == aItem) return true;
    return false;
  }
};

/// Where a derivation of the tables alone has its lists.
struct FixedRoom {
  using Indices = Unique<FixedList>;
  template <class T, std::size_t Count>
  struct Table {
    constexpr explicit Table(std::size_t) {}
    constexpr T& operator[](std::size_t aIndex) { return fItems[aIndex]; }
    constexpr T const& operator[](std::size_t aIndex) const { return fItems[aIndex]; }
    T fItems[Count]{};
  };
};

/// Where one with further rows has them.
struct GrowingRoom {
  using Indices = Unique<GrowingList>;
  template <class T, std::size_t>
  struct Table : std::vector<T> {
    explicit Table(std::size_t aCount) : std::vector<T>(aCount) {}
  };
};

template <class Room>
class Consequences {
  template <class T>
  using ByMetaclass = typename Room::template Table<T, kMetaclassCount>;
  template <class T>
  using ByFeature = typename Room::template Table<T, kFeatureCount>;

 public:
  using Indices = typename Room::Indices;

  /// Features of metaclasses have their numbers in the order of the rows; added ones, which name their
  /// owners, follow in their order.
  constexpr explicit Consequences(std::span<MetaclassRow const* const> aRows,
                                  std::span<AddedFeature const* const> aAdded = {})
      : fMetaclasses(aRows), fFeatureCount(countOf(aRows) + aAdded.size()) {
    Index features = 0;
    auto const add = [&](Index aOwner, FeatureRow const& aRow) {
      fOwners[features] = aOwner;
      fOwn[aOwner].add(features);
      fRows[features++] = &aRow;
    };
    for (Index metaclass = 0; metaclass < metaclassCount(); ++metaclass) {
      for (FeatureRow const& row : aRows[metaclass]->fFeatures) add(metaclass, row);
      visit(metaclass, fAncestors[metaclass]);
      if (isConcrete(metaclass))
        for (Index const general : fAncestors[metaclass]) fConcreteBelow[general].add(metaclass);
    }
    for (AddedFeature const* const added : aAdded) add(added->fOwner, added->fRow);
    noteRelations();
  }

  // What the rows say, in other words.
  constexpr FeatureRow const& row(Index aFeature) const { return *fRows[aFeature]; }
  constexpr Index ownerOf(Index aFeature) const { return fOwners[aFeature]; }
  /// The features that a metaclass declares, by id.
  constexpr Indices const& own(Index aMetaclass) const { return fOwn[aMetaclass]; }
  constexpr Index featureCount() const { return static_cast<Index>(fFeatureCount); }
  constexpr Index metaclassCount() const { return static_cast<Index>(fMetaclasses.size()); }
  constexpr bool isMany(Index aFeature) const { return row(aFeature).fUpper != 1; }
  constexpr bool isReference(Index aFeature) const {
    return row(aFeature).fType.fKind == ValueType::Reference;
  }
  constexpr bool isOptional(Index aFeature) const { return row(aFeature).fLower == 0 && !isMany(aFeature); }

  /// The feature whose slot it is.
  constexpr Index root(Index aFeature) const { return fRoots[aFeature]; }
  constexpr Storage storage(Index aFeature) const { return fStorages[root(aFeature)]; }
  /// The far end as the rows name it; a redefinition without one has that of what it redefines.
  constexpr Index namedOpposite(Index aFeature) const {
    FeatureRow const& own = row(aFeature);
    if (own.fOpposite != kNoFeature || own.fRedefines.empty()) return own.fOpposite;
    return namedOpposite(own.fRedefines.front());
  }
  /// The far end that a link is kept at as well; a computed one follows by itself, unless it shows a
  /// containment.
  constexpr Index opposite(Index aFeature) const {
    Index const far = namedOpposite(aFeature);
    if (far == kNoFeature) return kNoFeature;
    bool const follows = storage(far) == Storage::Computed && storage(aFeature) != Storage::Container;
    return follows ? kNoFeature : root(far);
  }

  /// A slot that owns what it holds.
  constexpr bool isContainment(Index aFeature) const {
    return row(root(aFeature)).fComposite && isReference(aFeature) && isStored(aFeature);
  }
  constexpr bool isStored(Index aFeature) const {
    return storage(aFeature) != Storage::Computed && storage(aFeature) != Storage::Container;
  }
  /// A computed value that starts as a default and never gets it back once it was unset.
  constexpr bool remembersDefault(Index aFeature) const {
    FeatureRow const& own = row(aFeature);
    return own.fDerived && !own.fReadOnly && own.fRedefines.empty() && isOptional(aFeature) &&
           *own.fDefault != '\0';
  }

  /// The topmost stored containment that holds the parts of a containment, or the element of a far end. A
  /// stored subset of a containment that is none itself leads to that containment, too.
  constexpr Index containment(Index aFeature) const {
    if (storage(aFeature) == Storage::Container) return containment(namedOpposite(aFeature));
    if (!isReference(aFeature) || row(aFeature).fUnion) return kNoFeature;
    Index top = row(root(aFeature)).fComposite ? root(aFeature) : kNoFeature;
    for (Index const wide : fClosures[aFeature])
      if (isContainment(root(wide))) top = root(wide);
    return top;
  }
  /// Whether the owner has a role for the parts of a containment: it leads up to the far end of the role's
  /// union, its own far end leads up to the union, or its row says so.
  constexpr bool gives(Index aFeature, Role aRole) const {
    if (!isContainment(aFeature)) return false;
    if (aRole == Role::Redefining && row(root(aFeature)).fContext) return true;
    Index const asked = roleFeature(aRole);
    Index const far = namedOpposite(aFeature);
    return fClosures[aFeature].contains(namedOpposite(asked)) ||
           (far != kNoFeature && fClosures[far].contains(asked));
  }

  /// Stored features, each once, that must hold what this one holds.
  constexpr Indices storedSupersets(Index aFeature) const { return stored(fSupersets[root(aFeature)]); }
  constexpr Indices storedSubsets(Index aFeature) const { return stored(fSubsettedBy[aFeature]); }
  /// All features that redefine others.
  constexpr Indices const& redefining() const { return fRedefining; }
  /// The redefinitions of a root, those of general metaclasses first.
  constexpr Indices narrowings(Index aFeature) const {
    Indices found = fNarrowings[aFeature];
    auto const depth = [this](Index aOne) { return fAncestors[ownerOf(aOne)].size(); };
    for (auto sorted = found.begin(); sorted != found.end(); ++sorted)
      std::rotate(std::upper_bound(found.begin(), sorted, *sorted,
                                   [&](Index aOne, Index aOther) { return depth(aOne) < depth(aOther); }),
                  sorted, sorted + 1);
    return found;
  }

  /// The union that asks the container for the role.
  constexpr Index roleFeature(Role aRole) const { return fRoles[static_cast<std::size_t>(aRole)]; }

  // Metaclasses.
  constexpr std::span<MetaclassRow const* const> metaclasses() const { return fMetaclasses; }
  constexpr bool isConcrete(Index aMetaclass) const { return !fMetaclasses[aMetaclass]->fAbstract; }
  /// The metaclass and all above it, depth first, each at its first visit.
  constexpr Indices const& ancestors(Index aMetaclass) const { return fAncestors[aMetaclass]; }
  /// Concrete metaclasses below or at it.
  constexpr Indices const& concreteBelow(Index aMetaclass) const { return fConcreteBelow[aMetaclass]; }
  /// Features in the order of the meta-property list, redefined ones left out.
  constexpr Indices visible(Index aMetaclass) const {
    Indices found;
    Indices const& above = fAncestors[aMetaclass];
    for (Index const visited : above)
      for (Index const feature : fOwn[visited])
        if (!isHidden(feature, above)) found.add(feature);
    return found;
  }
  /// The visible features that a union lists: stored and computed ones, those of unions below it among them.
  constexpr Indices members(Index aUnion, Indices const& aVisible) const {
    Indices found;
    for (Index const other : aVisible)
      if (fUnionsAbove[other].contains(aUnion)) found.add(other);
    return found;
  }
  /// Required references in the order in which creation takes them.
  constexpr Indices required(Indices const& aVisible) const {
    Indices found;
    for (Index const other : aVisible)
      if (isReference(other) && row(other).fLower == 1 && !isMany(other) && !row(other).fDerived)
        found.add(other);
    return found;
  }
  /// The text by which failures call an element, or none.
  constexpr Index naming(Indices const& aVisible) const {
    for (Index const other : aVisible)
      if (row(root(other)).fNames) return root(other);
    return kNoFeature;
  }

 private:
  static constexpr std::size_t countOf(std::span<MetaclassRow const* const> aRows) {
    std::size_t count = 0;
    for (MetaclassRow const* const row : aRows) count += row->fFeatures.size();
    return count;
  }
  constexpr void visit(Index aMetaclass, Indices& aSeen) const {
    if (aSeen.contains(aMetaclass)) return;
    aSeen.add(aMetaclass);
    for (Index const super : fMetaclasses[aMetaclass]->fSupers) visit(super, aSeen);
  }
  /// Whether one of the metaclasses redefines the feature.
  constexpr bool isHidden(Index aFeature, Indices const& aMetaclasses) const {
    for (Index const other : fRedefinedBy[aFeature])
      if (aMetaclasses.contains(ownerOf(other))) return true;
    return false;
  }
  constexpr void noteRelations() {
    for (Index feature = 0; feature < featureCount(); ++feature) {
      for (Index const wide : row(feature).fSubsets) fSubsettedBy[wide].add(feature);
      for (Index const hidden : row(feature).fRedefines) fRedefinedBy[hidden].add(feature);
      Index top = feature;
      while (!row(top).fRedefines.empty()) top = row(top).fRedefines.front();
      fRoots[feature] = top;
      if (top != feature) {
        fNarrowings[top].add(feature);
        fRedefining.add(feature);
      }
      if (row(feature).fRole != Role::None) fRoles[static_cast<std::size_t>(row(feature).fRole)] = feature;
    }
    for (Index feature = 0; feature < featureCount(); ++feature) {
      fStorages[feature] = storageOf(feature);
      fSupersets[feature] = supersets(feature);
    }
    for (Index feature = 0; feature < featureCount(); ++feature) fClosures[feature] = closureOf(feature);
    for (Index feature = 0; feature < featureCount(); ++feature)
      if (!row(feature).fUnion) addUnionsAbove(feature, fUnionsAbove[feature]);
  }
  constexpr Storage storageOf(Index aRoot) const {
    FeatureRow const& own = row(aRoot);
    if (own.fDerived) return Storage::Computed;
    if (isMany(aRoot)) return isReference(aRoot) ? Storage::List : Storage::PrimitiveList;
    Index const far = namedOpposite(aRoot);
    if (far != kNoFeature && row(far).fComposite) return Storage::Container;
    switch (own.fType.fKind) {
      case ValueType::Reference:
        return Storage::Reference;
      case ValueType::Boolean:
        return Storage::Flag;
      case ValueType::String:
        return Storage::String;
      case ValueType::Enumeration:
        return Storage::Enumeration;
      default:
        return Storage::Integer;
    }
  }
  /// The unions that list a feature: reached by subsets through unions alone, from it or from what it
  /// redefines.
  constexpr void addUnionsAbove(Index aFeature, Indices& aFound) const {
    for (Index const wide : row(aFeature).fSubsets) {
      if (!row(wide).fUnion) continue;
      aFound.addNew(wide);
      addUnionsAbove(wide, aFound);
    }
    for (Index const hidden : row(aFeature).fRedefines) addUnionsAbove(hidden, aFound);
  }
  /// Features that this one is a direct subset of, with those of what it redefines.
  constexpr Indices supersets(Index aFeature) const {
    Indices found(row(aFeature).fSubsets);
    for (Index const hidden : row(aFeature).fRedefines)
      for (Index const wide : supersets(hidden)) found.addNew(wide);
    return found;
  }
  /// All features that hold what this one holds, nearest first.
  constexpr Indices closureOf(Index aFeature) const {
    Indices found = fSupersets[aFeature];
    for (unsigned at = 0; at < found.size(); ++at)
      for (Index const wider : fSupersets[found[at]]) found.addNew(wider);
    return found;
  }
  constexpr Indices stored(Indices const& aFeatures) const {
    Indices found;
    for (Index const feature : aFeatures)
      if (storage(feature) != Storage::Computed) found.addNew(root(feature));
    return found;
  }

  // By metaclass.
  std::span<MetaclassRow const* const> fMetaclasses;
  std::size_t fFeatureCount;
  ByMetaclass<Indices> fOwn{fMetaclasses.size()};
  ByMetaclass<Indices> fAncestors{fMetaclasses.size()};
  ByMetaclass<Indices> fConcreteBelow{fMetaclasses.size()};
  // By feature.
  ByFeature<FeatureRow const*> fRows{fFeatureCount};
  ByFeature<Index> fOwners{fFeatureCount};
  ByFeature<Index> fRoots{fFeatureCount};
  ByFeature<Storage> fStorages{fFeatureCount};
  ByFeature<Indices> fSupersets{fFeatureCount};
  ByFeature<Indices> fClosures{fFeatureCount};
  ByFeature<Indices> fSubsettedBy{fFeatureCount};
  ByFeature<Indices> fRedefinedBy{fFeatureCount};
  ByFeature<Indices> fNarrowings{fFeatureCount};
  ByFeature<Indices> fUnionsAbove{fFeatureCount};
  Indices fRedefining;
  Index fRoles[5]{};
};

}  // namespace umlmm::catalogue
