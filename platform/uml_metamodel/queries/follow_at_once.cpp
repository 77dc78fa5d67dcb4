#include <unordered_map>

#include "queries/ImportWalks.h"

namespace umlmm::queries {

namespace {

/// One walk over a namespace and the packages that it reaches, nearest path first.
class WholeWalk {
 public:
  explicit WholeWalk(Reading aNamespace) : fNamespace(aNamespace), fEntries(aNamespace) {}

  ImportsInReach run() {
    noteNames(fNamespace);
    for (Reading const import : fNamespace.list(ids::Namespace::ElementImport))
      if (Reading const element = importedBy(import)) fEntries.addElementImport(import, element);
    forEachPackage(Reach::Public, fPublicPackages, [](Reading) {});
    forEachPackage(Reach::Visible, fPackages, [this](Reading aPackage) { enter(aPackage); });
    Visited all;
    forEachPackage(Reach::All, all, [this](Reading aPackage) { noteNames(aPackage); });
    return {fEntries.take(), std::move(fEntangled)};
  }

 private:
  struct Frame {
    Element* const* fNext;
    Element* const* fEnd;
  };

  /// What is in reach: by public imports, by any of the namespace and public ones from there, by any import.
  enum class Reach { Public, Visible, All };

  /// Packages in reach of the namespace, each once.
  template <class Enter>
  void forEachPackage(Reach aReach, Visited& aSeen, Enter aEnter) {
    std::vector<Frame> open;
    auto const follow = [&](Reading aImporting) {
      auto const imports = aImporting.entries(ids::Namespace::PackageImport);
      open.push_back({imports.data(), imports.data() + imports.size()});
    };
    aSeen.insert(*fNamespace);
    follow(fNamespace);
    while (!open.empty()) {
      Frame& top = open.back();
      if (top.fNext == top.fEnd) {
        open.pop_back();
        continue;
      }
      Reading const import = fNamespace.on(*top.fNext++);
      bool const isOpen = aReach == Reach::All || (aReach == Reach::Visible && open.size() == 1);
      if (!import || !(isOpen || isPublicImport(import))) continue;
      Reading const package = import.reference(ids::PackageImport::ImportedPackage);
      if (!package || !aSeen.insert(*package)) continue;
      aEnter(package);
      follow(package);
    }
  }

  void enter(Reading aPackage) {
    bool const isPublic = fPublicPackages.contains(*aPackage);
    auto const show = [&](Reading aElement) {
      fEntries.addShown({aElement.element(), nameOf(aElement), {}, isPublic, false}, isPublic);
    };
    for (Element* const member : ownedMembers(aPackage))
      if (Reading const owned = aPackage.on(*member);
          owned.isA(ids::metaclass::PackageableElement) && isPublicOrAbsent(owned))
        show(owned);
    for (Reading const import : aPackage.list(ids::Namespace::ElementImport))
      if (Reading const element = importedBy(import); element && isPublicImport(import)) show(element);
  }

  static Reading importedBy(Reading aImport) noexcept {
    return aImport.reference(ids::ElementImport::ImportedElement);
  }

  /// The names that elements have in a namespace by itself.
  void noteNames(Reading aNamespace) {
    for (Element* const member : ownedMembers(aNamespace)) {
      Reading const owned = aNamespace.on(*member);
      noteName(owned, nameOf(owned));
    }
    for (Reading const import : aNamespace.list(ids::Namespace::ElementImport)) {
      Reading const element = importedBy(import);
      if (!element) continue;
      noteName(element, nameOf(element));
      noteName(element, importName(import));
      // A name of its own in a package hides, or is hidden, on some of the ways.
      bool const isRenamed = aNamespace != fNamespace && importName(import) != nameOf(element);
      if (isRenamed || namespaceOf(element) == aNamespace) fEntangled.insert(element.element());
    }
  }

  /// Elements in reach of one name may collide somewhere on the way.
  void noteName(Reading aElement, std::u16string_view aName) {
    if (aName.empty() || aElement.isA(ids::metaclass::BehavioralFeature)) return;
    auto const [place, isNew] = fElementOfName.try_emplace(aName, aElement.element());
    if (isNew || place->second == aElement.element()) return;
    fEntangled.insert(aElement.element());
    fEntangled.insert(place->second);
  }

  Reading fNamespace;
  ImportEntries fEntries;
  Visited fPackages;
  Visited fPublicPackages;
  std::unordered_map<std::u16string_view, Element const*> fElementOfName;
  std::unordered_set<Element const*> fEntangled;
};

}  // namespace

ImportsInReach followAtOnce(Reading aNamespace) { return WholeWalk(aNamespace).run(); }

}  // namespace umlmm::queries
