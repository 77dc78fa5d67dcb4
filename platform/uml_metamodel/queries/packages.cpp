#include "queries/Imports.h"
#include "queries/queries.h"

namespace umlmm::queries {

bool isPublicOrAbsent(Reading aNamed) noexcept {
  int const visibility = aNamed.literal(ids::NamedElement::Visibility);
  return visibility < 0 || visibility == VisibilityKind::Public;
}

std::u16string_view importName(Reading aElementImport) noexcept {
  std::u16string_view const alias = aElementImport.text(ids::ElementImport::Alias);
  if (!alias.empty()) return alias;
  Reading const imported = aElementImport.reference(ids::ElementImport::ImportedElement);
  return imported ? nameOf(imported) : std::u16string_view();
}

Elements importedMembers(Reading aNamespace) {
  Elements found;
  Imports const imports(aNamespace);
  for (Imports::Entry const& entry : imports.entries())
    if (entry.fIsKept) found.push_back(entry.fElement);
  return found;
}

Elements importMembers(Reading aNamespace, Reading aCandidate) {
  if (!aCandidate) return {};
  int const metaclass = aCandidate.metaclass();
  Elements const result{aCandidate.element()};
  for (std::u16string_view const name : namesOfMember(aNamespace, aCandidate))
    for (Element* const member : ownedMembers(aNamespace))
      if (Reading const owned = aNamespace.on(*member);
          owned != aCandidate && nameOf(owned) == name && metaclassesCollide(metaclass, owned.metaclass()))
        return {};
  return result;
}

Elements visibleMembers(Reading aPackage) {
  Imports const imports(aPackage);
  Elements visible;
  for (Element* const member : ownedMembers(aPackage)) {
    Reading const owned = aPackage.on(*member);
    if (!owned.isA(ids::metaclass::PackageableElement)) continue;
    Imports::Entry const* const entry = isPublicOrAbsent(owned) ? nullptr : imports.find(*owned);
    if (isPublicOrAbsent(owned) || (entry != nullptr && entry->fIsPublic)) visible.push_back(member);
  }
  for (Imports::Entry const& entry : imports.entries())
    if (entry.fIsKept && entry.fIsPublic && namespaceOf(aPackage.on(*entry.fElement)) != aPackage)
      visible.push_back(entry.fElement);
  return visible;
}

bool makesVisible(Reading aPackage, Reading aMember) {
  if (!aMember) return false;
  if (namespaceOf(aMember) == aPackage && isPublicOrAbsent(aMember)) return true;
  Imports const imports(aPackage);
  Imports::Entry const* const entry = imports.find(*aMember);
  return entry != nullptr && entry->fIsPublic;
}

}  // namespace umlmm::queries
