#include "extension/join.h"

#include <array>
#include <deque>
#include <vector>

#include "catalogue/records.h"
#include "engine/classTables.h"
#include "engine/failures.h"
#include "metamodel/metamodel.h"
#include "queries/UnionLeaves.h"
#include "reflection/reflection.h"

namespace umlmm::extension {

namespace {

namespace records = engine::records;
using catalogue::AddedFeature;
using catalogue::Index;
using catalogue::kFeatureCount;
using catalogue::kMetaclassCount;
using catalogue::MetaclassRow;

constexpr char kSource[] = "uml_metamodel/extension/join";

using List = std::span<Index const>;
using Derived = catalogue::Consequences<catalogue::GrowingRoom>;
using Slots = std::array<std::uint8_t, kFeatureCount>;

/// What records point at. Those of earlier states of the metamodel stay, as somebody may still read them.
struct Lists {
  std::deque<std::vector<Index>> fIndices;
  std::deque<std::vector<engine::Union>> fUnions;
};

/// All rows and added records so far. Records stay where they are, as lists and class tables point at them.
struct Joined {
  std::vector<MetaclassRow const*> fMetaclassRows{std::begin(catalogue::kMetaclassRows),
                                                  std::end(catalogue::kMetaclassRows)};
  std::vector<AddedFeature const*> fFeatureRows;
  std::vector<std::shared_ptr<Rows const>> fExtensions;
  std::deque<engine::Feature> fFeatures;
  std::deque<engine::Metaclass> fMetaclasses;
  std::vector<engine::Feature*> fFeaturesByIndex;
  std::vector<engine::Metaclass*> fMetaclassesByIndex;
  std::deque<engine::Layout> fLayouts;
  std::deque<Slots> fSlots;
  std::vector<std::unique_ptr<Lists>> fLists;

  /// Shows the records of as many added features and metaclasses.
  void show(std::size_t aFeatures, std::size_t aMetaclasses) const noexcept {
    records::sAddedFeatures = std::span(fFeaturesByIndex).first(aFeatures);
    records::sAddedMetaclasses = std::span(fMetaclassesByIndex).first(aMetaclasses);
  }
};

/// Never destroyed, as elements may outlive every static.
Joined& joined() {
  static Joined& all = *new Joined();
  return all;
}

/// The bits of an added Boolean or enumeration on elements where it was never set.
std::uint32_t unsetBits(catalogue::FeatureRow const& aRow) {
  bool const isEnumeration = aRow.fType.fKind == engine::ValueType::Enumeration;
  if (aRow.fLower == 0 || aRow.fUpper != 1) return 0;
  if (!isEnumeration)
    return aRow.fType.fKind == engine::ValueType::Boolean && aRow.fDefault == std::string_view("true");
  auto const literals = catalogue::kLiterals[aRow.fType.fIndex];
  auto const found = std::find(literals.begin(), literals.end(), aRow.fDefault);
  auto const number = found == literals.end() ? 0U : static_cast<std::uint32_t>(found - literals.begin());
  return number | 1U << engine::kEnumerationBits;
}

void write(Joined const& aJoined, std::span<engine::Feature const> aFeatures,
           std::span<engine::Metaclass const> aMetaclasses) noexcept {
  for (std::size_t at = 0; at < aFeatures.size(); ++at)
    (at < kFeatureCount ? records::sFeatures[at] : *aJoined.fFeaturesByIndex[at - kFeatureCount]) =
        aFeatures[at];
  for (std::size_t at = 0; at < aMetaclasses.size(); ++at)
    (at < kMetaclassCount ? records::sMetaclasses[at] : *aJoined.fMetaclassesByIndex[at - kMetaclassCount]) =
        aMetaclasses[at];
  queries::UnionLeaves::forgetAll();
}

/// The records of the whole metamodel as they will be, each beside the one that it goes to.
class Draft {
 public:
  Draft(Joined& aJoined, Derived const& aRows) : fJoined(aJoined), fRows(aRows) {
    fJoined.fLists.reserve(fJoined.fLists.size() + 1);
    auto const keep = [this](auto const& aItems) { return kept(aItems); };
    for (Index index = 0; index < fRows.featureCount(); ++index) {
      fFeatures.push_back(catalogue::record(fRows, index));
      catalogue::setLists(fFeatures.back(), catalogue::listsOf(fRows, index, keep));
      fFeatures.back().fRootRecord = &recordOf(fFeatures.back().fRoot);
      if (engine::isAdded(index)) fFeatures.back().fUnsetBits = unsetBits(fRows.row(index)) & 31;
      // Accessors of added metaclasses know the features by their numbers among all added ones.
      if (fFeatures.back().fOwner >= kMetaclassCount)
        fFeatures.back().fId = static_cast<std::uint16_t>(index - kFeatureCount + 1);
    }
    for (Index index = 0; index < fRows.metaclassCount(); ++index) addMetaclass(index);
  }

  /// Raises for a concrete metaclass from `aFirst` on that no class of C++ can stand for.
  void checkShapes(int aFirst) const {
    for (auto at = static_cast<std::size_t>(aFirst); at < fMetaclasses.size(); ++at)
      if (!fMetaclasses[at].fAbstract && !engine::hasShape(fMetaclasses[at]))
        engine::failures::raise(kSource, std::string(fMetaclasses[at].fName) +
                                             " specializes metaclasses that no published one has together");
  }
  /// Whoever sees the records now may keep what they point at.
  void commit() noexcept { fJoined.fLists.push_back(std::move(fLists)); }
  /// Writes the records. Nothing can fail any more.
  void publish() const noexcept {
    write(fJoined, fFeatures, fMetaclasses);
    fJoined.show(fFeatures.size() - kFeatureCount, fMetaclasses.size() - kMetaclassCount);
  }

