#include "uml_metamodel/umlmm/MetamodelExtension.h"

#include <algorithm>
#include <deque>

#include "engine/Change.h"
#include "engine/failures.h"
#include "extension/join.h"
#include "metamodel/metamodel.h"
#include "reflection/reflection.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/umlmm/MetamodelExtension";

using catalogue::AddedFeature;
using catalogue::MetaclassRow;
using engine::FeatureIndex;
using engine::ValueType;

/// The greatest bound that a record has room for.
constexpr int kMostValues = 127;

[[noreturn]] void refuse(std::string const& aText) { engine::failures::raise(kSource, aText); }

/// Rows name a handful of others.
template <class Item>
catalogue::Few few(std::string const& aName, std::vector<Item> const& aItems, auto aIndexOf) {
  constexpr std::size_t kMost = 8;
  if (aItems.size() > kMost)
    refuse(aName + " names more than " + std::to_string(kMost) + " others in a list");
  catalogue::Few found;
  for (Item const& item : aItems) found.add(aIndexOf(item));
  return found;
}

}  // namespace

struct MetamodelExtension::Rows {
  std::shared_ptr<extension::Rows> fKept = std::make_shared<extension::Rows>();
  bool fHasJoined = false;
  int fFirstMetaclass = engine::metaclassCount();
  int fFirstFeature = engine::kFeatureCount + static_cast<int>(engine::records::sAddedFeatures.size());

  explicit Rows(std::string_view aName) { fKept->fName = fKept->keep(aName); }

  extension::Rows& open() {
    if (fHasJoined) refuse(std::string(fKept->fName) + " has joined already; make another extension");
    return *fKept;
  }
  MetaclassRow const* ownMetaclass(int aIndex) const {
    return aIndex < fFirstMetaclass ? nullptr : &own(fKept->fMetaclasses, aIndex - fFirstMetaclass);
  }
  AddedFeature* ownFeature(FeatureIndex aIndex) {
    return aIndex < fFirstFeature ? nullptr : &own(fKept->fFeatures, aIndex - fFirstFeature);
  }
  template <class Row>
  Row& own(std::vector<Row>& aRows, int aPlace) const {
    auto const place = static_cast<std::size_t>(aPlace);
    if (place >= aRows.size())
      refuse(std::string("A row of ") + fKept->fName +
             " names one of another extension, which has not joined");
    return aRows[place];
  }
  char const* nameOf(int aMetaclass) const {
    auto const* const own = ownMetaclass(aMetaclass);
    return own != nullptr ? own->fName : engine::metaclass(aMetaclass).fName;
  }
  std::string nameOf(int aOwner, std::string_view aFeature) const {
    return std::string(nameOf(aOwner)) + "." + std::string(aFeature);
  }
  bool conforms(int aMetaclass, int aGeneral) const {
    auto const* const own = ownMetaclass(aMetaclass);
    if (own == nullptr) return engine::conforms(aMetaclass, aGeneral);
    return aMetaclass == aGeneral ||
           std::ranges::any_of(own->fSupers, [&](int aSuper) { return conforms(aSuper, aGeneral); });
  }
  /// The owner of a feature of the metaclass with this name, or -1.
  int declaring(int aMetaclass, std::string_view aName) const {
    for (AddedFeature const& feature : fKept->fFeatures)
      if (feature.fRow.fName == aName && conforms(aMetaclass, feature.fOwner)) return feature.fOwner;
    if (auto const* const own = ownMetaclass(aMetaclass)) {
      for (int const super : own->fSupers)
        if (int const found = declaring(super, aName); found >= 0) return found;
      return -1;
    }
    for (FeatureIndex const index : engine::metaclass(aMetaclass).fVisible)
      if (engine::feature(index).fName == aName) return engine::feature(index).fOwner;
    return -1;
  }

  void checkBounds(std::string const& aName, FeatureRow const& aRow) const;
  void checkValue(std::string const& aName, catalogue::FeatureRow const& aRow) const;
  void checkWider(std::string const& aName, int aOwner, catalogue::Few const& aOthers) const;
};

MetamodelExtension::Metaclass::Metaclass(Kelm::ImmutableClass const& aClass)
    : fIndex(aClass ? reflection::metaclassIndex(*aClass.get()) : -1) {
  if (fIndex < 0) refuse("A row of an extension names a class that is none of the metamodel's");
}

MetamodelExtension::Feature::Feature(Kelm::ImmutableProperty const& aProperty) {
  int const index = aProperty ? reflection::featureIndex(*aProperty.get()) : -1;
  if (index < 0) refuse("A row of an extension names a property that is none of the metamodel's");
  fIndex = static_cast<std::uint16_t>(index);
}

