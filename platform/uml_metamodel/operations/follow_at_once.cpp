#include <unordered_map>

#include "operations/ImportWalks.h"

namespace umlmm::queries {

namespace {

/// One walk over a namespace and the packages that it reaches, nearest path first.
class WholeWalk {
 public:
  explicit WholeWalk(Element const& aNamespace) : fNamespace(aNamespace), fEntries(aNamespace) {}

  ImportsInReach run() {
    noteNames(fNamespace);
    for (Element* const import : values::elements(fNamespace, ids::Namespace::ElementImport))
      if (Element* const element = importedBy(*import)) fEntries.addElementImport(*import, *element);
    forEachPackage(Reach::Public, fPublicPackages, [](Element const&) {});
    forEachPackage(Reach::Visible, fPackages, [this](Element const& aPackage) { enter(aPackage); });
    Visited all;
    forEachPackage(Reach::All, all, [this](Element const& aPackage) { noteNames(aPackage); });
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
    auto const follow = [&](Element const& aImporting) {
      auto const imports = values::entries(aImporting, ids::Namespace::PackageImport);
      open.push_back({imports.data(), imports.data() + imports.size()});
    };
    aSeen.insert(fNamespace);
    follow(fNamespace);
    while (!open.empty()) {
      Frame& top = open.back();
      if (top.fNext == top.fEnd) {
        open.pop_back();
        continue;
      }
      Element const* const import = *top.fNext++;
      bool const isOpen = aReach == Reach::All || (aReach == Reach::Visible && open.size() == 1);
      if (import == nullptr || !(isOpen || isPublicImport(*import))) continue;
      Element const* const package = values::reference(*import, ids::PackageImport::ImportedPackage);
      if (package == nullptr || !aSeen.insert(*package)) continue;
      aEnter(*package);
      follow(*package);
    }
  }

  void enter(Element const& aPackage) {
    bool const isPublic = fPublicPackages.contains(aPackage);
    auto const show = [&](Element& aElement) {
      fEntries.addShown({&aElement, nameOf(aElement), {}, isPublic, false}, isPublic);
    };
    for (Element* const owned : ownedMembers(aPackage))
      if (isA(*owned, ids::metaclass::PackageableElement) && isPublicOrAbsent(*owned)) show(*owned);
    for (Element* const import : values::elements(aPackage, ids::Namespace::ElementImport))
      if (Element* const element = importedBy(*import); element != nullptr && isPublicImport(*import))
        show(*element);
  }

  static Element* importedBy(Element const& aImport) noexcept {
    return values::reference(aImport, ids::ElementImport::ImportedElement);
  }

  /// The names that elements have in a namespace by itself.
  void noteNames(Element const& aNamespace) {
    for (Element* const owned : ownedMembers(aNamespace)) noteName(*owned, nameOf(*owned));
    for (Element* const import : values::elements(aNamespace, ids::Namespace::ElementImport)) {
      Element* const element = importedBy(*import);
      if (element == nullptr) continue;
      noteName(*element, nameOf(*element));
      noteName(*element, importName(*import));
      // A name of its own in a package hides, or is hidden, on some of the ways.
      bool const isRenamed = &aNamespace != &fNamespace && importName(*import) != nameOf(*element);
      if (isRenamed || namespaceOf(*element) == &aNamespace) fEntangled.insert(element);
    }
  }

  /// Elements in reach of one name may collide somewhere on the way.
  void noteName(Element const& aElement, std::u16string_view aName) {
    if (aName.empty() || isA(aElement, ids::metaclass::BehavioralFeature)) return;
    auto const [place, isNew] = fElementOfName.try_emplace(aName, &aElement);
    if (isNew || place->second == &aElement) return;
    fEntangled.insert(&aElement);
    fEntangled.insert(place->second);
  }

  Element const& fNamespace;
  ImportEntries fEntries;
  Visited fPackages;
  Visited fPublicPackages;
  std::unordered_map<std::u16string_view, Element const*> fElementOfName;
  std::unordered_set<Element const*> fEntangled;
};

}  // namespace

ImportsInReach followAtOnce(Element const& aNamespace) { return WholeWalk(aNamespace).run(); }

}  // namespace umlmm::queries
