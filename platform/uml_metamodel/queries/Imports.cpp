#include "queries/Imports.h"

#include <algorithm>

#include "queries/ImportWalks.h"
#include "uml_metamodel/umlmm/VisibilityKind.h"

namespace umlmm::queries {

namespace {

/// Elements of one name, counted by metaclass.
class NameBucket {
 public:
  void add(int aMetaclass) {
    for (auto& [metaclass, count] : fCounts)
      if (metaclass == aMetaclass) return void(++count);
    fCounts.emplace_back(aMetaclass, 1);
  }
  /// Whether an element of the metaclass that is in the bucket collides with another one there.
  bool collides(int aMetaclass) const noexcept {
    return std::any_of(fCounts.begin(), fCounts.end(), [&](auto const& aCount) {
      return aCount.first == aMetaclass ? aCount.second > 1 : metaclassesCollide(aCount.first, aMetaclass);
    });
  }

 private:
  // Distinct metaclasses only, so that the list stays short.
  std::vector<std::pair<int, int>> fCounts;
};

}  // namespace

bool isPublicImport(Reading aImport) noexcept {
  auto const feature = aImport.isA(ids::metaclass::ElementImport) ? ids::ElementImport::Visibility
                                                                  : ids::PackageImport::Visibility;
  return aImport.literal(feature) == VisibilityKind::Public;
}

void Imports::Entry::addName(std::u16string_view aName) {
  if (aName.empty() || aName == fName) return;
  if (fName.empty()) {
    fName = aName;
  } else if (std::find(fMoreNames.begin(), fMoreNames.end(), aName) == fMoreNames.end()) {
    fMoreNames.push_back(aName);
  }
}

Imports::Entry& ImportEntries::entryFor(Reading aElement, bool aIsPublic) {
  if (fSeen.insert(*aElement)) {
    bool const isOwned = namespaceOf(aElement) == fNamespace;
    fEntries.push_back(
        {aElement.element(), isOwned ? nameOf(aElement) : std::u16string_view(), {}, aIsPublic, isOwned});
    if (!fPlaces.empty()) fPlaces.emplace(aElement.element(), fEntries.size() - 1);
    return fEntries.back();
  }
  if (fPlaces.empty())
    for (std::size_t at = 0; at < fEntries.size(); ++at) fPlaces.emplace(fEntries[at].fElement, at);
  Imports::Entry& entry = fEntries[fPlaces.at(aElement.element())];
  entry.fIsPublic |= aIsPublic;
  return entry;
}

void ImportEntries::addElementImport(Reading aImport, Reading aElement) {
  Imports::Entry& entry = entryFor(aElement, isPublicImport(aImport));
  if (namespaceOf(aElement) == fNamespace) return;
  entry.fHasFixedNames = true;
  entry.addName(importName(aImport));
}

void ImportEntries::addShown(Imports::Entry const& aShown, bool aIsPublic) {
  Imports::Entry& entry = entryFor(fNamespace.on(*aShown.fElement), aIsPublic);
  if (entry.fHasFixedNames) return;
  aShown.forEachName([&](std::u16string_view aName) { entry.addName(aName); });
}

void ImportEntries::judgeCollisions() {
  std::unordered_map<std::u16string_view, NameBucket> buckets;
  buckets.reserve(fEntries.size());
  for (Imports::Entry const& entry : fEntries)
    entry.forEachName(
        [&](std::u16string_view aName) { buckets[aName].add(engine::metaclassOf(*entry.fElement)); });
  for (Element* const owned : ownedMembers(fNamespace)) {
    if (fSeen.contains(*owned)) continue;
    if (auto const bucket = buckets.find(nameOf(fNamespace.on(*owned))); bucket != buckets.end())
      bucket->second.add(engine::metaclassOf(*owned));
  }
  for (Imports::Entry& entry : fEntries)
    entry.forEachName([&](std::u16string_view aName) {
      if (buckets.at(aName).collides(engine::metaclassOf(*entry.fElement))) entry.fIsKept = false;
    });
}

Imports::Imports(Reading aNamespace) {
  if (aNamespace.entries(ids::Namespace::ElementImport).empty() &&
      aNamespace.entries(ids::Namespace::PackageImport).empty())
    return;
  auto [entries, entangled] = followAtOnce(aNamespace);
  fEntries = std::move(entries);
  if (entangled.empty()) return;
  std::unordered_map<Element const*, Entry> arrived;
  for (Entry& entry : followEachPackage(aNamespace, entangled))
    arrived.emplace(entry.fElement, std::move(entry));
  std::erase_if(fEntries, [&](Entry& aEntry) {
    if (!entangled.contains(aEntry.fElement)) return false;
    auto const found = arrived.find(aEntry.fElement);
    if (found != arrived.end()) aEntry = std::move(found->second);
    return found == arrived.end();
  });
}

Imports::Entry const* Imports::find(Element const& aElement) const {
  if (fEntries.empty()) return nullptr;
  if (fPlaces.empty())
    for (std::size_t at = 0; at < fEntries.size(); ++at) fPlaces.emplace(fEntries[at].fElement, at);
  auto const place = fPlaces.find(&aElement);
  return place == fPlaces.end() ? nullptr : &fEntries[place->second];
}

Names Imports::namesOf(Element const& aElement) const {
  Names names;
  if (Entry const* const entry = find(aElement))
    entry->forEachName([&](std::u16string_view aName) { names.push_back(aName); });
  return names;
}

}  // namespace umlmm::queries