MetamodelExtension::MetamodelExtension(std::string_view aName) : fRows(std::make_unique<Rows>(aName)) {}
MetamodelExtension::~MetamodelExtension() = default;

MetamodelExtension::Metaclass MetamodelExtension::addMetaclass(std::string_view aName,
                                                               std::vector<Metaclass> const& aSupers,
                                                               bool aIsAbstract) {
  auto& kept = fRows->open();
  std::string const name(aName);
  if (name.empty()) refuse("A metaclass of an extension needs a name");
  if (aSupers.empty()) refuse(name + " needs a metaclass above it; that of all elements will do");
  int const count = fRows->fFirstMetaclass + static_cast<int>(kept.fMetaclasses.size());
  for (int index = 0; index < count; ++index)
    if (name == fRows->nameOf(index)) refuse("There is a metaclass " + name + " already");
  catalogue::Few const supers = few(name, aSupers, [&](Metaclass const& aSuper) {
    fRows->ownMetaclass(aSuper.fIndex);  // raises for a stranger
    return aSuper.fIndex;
  });
  kept.fMetaclasses.push_back({.fName = kept.keep(name), .fAbstract = aIsAbstract, .fSupers = supers});
  return Metaclass(count);
}

void MetamodelExtension::Rows::checkBounds(std::string const& aName, FeatureRow const& aRow) const {
  bool const fits = aRow.fUpper == kUnlimited || (aRow.fUpper > 0 && aRow.fLower <= aRow.fUpper);
  if (!fits || aRow.fLower < 0 || aRow.fLower > kMostValues || aRow.fUpper > kMostValues)
    refuse(aName + " can't hold " + std::to_string(aRow.fLower) + ".." + std::to_string(aRow.fUpper) +
           " values; bounds are up to " + std::to_string(kMostValues) + ", or unlimited");
}

void MetamodelExtension::Rows::checkValue(std::string const& aName, catalogue::FeatureRow const& aRow) const {
  bool const isReference = aRow.fType.fKind == ValueType::Reference;
  if (!isReference && (aRow.fComposite || aRow.fUnion || !aRow.fSubsets.empty()))
    refuse(aName + " holds values: only features of elements own, unite or subset");
  bool const isListed =
      isReference || aRow.fType.fKind == ValueType::String || aRow.fType.fKind == ValueType::Boolean;
  if (aRow.fUpper != 1 && !isListed)
    refuse(aName + " holds many values: these are elements, texts or Booleans");
  bool const isNumber =
      aRow.fType.fKind == ValueType::Integer || aRow.fType.fKind == ValueType::UnlimitedNatural;
  if (isNumber && aRow.fUpper == 1 && (aRow.fLower == 0 || *aRow.fDefault != '\0'))
    refuse(aName + " holds a number, which is required and 0 at first");
  if (aRow.fType.fKind == ValueType::Boolean &&
      std::string_view("|true|false").find(aRow.fDefault) == std::string_view::npos)
    refuse(aName + " has the default " + aRow.fDefault + ", which is neither true nor false");
  if (aRow.fType.fKind != ValueType::Enumeration || *aRow.fDefault == '\0') return;
  auto const literals = catalogue::kLiterals[aRow.fType.fIndex];
  if (std::ranges::find(literals, std::string_view(aRow.fDefault)) == literals.end())
    refuse(aName + " has the default " + aRow.fDefault + ", which its enumeration has not");
}

/// What a feature subsets or redefines is another feature of elements that its owner has.
void MetamodelExtension::Rows::checkWider(std::string const& aName, int aOwner,
                                          catalogue::Few const& aOthers) const {
  for (FeatureIndex const index : aOthers) {
    auto* const own = const_cast<Rows*>(this)->ownFeature(index);
    int const owner = own != nullptr ? own->fOwner : engine::feature(index).fOwner;
    if (!conforms(aOwner, owner))
      refuse(aName + " subsets or redefines a feature of " + nameOf(owner) + ", which " + nameOf(aOwner) +
             " does not specialize");
  }
}

