#pragma once

#include <string_view>

#include "model_files/dialect/Metamodel.h"

/// What other versions of UML, and tools, write in another way than the metamodel has it.
namespace umlmm::files {

/// The feature that a file means by a name; null if the metaclass has none.
Feature const* featureCalled(Metaclass const& aMetaclass, std::string_view aName);
/// The metaclass that a file means by a name, also one that another version has, or written with a small
/// first letter; null for none.
Metaclass const* metaclassCalled(std::string_view aName);
/// The metaclass of a value whose type is left out: the feature's own, or what tools mean where that is
/// abstract. Null if it has to be said.
Metaclass const* impliedType(Feature const& aFeature);

/// Where an owner keeps a part that a file puts under a name which tells no place of its own, such as
/// "ownedMember" or "ownedPort": the list with the nearest type. Null for none.
Feature const* placeOf(Metaclass const& aOwner, Metaclass const& aPart);
/// The feature that holds a part which a file puts under a name. Older versions have parts in lists that do
/// not take them today: a `ProfileApplication` was a `packageImport`. Null if the owner has no such feature.
Feature const* placeCalled(Metaclass const& aOwner, std::string_view aName, Metaclass const& aPart);
/// The metaclass of an element without a type in a feature that the metamodel lacks: what the name stands for
/// wherever it has it. `aOwner` is null in an owner that it lacks as well, and `aOwnerType` what the file
/// calls that. Null for none.
Metaclass const* impliedType(Metaclass const* aOwner, std::string_view aFeature,
                             std::string_view aOwnerType = {});

/// "String" of any of the addresses under which the primitive types are known, such as
/// "pathmap://UML_LIBRARIES/UMLPrimitiveTypes.library.uml#String"; empty for another address.
std::string_view primitiveAt(std::string_view aAddress);
/// The same by the path that one tool writes with an address:
/// "UML Standard Profile::UML2 Metamodel::PrimitiveTypes::String".
std::string_view primitiveCalled(std::string_view aPath);

}  // namespace umlmm::files
