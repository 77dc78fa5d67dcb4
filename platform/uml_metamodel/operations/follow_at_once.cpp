#include <unordered_map>

#include "operations/ImportWalks.h"

namespace umlmm::queries {

namespace {

/// One walk over a namespace and the packages that it reaches, nearest path first.
class WholeWalk {
 public:
  explicit WholeWalk(Element const& aNamespace) : fNamespace(aNamespace), fEntries(aNamespace) {}

  bool run() {
    fPackages.insert(fNamespace);
    if (!noteOwned(fNamespace) || !addElementImports(fNamespace, false)) return false;
    if (!hasOneVisibility()) return false;
    open(fNamespace);
    while (!fOpen.empty()) {
      Frame& top = fOpen.back();
      if (top.fNext == top.fEnd) {
        fOpen.pop_back();
        continue;
      }
      Element const* const import = *top.fNext++;
      bool const isRoot = fOpen.size() == 1;
      if (import == nullptr || !(isRoot || isPublicImport(*import))) continue;
      Element const* const package = values::reference(*import, ids::PackageImport::ImportedPackage);
      if (package != nullptr && fPackages.insert(*package) && !enter(*package)) return false;
    }
    return true;
  }

  std::vector<Imports::Entry> take() noexcept { return fEntries.take(); }

 private:
  struct Frame {
    Element* const* fNext;
    Element* const* fEnd;
  };

  void open(Element const& aNamespace) {
    auto const imports = values::entries(aNamespace, ids::Namespace::PackageImport);
    fOpen.push_back({imports.data(), imports.data() + imports.size()});
  }

  /// The imports of packages are all public or all not, so that what they bring in is, too.
  bool hasOneVisibility() {
    bool isFirst = true;
    for (Element* const import : values::elements(fNamespace, ids::Namespace::PackageImport)) {
      bool const isPublic = isPublicImport(*import);
      if (!isFirst && isPublic != fIsPublic) return false;
      fIsPublic = isPublic;
      isFirst = false;
    }
    return true;
  }

  bool enter(Element const& aPackage) {
    if (!noteOwned(aPackage)) return false;
    for (Element* const owned : ownedMembers(aPackage))
      if (isA(*owned, ids::metaclass::PackageableElement) && isPublicOrAbsent(*owned)) show(*owned);
    if (!addElementImports(aPackage, true)) return false;
    open(aPackage);
    return true;
  }

  void show(Element& aElement) {
    fEntries.addShown({&aElement, nameOf(aElement), {}, fIsPublic, false}, fIsPublic);
  }

  bool addElementImports(Element const& aNamespace, bool aOnlyPublic) {
    for (Element* const import : values::elements(aNamespace, ids::Namespace::ElementImport)) {
      Element* const element = values::reference(*import, ids::ElementImport::ImportedElement);
      if (element == nullptr) continue;
      if (namespaceOf(*element) == &aNamespace || importName(*import) != nameOf(*element)) return false;
      if (!noteName(*element)) return false;
      if (!aOnlyPublic) {
        fEntries.addElementImport(*import, *element);
      } else if (isPublicImport(*import)) {
        show(*element);
      }
    }
    return true;
  }

  bool noteOwned(Element const& aNamespace) {
    for (Element* const owned : ownedMembers(aNamespace))
      if (!noteName(*owned)) return false;
    return true;
  }

  /// False if another element in reach has the name and is of a metaclass that may collide with this one's.
  bool noteName(Element const& aElement) {
    std::u16string_view const name = nameOf(aElement);
    if (name.empty() || isA(aElement, ids::metaclass::BehavioralFeature) || !fNamed.insert(aElement))
      return true;
    int const metaclass = engine::metaclassOf(aElement);
    auto const [place, isNew] = fMetaclassOfName.emplace(name, metaclass);
    return isNew;
  }

  Element const& fNamespace;
  ImportEntries fEntries;
  std::vector<Frame> fOpen;
  Visited fPackages;
  Visited fNamed;
  std::unordered_map<std::u16string_view, int> fMetaclassOfName;
  bool fIsPublic = false;
};

}  // namespace

std::optional<std::vector<Imports::Entry>> followAtOnce(Element const& aNamespace) {
  WholeWalk walk(aNamespace);
  if (!walk.run()) return std::nullopt;
  return walk.take();
}

}  // namespace umlmm::queries
