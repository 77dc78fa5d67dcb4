#include <set>

#include "queries/ImportWalks.h"

namespace umlmm::queries {

namespace {

/// Where packages in progress stand in the stack.
using Places = std::set<std::size_t>;

/// Follows the imports of packages with a stack of those in progress. What a package shows is kept for those
/// who ask again. Where a package in progress had been left out, the answer is kept only as long as that one
/// is in progress.
class PackageWalk {
 public:
  explicit PackageWalk(std::unordered_set<Element const*> const& aElements) noexcept : fElements(aElements) {}

  std::vector<Imports::Entry> run(Reading aNamespace) {
    begin(aNamespace);
    for (;;) {
      Frame& top = fOpen.back();
      if (Reading const package = nextPackage(top)) {
        descend(package);
      } else if (fOpen.size() == 1) {
        return entriesOf(top).take();
      } else {
        finish();
      }
    }
  }

 private:
  struct Frame {
    Reading fNamespace;
    Element* const* fNext;
    Element* const* fEnd;
    /// The packages in progress that were left out below here.
    Places fCuts;
    /// Whose answers depend on this one being in progress.
    std::vector<Element const*> fDependents;
  };
  using Shown = std::vector<Imports::Entry>;
  struct Answer {
    std::unique_ptr<Shown> fShown;
    Places fCuts;
  };

  void begin(Reading aNamespace) {
    auto const imports = aNamespace.entries(ids::Namespace::PackageImport);
    fPlaces.emplace(aNamespace.element(), fOpen.size());
    fOpen.push_back({aNamespace, imports.data(), imports.data() + imports.size(), {}, {}});
  }

  static Reading nextPackage(Frame& aFrame) noexcept {
    while (aFrame.fNext != aFrame.fEnd)
      if (Reading const import = aFrame.fNamespace.on(*aFrame.fNext++))
        if (Reading const package = import.reference(ids::PackageImport::ImportedPackage)) return package;
    return {};
  }

  void descend(Reading aPackage) {
    if (auto const place = fPlaces.find(aPackage.element()); place != fPlaces.end()) {
      fOpen.back().fCuts.insert(place->second);
    } else if (auto const answer = fAnswers.find(aPackage.element()); answer != fAnswers.end()) {
      fOpen.back().fCuts.insert(answer->second.fCuts.begin(), answer->second.fCuts.end());
    } else {
      begin(aPackage);
    }
  }

  void finish() {
    std::size_t const place = fOpen.size() - 1;
    Frame& top = fOpen.back();
    auto shown = std::make_unique<Shown>(shownBy(top));
    // What left out nothing but the package itself is the same wherever it is asked.
    Places cuts = std::move(top.fCuts);
    cuts.erase(place);
    for (Element const* const dependent : top.fDependents) fAnswers.erase(dependent);
    Element const* const package = top.fNamespace.element();
    fPlaces.erase(package);
    fOpen.pop_back();
    fOpen.back().fCuts.insert(cuts.begin(), cuts.end());
    if (!cuts.empty()) fOpen[*cuts.rbegin()].fDependents.push_back(package);
    fAnswers[package] = {std::move(shown), std::move(cuts)};
  }

  /// The entries of a namespace whose packages have all been followed.
  ImportEntries& entriesOf(Frame const& aFrame) {
    Reading const owner = aFrame.fNamespace;
    fEntries = std::make_unique<ImportEntries>(owner);
    for (Reading const import : owner.list(ids::Namespace::ElementImport))
      if (Reading const element = import.reference(ids::ElementImport::ImportedElement);
          element && fElements.contains(element.element()))
        fEntries->addElementImport(import, element);
    for (Reading const import : owner.list(ids::Namespace::PackageImport)) {
      auto const answer = fAnswers.find(import.reference(ids::PackageImport::ImportedPackage).element());
      if (answer == fAnswers.end()) continue;
      bool const isPublic = isPublicImport(import);
      for (Imports::Entry const& shown : *answer->second.fShown) fEntries->addShown(shown, isPublic);
    }
    if (!fEntries->empty()) fEntries->judgeCollisions();
    return *fEntries;
  }

  /// What the package makes visible of its members: owned ones, then imported ones.
  Shown shownBy(Frame const& aFrame) {
    Reading const package = aFrame.fNamespace;
    Shown const entries = entriesOf(aFrame).take();
    Visited imported;
    for (Imports::Entry const& entry : entries)
      if (entry.fIsPublic) imported.insert(*entry.fElement);
    Shown shown;
    for (Element* const member : ownedMembers(package))
      if (Reading const owned = package.on(*member); fElements.contains(member) &&
                                                     owned.isA(ids::metaclass::PackageableElement) &&
                                                     (isPublicOrAbsent(owned) || imported.contains(*member)))
        shown.push_back({member, nameOf(owned), {}, true, false});
    for (Imports::Entry const& entry : entries)
      if (entry.fIsKept && entry.fIsPublic && namespaceOf(package.on(*entry.fElement)) != package)
        shown.push_back(entry);
    return shown;
  }

  std::unordered_set<Element const*> const& fElements;
  std::vector<Frame> fOpen;
  /// By package in progress: where it stands in the stack.
  std::unordered_map<Element const*, std::size_t> fPlaces;
  std::unordered_map<Element const*, Answer> fAnswers;
  std::unique_ptr<ImportEntries> fEntries;
};

}  // namespace

std::vector<Imports::Entry> followEachPackage(Reading aNamespace,
                                              std::unordered_set<Element const*> const& aElements) {
  return PackageWalk(aElements).run(aNamespace);
}

}  // namespace umlmm::queries
