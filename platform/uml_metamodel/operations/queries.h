#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "engine/ids.h"
#include "engine/slots.h"
#include "operations/walks.h"
#include "uml_metamodel/umlmm/VisibilityKind.h"

/// The queries of the metamodel on plain elements, for the members of the interface classes and for the rules
/// of computed features. They change nothing, ask for no variant, and dispatch on the metaclass of the first
/// element, which must have the query. A null argument is no error. Results hold each element once.
namespace umlmm::queries {

using engine::Element;
using Names = std::vector<std::u16string_view>;

inline bool isA(Element const& aElement, int aMetaclass) noexcept {
  return engine::isA(aElement, aMetaclass);
}

inline constexpr Step kToGeneral{ids::Classifier::Generalization, ids::Generalization::General};
inline constexpr Step kToIncluded{ids::UseCase::Include, ids::Include::Addition};

// Ownership.

/// The nearest container of a metaclass, or null.
Element* nearestOwner(Element const& aElement, int aMetaclass) noexcept;
Elements allOwnedElements(Element const& aElement);
bool mustBeOwned(Element const& aElement) noexcept;
Elements allOwningPackages(Element const& aElement);

// Names and namespaces.

/// The container if it holds the element among its owned members, else null.
inline Element* namespaceOf(Element const& aElement) noexcept {
  Element* const container = aElement.container();
  if (container == nullptr) return nullptr;
  return engine::feature(aElement.containerFeature()).fGivesNamespace ? container : nullptr;
}
inline std::u16string_view nameOf(Element const& aNamed) noexcept {
  return values::text(aNamed, ids::NamedElement::Name);
}
Elements allNamespaces(Element const& aNamed);
/// A new text with one count, or null when the element or a namespace around it has no name.
Kelm::StringObject* qualifiedName(Element const& aNamed);
Elements ownedMembers(Element const& aNamespace);
Elements members(Element const& aNamespace);
Names namesOfMember(Element const& aNamespace, Element const* aMember);
bool isDistinguishableFrom(Element const& aNamed, Element const* aOther, Element const* aNamespace);
bool membersAreDistinguishable(Element const& aNamespace);
/// Whether elements of the two metaclasses with a name in common collide.
bool metaclassesCollide(int aLeft, int aRight) noexcept;

// Visibility and imports.

inline bool isPrivate(Element const& aNamed) noexcept {
  return values::literal(aNamed, ids::NamedElement::Visibility) == VisibilityKind::Private;
}
bool isPublicOrAbsent(Element const& aNamed) noexcept;
/// The name that an element import gives to what it imports; empty for none.
std::u16string_view importName(Element const& aElementImport) noexcept;
Elements importedMembers(Element const& aNamespace);
Elements importMembers(Element const& aNamespace, Element const* aCandidate);
Elements visibleMembers(Element const& aPackage);
bool makesVisible(Element const& aPackage, Element const* aMember);

// Classifiers.

Elements parents(Element const& aClassifier);
Elements allParents(Element const& aClassifier);
bool hasAncestor(Element const& aClassifier, Element const& aAncestor);
/// The classifier and all its parents.
Elements withAllParents(Element& aClassifier);
bool conformsTo(Element const& aType, Element const* aOther);
Elements inheritedMembers(Element const& aClassifier);
Elements inheritableMembers(Element const& aClassifier, Element const* aHeir);
bool hasVisibilityOf(Element const& aClassifier, Element const* aMember);
Elements inherit(Element const& aClassifier, Elements const& aCandidates);
Elements allIncludedUseCases(Element const& aUseCase);

// Multiplicities and values.

/// The whole number that a value gives to a lower bound, if it gives one; null gives none.
std::optional<std::int32_t> integerOf(Element const* aValue) noexcept;
/// The same for an upper bound; all bits set for unlimited.
std::optional<std::uint32_t> unlimitedOf(Element const* aValue) noexcept;
std::int32_t lowerBound(Element const& aMultiplicity) noexcept;
std::uint32_t upperBound(Element const& aMultiplicity) noexcept;
bool includesMultiplicity(Element const& aMultiplicity, Element const* aOther) noexcept;

// Redefinition.

/// Whether the metaclass of an element has the union of redefined elements.
Elements redefinedElements(Element const& aElement);
bool isRedefinitionContextValid(Element const& aElement, Element const* aRedefined);
bool isConsistentWith(Element const& aElement, Element const* aRedefinee);

// Properties, operations and associations.

/// Whether a classifier holds the property among its attributes.
bool isAttribute(Element const& aProperty) noexcept;
bool isNavigable(Element const& aProperty);
bool isOwnedByAssociation(Element const& aProperty) noexcept;
/// The other end of a binary association that owns neither end, or null.
Element* opposite(Element const& aProperty);
Elements subsettingContext(Element const& aProperty);
/// The first parameter of a list with direction Return, or null.
Element* returnParameter(Element const& aOwner, engine::FeatureIndex aParameters);
Elements returnResult(Element const& aOperation);
Elements allConnections(Element const& aAssociationClass);
Element* metaclassEnd(Element const& aExtension);
Element* linkedAssociation(Element const& aLinkAction);

// Components.

/// The interfaces that are suppliers of the classifier's client dependencies of a metaclass.
Elements suppliedInterfaces(Element const* aClassifier, int aDependency);
Elements realizedInterfaces(Element const* aClassifier);
Elements usedInterfaces(Element const* aClassifier);

}  // namespace umlmm::queries
