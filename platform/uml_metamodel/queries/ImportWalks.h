#pragma once

#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "queries/Imports.h"

/// Two ways to follow imports.
namespace umlmm::queries {

/// The entries of one namespace as they come in, each element once.
class ImportEntries {
 public:
  explicit ImportEntries(Reading aNamespace) noexcept : fNamespace(aNamespace) {}

  /// To be called before `addShown`: names that element imports give come before those of packages.
  void addElementImport(Reading aImport, Reading aElement);
  /// What an imported package makes visible; `aIsPublic` for a public import.
  void addShown(Imports::Entry const& aShown, bool aIsPublic);
  /// Marks the entries that collide with each other or with owned members. Once, when all are in.
  void judgeCollisions();

  std::vector<Imports::Entry> take() noexcept { return std::move(fEntries); }
  bool empty() const noexcept { return fEntries.empty(); }

 private:
  Imports::Entry& entryFor(Reading aElement, bool aIsPublic);

  Reading fNamespace;
  std::vector<Imports::Entry> fEntries;
  Visited fSeen;
  /// Made when an element comes for the second time.
  std::unordered_map<Element const*, std::size_t> fPlaces;
};

struct ImportsInReach {
  std::vector<Imports::Entry> fEntries;
  /// Of these it depends on the way what arrives: another element in reach has the same name, or a
  /// package renames them. Their entries are not right.
  std::unordered_set<Element const*> fEntangled;
};

/// One walk over all packages in reach: its time grows with what is reached, however often packages import
/// each other.
ImportsInReach followAtOnce(Reading aNamespace);

/// The general way, for some elements in reach: package by package, innermost first, with collisions judged
/// in each. Its time grows with the packages times these elements.
std::vector<Imports::Entry> followEachPackage(Reading aNamespace,
                                              std::unordered_set<Element const*> const& aElements);

/// Of an element import or a package import; one without visibility is not public.
bool isPublicImport(Reading aImport) noexcept;

}  // namespace umlmm::queries
