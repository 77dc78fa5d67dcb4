#pragma once

#include "kelm_mi/sequences/ImmutableSequenceWrapper.h"
#include "kelm_mi/sequences/IteratorWrapper.h"
#include "kelm_mi/sequences/SequenceWrapper.h"
#include "uml_metamodel_mi/datatypes/EnumerationWrapper.h"

/// How the units of the value types announce their classes. Nothing is filled by it.
namespace umlmm::mi {

using Kelm::mi::announceClass;

namespace detail {

/// The two classes of sequences and the two of iterators of a value type, which have their descriptions. Both
/// kinds of iterators have one and the same.
template <class T>
void announceContainers(vesk::VeskPackage* aPackage, std::string const& aChangeable,
                        std::string const& aReadOnly, std::string const& aIterator) {
  using enum Kelm::mi::Access;
  vesk::ClassFamily const& family = Kelm::mi::FamilyOf<T>::get();
  auto const sequence = [&](auto aAccess) { return family.shortName(family.sequence(aAccess, Changeable)); };
  auto const iterator = [&](auto aAccess) { return family.shortName(family.iterator(aAccess, Changeable)); };
  announceClass(aPackage, new Kelm::mi::SequenceWrapper<T>(sequence(Changeable), aChangeable));
  announceClass(aPackage, new Kelm::mi::ImmutableSequenceWrapper<T>(sequence(ReadOnly), aReadOnly));
  announceClass(aPackage, new Kelm::mi::IteratorWrapper<T>(iterator(Changeable), aIterator));
  announceClass(aPackage, new Kelm::mi::ImmutableIteratorWrapper<T>(iterator(ReadOnly), aIterator));
}

}  // namespace detail

/// The five classes of an enumeration, whose own class info is a Wrapper; without a package as global
/// classes.
template <class E, class Wrapper>
void announceEnumerationClasses(vesk::VeskPackage* aPackage) {
  std::string const name = E::type().name();
  std::string const sequence = "sequence of " + name + " whose values can be changed";
  announceClass(aPackage, new Wrapper(name, "An enumeration"));
  detail::announceContainers<E>(aPackage, "A " + sequence, "A non-modifiable " + sequence,
                                "A iterator for traversing a modifiable list of " + name + " objects");
}

/// The four classes of a primitive type, which has no class of its own; without a package as global classes.
template <class T>
void announcePrimitiveClasses(vesk::VeskPackage* aPackage) {
  std::string const name = Kelm::mi::ValueType<T>::name();
  std::string const sequence = "A Sequence of " + name + " whose values ";
  detail::announceContainers<T>(aPackage, sequence + "can be changed", sequence + "cannot be changed",
                                "An iterator for a Sequence of " + name);
}

}  // namespace umlmm::mi
