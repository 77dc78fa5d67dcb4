#pragma once

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "operations/Imports.h"

/// Two ways to follow imports, which agree where both apply.
namespace umlmm::queries {

/// The entries of one namespace as they come in, each element once.
class ImportEntries {
 public:
  explicit ImportEntries(Element const& aNamespace) noexcept : fNamespace(aNamespace) {}

  void addElementImport(Element const& aImport, Element& aElement);
  void addShown(Imports::Entry const& aShown, bool aIsPublic);
  /// Marks the entries that collide with each other or with owned members.
  void judgeCollisions();

  std::vector<Imports::Entry> take() noexcept { return std::move(fEntries); }
  bool empty() const noexcept { return fEntries.empty(); }

 private:
  Imports::Entry& entryFor(Element& aElement, bool aIsPublic);

  Element const& fNamespace;
  std::vector<Imports::Entry> fEntries;
  Visited fSeen;
  /// Made when an element comes for the second time.
  std::unordered_map<Element const*, std::size_t> fPlaces;
};

/// The general way: package by package, innermost first, with collisions judged in each.
std::vector<Imports::Entry> followEachPackage(Element const& aNamespace);

/// One walk over all packages in reach: its time grows with what is reached, however often packages import
/// each other. Nothing where it does not apply: aliases, mixed visibilities, or two elements in reach with
/// one name.
std::optional<std::vector<Imports::Entry>> followAtOnce(Element const& aNamespace);

bool isPublicImport(Element const& aImport) noexcept;

}  // namespace umlmm::queries
