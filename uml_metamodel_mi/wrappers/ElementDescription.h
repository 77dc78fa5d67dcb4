#pragma once

#include <array>
#include <functional>
#include <span>

#include "frame/addTypedMethod.h"
#include "kelm/IntrospectiveMethods.h"
#include "kelm_mi/KelmmiPropertyFactory.h"
#include "kelm_mi/families.h"
#include "uml_metamodel/umlmm/detail/stored.h"

/// The three script classes of a metaclass as data, and what fills a class from it.
namespace umlmm::mi {

using Kelm::mi::Bind;

/// One constructor. Argument types behind the last one are null.
struct ConstructorRow {
  std::array<char const*, Kelm::mi::SignatureTexts::kMostArguments> fArguments;
  Bind fBind;
};

/// A method with its variants on the changeable and on the read-only class.
struct BindPair {
  Bind fOnMutable;
  Bind fOnImmutable;
};

/// A query operation: one method on each of the two element classes.
struct OperationRow {
  char const* fName;
  char const* fArgumentNames;
  char const* fResult;
  std::array<char const*, Kelm::mi::SignatureTexts::kMostArguments> fArguments;
  BindPair fBind;
};

/// A script property. It stands on the read-only class; the changeable one inherits it.
struct PropertyRow {
  /// Makes the descriptor and adds it to the class.
  using Add = void (*)(Kelm::mi::KelmmiPropertyFactory const& aFactory, PropertyRow const& aRow);

  char const* fName;
  unsigned fId;
  Kelm::mi::Multiplicity fMultiplicity;
  Kelm::mi::Mutability fMutability;
  /// Where the element keeps the value.
  umlmm::detail::StoredFeature fStored;
  char const* fType;
  Add fAdd;
};

/// An entry of a meta-property list: the accessor of the metaclass that declares the feature, and its id
/// there.
struct MetaPropertyRow {
  char const* fName;
  Kelm::ImmutableProperty (*fAccessor)(unsigned);
  unsigned fId;
};

/// Methods that each class of elements declares.
struct CommonMethods {
  Bind fMetaClass;
  Bind fMetaProperty;
  Bind fCast;
  Bind fCastImmutable;
  Bind fCastToImmutable;
};

/// Methods that a metaclass of several direct superclasses declares anew, as it would inherit each along
/// several paths.
struct RedeclaredMethods {
  BindPair fIsValid;
  Bind fDestroy;
  BindPair fAsDeviant;
  BindPair fAsImmutable;
  Bind fAsMutable;
};

struct ElementDescription {
  /// "Classifier"
  char const* fName;
  Kelm::IntrospectiveMethods const* fMethods;
  /// Direct superclasses in significant order; none for the root.
  std::span<char const* const> fSupers;
  CommonMethods const* fCommon;
  /// Null for a metaclass of one superclass.
  RedeclaredMethods const* fRedeclared;
  /// None for an abstract metaclass.
  std::span<ConstructorRow const> fConstructors;
  std::span<OperationRow const> fOperations;
  std::span<PropertyRow const> fProperties;
  std::span<MetaPropertyRow const> fMetaProperties;

  vesk::ClassFamily const& family() const;
};

void fillMutableClass(vesk::VeskClass* aClass, ElementDescription const& aDescription);
void fillImmutableClass(vesk::VeskClass* aClass, vesk::VeskClient const* aClient,
                        ElementDescription const& aDescription);
void fillMetaPropertyClass(vesk::VeskClass* aClass, ElementDescription const& aDescription);

/// The names of all members that the fillings add. False, with nothing visited, if other libraries add some
/// that can't be told before.
using NameVisitor = std::function<void(char const*)>;
bool visitMutableNames(NameVisitor const& aVisit, ElementDescription const& aDescription);
bool visitImmutableNames(NameVisitor const& aVisit, ElementDescription const& aDescription);

}  // namespace umlmm::mi