  /// Where elements of a concrete metaclass keep the values of the catalogue's features.
  engine::Layout const& layout(Index aMetaclass) {
    catalogue::LayoutBuilder const builder(fRows, catalogue::kLiterals, fRows.visible(aMetaclass));
    engine::Layout& made = fJoined.fLayouts.emplace_back(catalogue::layoutRecord(aMetaclass, builder));
    made.fSlotOfFeature = fJoined.fSlots.emplace_back(builder.fSlots).data();
    return made;
  }

 private:
  /// Where a record is going to stand.
  engine::Feature const& recordOf(Index aIndex) const noexcept {
    return engine::isAdded(aIndex) ? *fJoined.fFeaturesByIndex[aIndex - std::size_t{kFeatureCount}]
                                   : records::sFeatures[aIndex];
  }
  List kept(auto const& aItems) { return fLists->fIndices.emplace_back(aItems.begin(), aItems.end()); }

  void addMetaclass(Index aIndex) {
    Derived::Indices const visible = fRows.visible(aIndex);
    engine::Metaclass metaclass = catalogue::metaclassRecord(fRows, aIndex, visible);
    auto const keep = [this](auto const& aItems) { return kept(aItems); };
    catalogue::setLists(metaclass, catalogue::listsOf(fRows, aIndex, visible, keep));
    auto const& own = fRows.own(aIndex);
    metaclass.fAdded = kept(List(own).subspan(metaclass.fFeatureCount));
    auto& unions = fLists->fUnions.emplace_back();
    for (Index const feature : visible)
      if (fRows.row(feature).fUnion) unions.push_back({feature, kept(fRows.members(feature, visible))});
    metaclass.fUnions = unions;
    fMetaclasses.push_back(metaclass);
  }

  Joined& fJoined;
  Derived const& fRows;
  std::unique_ptr<Lists> fLists = std::make_unique<Lists>();
  std::vector<engine::Feature> fFeatures;
  std::vector<engine::Metaclass> fMetaclasses;
};

/// The rows as they are known, and the records that they have, until it ends without `commit`.
class Attempt {
 public:
  Attempt(Joined& aJoined, std::shared_ptr<Rows const> const& aRows)
      : fJoined(aJoined),
        fMetaclassCount(aJoined.fMetaclassRows.size()),
        fFeatureCount(aJoined.fFeatureRows.size()) {
    for (std::size_t index = 0; index < kFeatureCount + fFeatureCount; ++index)
      fFeatures.push_back(engine::feature(static_cast<Index>(index)));
    for (int index = 0; index < engine::metaclassCount(); ++index)
      fMetaclasses.push_back(engine::metaclass(index));
    try {
      fJoined.fExtensions.push_back(aRows);
      for (MetaclassRow const& row : aRows->fMetaclasses) fJoined.fMetaclassRows.push_back(&row);
      for (AddedFeature const& row : aRows->fFeatures) fJoined.fFeatureRows.push_back(&row);
      while (fJoined.fFeaturesByIndex.size() < fJoined.fFeatureRows.size())
        fJoined.fFeaturesByIndex.push_back(&fJoined.fFeatures.emplace_back());
      while (fJoined.fMetaclassesByIndex.size() + kMetaclassCount < fJoined.fMetaclassRows.size())
        fJoined.fMetaclassesByIndex.push_back(&fJoined.fMetaclasses.emplace_back());
    } catch (...) {
      takeBack();
      throw;
    }
    // The tables may have moved.
    fJoined.show(fFeatureCount, fMetaclassCount - kMetaclassCount);
  }
  Attempt(Attempt const&) = delete;
  Attempt& operator=(Attempt const&) = delete;
  ~Attempt() {
    if (fIsCommitted) return;
    write(fJoined, fFeatures, fMetaclasses);
    takeBack();
  }
  void commit() noexcept { fIsCommitted = true; }

 private:
  void takeBack() noexcept {
    fJoined.fMetaclassRows.resize(fMetaclassCount);
    fJoined.fFeatureRows.resize(fFeatureCount);
    fJoined.fExtensions.resize(fExtensionCount);
    fJoined.show(fFeatureCount, fMetaclassCount - kMetaclassCount);
  }

  Joined& fJoined;
  std::size_t fMetaclassCount;
  std::size_t fFeatureCount;
  std::size_t fExtensionCount = fJoined.fExtensions.size();
  /// The records of before.
  std::vector<engine::Feature> fFeatures;
  std::vector<engine::Metaclass> fMetaclasses;
  bool fIsCommitted = false;
};

}  // namespace

Kelm::NSInterface::PackageIntf const* join(std::shared_ptr<Rows const> aRows) try {
  Joined& all = joined();
  auto const first = static_cast<int>(all.fMetaclassRows.size());
  auto const firstFeature = static_cast<int>(kFeatureCount + all.fFeatureRows.size());
  Attempt attempt(all, aRows);
  Derived const rows(all.fMetaclassRows, all.fFeatureRows);
  Draft draft(all, rows);
  draft.checkShapes(first);
  draft.publish();
  auto const* const package = reflection::addPackage(aRows->fName, first, firstFeature);
  for (int index = first; index < engine::metaclassCount(); ++index)
    if (!engine::metaclass(index).fAbstract)
      engine::addClass(engine::metaclass(index), draft.layout(static_cast<Index>(index)));
  reflection::showPackage();
  draft.commit();
  attempt.commit();
  return package;
} catch (char const* aReason) {
  engine::failures::raise(kSource, std::string(aRows->fName) + ": " + aReason);
}

}  // namespace umlmm::extension
