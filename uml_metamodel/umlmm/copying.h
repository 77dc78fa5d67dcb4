#pragma once

#include "uml_metamodel/umlmm/models.h"

/// Copies of elements and models, made by reflection: any metaclass, also those that an extension has added.
/// Each is made as a whole or, when it raises, not at all, and takes time for what is copied.
namespace umlmm {

namespace detail {

UMLMM_API Kelm::NSInterface::ModelElementIntf& cloneElement(Kelm::NSInterface::ClassObjectIntf* aElement,
                                                            Kelm::Deviant const& aDeviant);

}  // namespace detail

/// A copy of an element with all that it owns, at the top level of its model. It has the same values, in the
/// same order; what is unset stays unset. References among the copied elements lead to the copies, references
/// to others lead where they did. Those with a far end would change the other element as well: they are
/// copied where an element must have one, such as the ends of an edge or of a dependency, and the far end has
/// room for it. The copy of an end of an association is none of the association's. Identifiers of other tools
/// are not copied. Raises for a null, destroyed or read-only element.
template <class X>
requires detail::Changeable<X> X clone(X const& aElement) {
  Kelm::Deviant const deviant = aElement.getDeviant();
  return cast<X>(Kelm::ClassObject(&detail::cloneElement(aElement.get(), deviant), deviant));
}

/// Copies all elements of a model, identifiers of other tools included, behind those that another one has at
/// its top level. Raises for a null or closed model, and for one to copy into that is read-only.
UMLMM_API void copyInto(Kelm::Model const& aTo, Kelm::ImmutableModel const& aFrom);

}  // namespace umlmm
