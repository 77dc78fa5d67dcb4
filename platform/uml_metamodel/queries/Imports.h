#pragma once

#include <unordered_map>
#include <vector>

#include "queries/queries.h"

namespace umlmm::queries {

/// What a namespace gets through its imports: the elements of its element imports in order, then those that
/// the packages of its package imports make visible, each once, under the names that the namespace has for
/// them.
///
/// Collisions are judged in each package on the way, so a package further off may lose an element before it
/// gets here. A package whose imports are being followed adds nothing to those who are asked by it, so cycles
/// end. Clause 7.4 of UML 2.5.1 tells what is imported and what collides.
///
/// All is found when the object is made, with names that are views of the model's texts; it counts nothing
/// and is good until the model changes.
class Imports {
 public:
  struct Entry {
    Element* fElement;
    /// Empty if the namespace has no name for it.
    std::u16string_view fName;
    /// Names beside the first, where aliases or several ways give more than one.
    Names fMoreNames;
    /// Imported publicly in one way at least.
    bool fIsPublic;
    /// The names are those of element imports or its own, which those of package imports do not add to.
    bool fHasFixedNames;
    /// Distinguishable from all other entries and from all owned members.
    bool fIsKept = true;

    void addName(std::u16string_view aName);
    template <class Visit>
    void forEachName(Visit aVisit) const {
      if (!fName.empty()) aVisit(fName);
      for (std::u16string_view const name : fMoreNames) aVisit(name);
    }
  };

  explicit Imports(Reading aNamespace);

  /// Those that collide, and so are no members, are among them (`fIsKept`).
  std::vector<Entry> const& entries() const noexcept { return fEntries; }
  /// The entry of an element, or null.
  Entry const* find(Element const& aElement) const;
  /// Names of an element that is no owned member; none if it is not imported.
  Names namesOf(Element const& aElement) const;

 private:
  std::vector<Entry> fEntries;
  /// Made when first asked.
  mutable std::unordered_map<Element const*, std::size_t> fPlaces;
};

}  // namespace umlmm::queries
