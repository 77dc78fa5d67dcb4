#include "operations/Imports.h"
#include "operations/queries.h"
#include "operations/results.h"
#include "uml_metamodel/umlmm/ElementImport.h"
#include "uml_metamodel/umlmm/NamedElement.h"
#include "uml_metamodel/umlmm/Package.h"
#include "uml_metamodel/umlmm/PackageableElement.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/packages";

}  // namespace

namespace queries {

bool isPublicOrAbsent(Element const& aNamed) noexcept {
  int const visibility = values::literal(aNamed, ids::NamedElement::Visibility);
  return visibility < 0 || visibility == VisibilityKind::Public;
}

std::u16string_view importName(Element const& aElementImport) noexcept {
  std::u16string_view const alias = values::text(aElementImport, ids::ElementImport::Alias);
  if (!alias.empty()) return alias;
  Element const* const imported = values::reference(aElementImport, ids::ElementImport::ImportedElement);
  return imported == nullptr ? std::u16string_view() : nameOf(*imported);
}

Elements importedMembers(Element const& aNamespace) {
  Elements found;
  Imports const imports(aNamespace);
  for (Imports::Entry const& entry : imports.entries())
    if (entry.fIsKept) found.push_back(entry.fElement);
  return found;
}

Elements importMembers(Element const& aNamespace, Element const* aCandidate) {
  if (aCandidate == nullptr) return {};
  int const metaclass = engine::metaclassOf(*aCandidate);
  Elements const result{const_cast<Element*>(aCandidate)};
  for (std::u16string_view const name : namesOfMember(aNamespace, aCandidate))
    for (Element* const owned : ownedMembers(aNamespace))
      if (owned != aCandidate && nameOf(*owned) == name &&
          metaclassesCollide(metaclass, engine::metaclassOf(*owned)))
        return {};
  return result;
}

Elements visibleMembers(Element const& aPackage) {
  Imports const imports(aPackage);
  Elements visible;
  for (Element* const owned : ownedMembers(aPackage)) {
    if (!isA(*owned, ids::metaclass::PackageableElement)) continue;
    Imports::Entry const* const entry = isPublicOrAbsent(*owned) ? nullptr : imports.find(*owned);
    if (isPublicOrAbsent(*owned) || (entry != nullptr && entry->fIsPublic)) visible.push_back(owned);
  }
  for (Imports::Entry const& entry : imports.entries())
    if (entry.fIsKept && entry.fIsPublic && namespaceOf(*entry.fElement) != &aPackage)
      visible.push_back(entry.fElement);
  return visible;
}

bool makesVisible(Element const& aPackage, Element const* aMember) {
  if (aMember == nullptr) return false;
  if (namespaceOf(*aMember) == &aPackage && isPublicOrAbsent(*aMember)) return true;
  Imports const imports(aPackage);
  Imports::Entry const* const entry = imports.find(*aMember);
  return entry != nullptr && entry->fIsPublic;
}

}  // namespace queries

namespace NSInterface {

String ElementImportIntf::getName(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::makeText(queries::importName(*this));
}

Kelm::ImmutableSequence<ImmutablePackageableElement> PackageIntf::visibleMembers(
    Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::makeResult<ImmutablePackageableElement>(aDeviant, queries::visibleMembers(*this));
}

Boolean PackageIntf::makesVisible(Kelm::Deviant const& aDeviant, ImmutableNamedElement const& aEl) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::makesVisible(*this, queries::given(aEl));
}

}  // namespace NSInterface

}  // namespace umlmm
