#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "engine/ids.h"
#include "queries/walks.h"
#include "uml_metamodel/umlmm/VisibilityKind.h"

/// The queries of the metamodel, for the members of the interface classes and for the derivations of computed
/// features. They change nothing and answer in the variant of the first element, on whose metaclass they
/// dispatch; it must have the query. An argument that stands for no element is no error. Results hold each
/// element once.
namespace umlmm::queries {

using engine::Element;
using Names = std::vector<std::u16string_view>;

/// Stands between the names of a qualified name.
inline constexpr std::u16string_view kSeparator = u"::";

inline constexpr Step kToGeneral{ids::Classifier::Generalization, ids::Generalization::General};
inline constexpr Step kToIncluded{ids::UseCase::Include, ids::Include::Addition};

// Ownership.

/// The nearest container of a metaclass, or none.
Reading nearestOwner(Reading aElement, int aMetaclass) noexcept;
Elements allOwnedElements(Reading aElement);
bool mustBeOwned(Reading aElement) noexcept;
Elements allOwningPackages(Reading aElement);

// Names and namespaces.

/// The container if it holds the element among its owned members, else none.
inline Reading namespaceOf(Reading aElement) noexcept {
  Reading const owner = aElement.owner();
  if (!owner) return owner;
  return engine::feature(aElement.containment()).fGivesNamespace ? owner : aElement.none();
}
inline std::u16string_view nameOf(Reading aNamed) noexcept { return aNamed.text(ids::NamedElement::Name); }
Elements allNamespaces(Reading aNamed);
/// A new text with one count, or null when the element or a namespace around it has no name.
Kelm::StringObject* qualifiedName(Reading aNamed);
Elements ownedMembers(Reading aNamespace);
Elements members(Reading aNamespace);
Names namesOfMember(Reading aNamespace, Reading aMember);
bool isDistinguishableFrom(Reading aNamed, Reading aOther, Reading aNamespace);
bool membersAreDistinguishable(Reading aNamespace);
/// Whether elements of the two metaclasses with a name in common collide.
bool metaclassesCollide(int aLeft, int aRight) noexcept;

// Visibility and imports.

inline bool isPrivate(Reading aNamed) noexcept {
  return aNamed.literal(ids::NamedElement::Visibility) == VisibilityKind::Private;
}
bool isPublicOrAbsent(Reading aNamed) noexcept;
/// The name that an element import gives to what it imports; empty for none.
std::u16string_view importName(Reading aElementImport) noexcept;
Elements importedMembers(Reading aNamespace);
Elements importMembers(Reading aNamespace, Reading aCandidate);
Elements visibleMembers(Reading aPackage);
bool makesVisible(Reading aPackage, Reading aMember);

// Classifiers.

Elements parents(Reading aClassifier);
Elements allParents(Reading aClassifier);
bool hasAncestor(Reading aClassifier, Reading aAncestor);
/// The classifier and all its parents.
Elements withAllParents(Reading aClassifier);
bool conformsTo(Reading aType, Reading aOther);
Elements inheritedMembers(Reading aClassifier);
Elements inheritableMembers(Reading aClassifier, Reading aHeir);
bool hasVisibilityOf(Reading aClassifier, Reading aMember);
Elements inherit(Reading aClassifier, Elements const& aCandidates);
Elements allIncludedUseCases(Reading aUseCase);

// Multiplicities and values.

/// The whole number that a value gives to a lower bound, if it gives one; no value gives none.
std::optional<std::int32_t> integerOf(Reading aValue) noexcept;
/// The same for an upper bound; all bits set for unlimited.
std::optional<std::uint32_t> unlimitedOf(Reading aValue) noexcept;
std::int32_t lowerBound(Reading aMultiplicity) noexcept;
std::uint32_t upperBound(Reading aMultiplicity) noexcept;
bool includesCardinality(Reading aMultiplicity, std::int32_t aCardinality) noexcept;
bool includesMultiplicity(Reading aMultiplicity, Reading aOther) noexcept;
bool isCompatibleWith(Reading aMultiplicity, Reading aOther) noexcept;

// Redefinition.

bool isRedefinitionContextValid(Reading aElement, Reading aRedefined);
bool isConsistentWith(Reading aElement, Reading aRedefinee);

// Properties, operations and associations.

/// Whether a classifier holds the property among its attributes.
bool isAttribute(Reading aProperty) noexcept;
bool isNavigable(Reading aProperty);
bool isOwnedByAssociation(Reading aProperty) noexcept;
/// The other end of a binary association that owns neither end, or none.
Reading opposite(Reading aProperty);
Elements subsettingContext(Reading aProperty);
/// The first parameter of a list with direction Return, or none.
Reading returnParameter(Reading aOwner, engine::FeatureIndex aParameters);
Elements returnResult(Reading aOperation);
Elements allConnections(Reading aAssociationClass);
Reading metaclassEnd(Reading aExtension);
Reading linkedAssociation(Reading aLinkAction);

// Components.

/// The interfaces that are suppliers of the classifier's client dependencies of a metaclass.
Elements suppliedInterfaces(Reading aClassifier, int aDependency);
Elements realizedInterfaces(Reading aClassifier);
Elements usedInterfaces(Reading aClassifier);

}  // namespace umlmm::queries
