#pragma once

#include "kelm_mi/sequences/ImmutableSequenceWrapper.h"
#include "kelm_mi/sequences/IteratorWrapper.h"
#include "kelm_mi/sequences/SequenceWrapper.h"
#include "uml_metamodel_mi/datatypes/EnumerationWrapper.h"
#include "uml_metamodel_mi/wrappers/registrars.h"

namespace umlmm::mi {

/// The five classes of an enumeration, whose own class info is a Wrapper; without a package as global
/// classes.
template <class E, class Wrapper>
void announceEnumerationClasses(vesk::VeskPackage* aPackage) {
  std::string const name = E::type().name();
  std::string const sequence = "sequence of " + name + " whose values can be changed";
  // Both kinds of iterators have one and the same description.
  std::string const iterator = "A iterator for traversing a modifiable list of " + name + " objects";
  announceClass(aPackage, new Wrapper(name, "An enumeration"));
  announceClass(aPackage, new Kelm::mi::SequenceWrapper<E>("SequenceOf" + name, "A " + sequence));
  announceClass(aPackage, new Kelm::mi::ImmutableSequenceWrapper<E>("ImmutableSequenceOf" + name,
                                                                    "A non-modifiable " + sequence));
  announceClass(aPackage, new Kelm::mi::IteratorWrapper<E>(name + "Iterator", iterator));
  announceClass(aPackage, new Kelm::mi::ImmutableIteratorWrapper<E>(name + "ImmutableIterator", iterator));
}

/// The four classes of a primitive type, which has no class of its own; without a package as global classes.
template <class T>
void announcePrimitiveClasses(vesk::VeskPackage* aPackage) {
  std::string const name = Kelm::mi::ValueType<T>::name();
  std::string const sequence = "A Sequence of " + name + " whose values ";
  std::string const iterator = "An iterator for a Sequence of " + name;
  announceClass(aPackage, new Kelm::mi::SequenceWrapper<T>("SequenceOf" + name, sequence + "can be changed"));
  announceClass(aPackage, new Kelm::mi::ImmutableSequenceWrapper<T>("ImmutableSequenceOf" + name,
                                                                    sequence + "cannot be changed"));
  announceClass(aPackage, new Kelm::mi::IteratorWrapper<T>(name + "Iterator", iterator));
  announceClass(aPackage, new Kelm::mi::ImmutableIteratorWrapper<T>(name + "ImmutableIterator", iterator));
}

}  // namespace umlmm::mi