MetamodelExtension::Feature MetamodelExtension::addFeature(Metaclass aOwner, FeatureRow const& aRow) {
  auto& kept = fRows->open();
  std::string const name = fRows->nameOf(aOwner.fIndex, aRow.fName);
  if (aRow.fName.empty()) refuse("A feature of " + name + " needs a name");
  auto const number = static_cast<std::size_t>(fRows->fFirstFeature) + kept.fFeatures.size();
  if (number >= engine::kNoFeature) refuse("The metamodel has no room for " + name);
  if (aRow.fType.fDataType == nullptr) fRows->ownMetaclass(aRow.fType.fMetaclass);  // raises for a stranger
  fRows->checkBounds(name, aRow);
  auto const indexOf = [](Feature const& aFeature) { return aFeature.fIndex; };
  catalogue::FeatureRow row{.fName = kept.keep(aRow.fName), .fType = aRow.fType.fMetaclass};
  if (auto const* const type = aRow.fType.fDataType) {
    int const index = reflection::dataTypeIndex(*type, row.fType.fKind);
    if (index < 0) refuse(name + " has a type that is none of the metamodel's");
    row.fType.fIndex = static_cast<std::uint16_t>(index);
  }
  row.fLower = aRow.fLower;
  row.fUpper = aRow.fUpper;
  row.fComposite = aRow.fComposite;
  row.fOrdered = aRow.fOrdered;
  row.fUnion = row.fDerived = row.fReadOnly = aRow.fUnion;
  row.fDefault = kept.keep(aRow.fDefault);
  row.fSubsets = few(name, aRow.fSubsets, indexOf);
  row.fRedefines = few(name, aRow.fRedefines, indexOf);
  fRows->checkValue(name, row);
  fRows->checkWider(name, aOwner.fIndex, row.fSubsets);
  fRows->checkWider(name, aOwner.fIndex, row.fRedefines);
  if (int const owner = fRows->declaring(aOwner.fIndex, aRow.fName); owner >= 0 && row.fRedefines.empty())
    refuse(name + " has the name of a feature of " + fRows->nameOf(owner) +
           "; redefine that, or choose another");
  if (row.fComposite && row.fSubsets.empty() && row.fRedefines.empty())
    row.fSubsets.add(engine::kOwnedElements);
  kept.fFeatures.push_back({static_cast<std::uint16_t>(aOwner.fIndex), row});
  return Feature(static_cast<std::uint16_t>(number));
}

void MetamodelExtension::setOpposites(Feature aOne, Feature aOther) {
  fRows->open();
  AddedFeature* const ends[] = {fRows->ownFeature(aOne.fIndex), fRows->ownFeature(aOther.fIndex)};
  if (ends[0] == nullptr || ends[1] == nullptr || ends[0] == ends[1])
    refuse("Opposites are two features of the extension itself");
  for (int const end : {0, 1}) {
    catalogue::FeatureRow const& row = ends[end]->fRow;
    catalogue::FeatureRow const& far = ends[1 - end]->fRow;
    std::string const name = fRows->nameOf(ends[end]->fOwner, row.fName);
    if (row.fType.fKind != ValueType::Reference || row.fType.fIndex != ends[1 - end]->fOwner)
      refuse(name + " needs " + fRows->nameOf(ends[1 - end]->fOwner) +
             " for its type, which owns its opposite");
    if (row.fComposite && (far.fComposite || far.fUpper != 1))
      refuse(name + " owns its values, so its opposite holds one owner and is not composite");
    if (row.fOpposite != engine::kNoFeature) refuse(name + " has an opposite already");
  }
  ends[0]->fRow.fOpposite = aOther.fIndex;
  ends[1]->fRow.fOpposite = aOne.fIndex;
}

Kelm::ImmutablePackage MetamodelExtension::commit() {
  auto& kept = fRows->open();
  auto const features = engine::kFeatureCount + engine::records::sAddedFeatures.size();
  if (engine::metaclassCount() != fRows->fFirstMetaclass ||
      features != static_cast<std::size_t>(fRows->fFirstFeature))
    refuse(std::string("Another extension has joined since ") + kept.fName + " was begun; begin it again");
  auto const* const package = extension::join(fRows->fKept);
  fRows->fHasJoined = true;
  return Kelm::ImmutablePackage(package, Kelm::metaDeviant());
}

Kelm::ClassObject createElement(Kelm::Model const& aModel, Kelm::ImmutableClass const& aClass) {
  int const index = Kelm::ImmutableClass(aClass) ? reflection::metaclassIndex(*aClass.get()) : -1;
  if (index < 0) refuse("An element needs a metaclass of the metamodel");
  if (engine::metaclass(index).fAbstract)
    refuse(std::string(engine::metaclass(index).fName) + " is abstract and has no elements of its own");
  return Kelm::ClassObject(detail::createElement(index, aModel), aModel.getDeviant());
}

}  // namespace umlmm
