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
/// dispatch; it must have the query. Any other argument may stand for no element, of which nothing holds.
/// Results hold each element once, in the order of the features they come from, and count nothing: they are
/// good until the model changes.
///
/// Walks follow an element once, so models with cycles end, and use no stack that grows with them. They mark
/// elements as they go (`Visited`), so even two threads that only ask must not ask of one model at a time.
/// `std::bad_alloc` is all that they raise.
///
/// Clauses are those of UML 2.5.1; where versions of the standard differ, the queries follow earlier ones.
namespace umlmm::queries {

using engine::Element;
using Names = std::vector<std::u16string_view>;

/// Stands between the names of a qualified name.
inline constexpr std::u16string_view kSeparator = u"::";

inline constexpr Step kToGeneral{ids::Classifier::Generalization, ids::Generalization::General};
inline constexpr Step kToIncluded{ids::UseCase::Include, ids::Include::Addition};

// Ownership (clause 7.2).

/// The nearest container of a metaclass or one below it, or none.
Reading nearestOwner(Reading aElement, int aMetaclass) noexcept;
/// What the element owns, then for each of these in turn all that it owns.
Elements allOwnedElements(Reading aElement);
/// Not of packages. Nothing enforces it: an element may stand at the top level of its model.
bool mustBeOwned(Reading aElement) noexcept;
/// Nearest first; owners of other metaclasses are passed over.
Elements allOwningPackages(Reading aElement);

// Names and namespaces (clause 7.4). Names are views of texts that the model holds; an empty name is none.

/// The container if it holds the element among its owned members, else none.
inline Reading namespaceOf(Reading aElement) noexcept {
  Reading const owner = aElement.owner();
  if (!owner) return owner;
  return engine::feature(aElement.containment()).fGivesNamespace ? owner : aElement.none();
}
inline std::u16string_view nameOf(Reading aNamed) noexcept { return aNamed.text(ids::NamedElement::Name); }
/// Nearest first.
Elements allNamespaces(Reading aNamed);
/// A new text with one count, or null when the element or a namespace around it has no name.
Kelm::StringObject* qualifiedName(Reading aNamed);
Elements ownedMembers(Reading aNamespace);
/// Owned, imported and, in a classifier, inherited ones and whatever else its metaclass has for members.
Elements members(Reading aNamespace);
/// The name of an owned member; else those that element imports give; else those that imported packages have
/// for it. An inherited member that is not imported has none.
Names namesOfMember(Reading aNamespace, Reading aMember);
/// Whether the two can be told apart in the namespace: by metaclass or by name, behavioral features by the
/// types of their parameters also. True without another one or a namespace.
bool isDistinguishableFrom(Reading aNamed, Reading aOther, Reading aNamespace);
/// The same of each two members; takes time for the members, not for the pairs.
bool membersAreDistinguishable(Reading aNamespace);
/// Whether elements of the two metaclasses with a name in common collide.
bool metaclassesCollide(int aLeft, int aRight) noexcept;

// Visibility and imports (clause 7.4; of packages 12.2).

inline bool isPrivate(Reading aNamed) noexcept {
  return aNamed.literal(ids::NamedElement::Visibility) == VisibilityKind::Private;
}
bool isPublicOrAbsent(Reading aNamed) noexcept;
/// The name that an element import gives to what it imports; empty for none.
std::u16string_view importName(Reading aElementImport) noexcept;
/// Without those that collide with each other or with an owned member.
Elements importedMembers(Reading aNamespace);
/// The candidate, unless an owned member collides with it under the names that it has here already: one that
/// is not imported yet has none and passes.
Elements importMembers(Reading aNamespace, Reading aCandidate);
/// The packageable elements among the members that the package makes visible.
Elements visibleMembers(Reading aPackage);
/// Whether the package owns the member as a public one, which absent visibility counts for, or imports it
/// publicly, be it one that collides.
bool makesVisible(Reading aPackage, Reading aMember);

// Classifiers (clause 9.2; use cases 18).

/// The general classifiers of the generalizations that have one.
Elements parents(Reading aClassifier);
/// The parents, then for each of them in turn all its own; the classifier itself only where it stands on a
/// cycle.
Elements allParents(Reading aClassifier);
/// Of itself only on a cycle.
bool hasAncestor(Reading aClassifier, Reading aAncestor);
/// The classifier, then all its parents.
Elements withAllParents(Reading aClassifier);
/// To itself and to what is above it; a type that is no classifier conforms to nothing.
bool conformsTo(Reading aType, Reading aOther);
/// Members of the parents that are not private, without those that a class or data type on the way, be it
/// this one, redefines. Classifiers on one cycle inherit nothing from each other.
Elements inheritedMembers(Reading aClassifier);
/// What an heir may inherit: none unless it stands below the classifier, and not on a cycle with it.
Elements inheritableMembers(Reading aClassifier, Reading aHeir);
/// False for a private member of a classifier above, and for none; else true.
bool hasVisibilityOf(Reading aClassifier, Reading aMember);
/// The candidates that a class or data type does not redefine; all of them for other classifiers.
Elements inherit(Reading aClassifier, Elements const& aCandidates);
/// As `allParents`, along includes.
Elements allIncludedUseCases(Reading aUseCase);

// Multiplicities (clause 7.5) and values (8.2).

/// The whole number that a text is.
std::optional<std::int64_t> numberIn(std::u16string_view aText) noexcept;
/// The whole number that a value gives to a lower bound, if it gives one; no value gives none. Texts give
/// what they say, as tools write bounds as texts, too.
std::optional<std::int32_t> integerOf(Reading aValue) noexcept;
/// The same for an upper bound; all bits set for unlimited.
std::optional<std::uint32_t> unlimitedOf(Reading aValue) noexcept;
/// What the lower value gives; without that 1, or 0 for the end of an extension. The feature `lower` takes no
/// part.
std::int32_t lowerBound(Reading aMultiplicity) noexcept;
/// What the upper value gives, or 1; all bits set for unlimited, which so is above every number.
std::uint32_t upperBound(Reading aMultiplicity) noexcept;
/// Never a negative one: -1 does not stand for unlimited here.
bool includesCardinality(Reading aMultiplicity, std::int32_t aCardinality) noexcept;
bool includesMultiplicity(Reading aMultiplicity, Reading aOther) noexcept;
/// Whether the other one includes each cardinality of this one, which may have none.
bool isCompatibleWith(Reading aMultiplicity, Reading aOther) noexcept;

// Redefinition (clause 9.2; properties 9.5, operations 9.6).

/// Whether a context of the element stands below one of the redefined element; being the same is not enough.
bool isRedefinitionContextValid(Reading aElement, Reading aRedefined);
/// Whether `aRedefinee` may redefine the element; never but for properties and operations.
bool isConsistentWith(Reading aElement, Reading aRedefinee);

// Properties (clause 9.5), operations (9.6), associations (11.5) and what refers to their ends.

/// Whether a classifier holds the property among its attributes.
bool isAttribute(Reading aProperty) noexcept;
/// An attribute is; an end that its association owns, if it is listed there as navigable.
bool isNavigable(Reading aProperty);
bool isOwnedByAssociation(Reading aProperty) noexcept;
/// The other end of a binary association that owns neither end, or none. In UML 2.5.1 owned ends count, too.
Reading opposite(Reading aProperty);
/// The types of the other ends of the association; without one the classifier that has the attribute.
Elements subsettingContext(Reading aProperty);
/// The first parameter of a list with direction Return, or none.
Reading returnParameter(Reading aOwner, engine::FeatureIndex aParameters);
/// All such parameters; a model may have more than one.
Elements returnResult(Reading aOperation);
/// Own member ends, then those of associations above it, through association classes alone.
Elements allConnections(Reading aAssociationClass);
/// The first member end that the extension (clause 12.3) does not own, or none.
Reading metaclassEnd(Reading aExtension);
/// That of the end of the first end data of a link action (clause 16), or none.
Reading linkedAssociation(Reading aLinkAction);

// Components (clause 11.6).

/// The interfaces that are suppliers of the classifier's client dependencies of a metaclass.
Elements suppliedInterfaces(Reading aClassifier, int aDependency);
Elements realizedInterfaces(Reading aClassifier);
Elements usedInterfaces(Reading aClassifier);

}  // namespace umlmm::queries
