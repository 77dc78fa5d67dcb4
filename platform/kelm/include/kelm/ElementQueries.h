#pragma once

#include "kelm/fwd.h"
#include "lum/visibility.h"

namespace Kelm {

/// Questions about elements that only the metamodel can answer. Each answers a new sequence of element
/// references with one count, which belongs to the caller; it is a snapshot and no live view. Null entries:
/// no metamodel is loaded, so there are no elements.
struct ElementQueries {
  /// All elements of a model that are instances of the class or of a specialization of it, in the order of a
  /// document: containers before their contents. All are instances of the kernel's own class of elements.
  Generic::SequenceIntf* (*instancesOf)(ModelObject& aModel, Deviant const& aDeviant,
                                        NSInterface::ClassIntf const& aClass) = nullptr;
  /// All elements that refer to an element by a feature other than the one that contains it.
  Generic::SequenceIntf* (*referencedBy)(NSInterface::ModelElementIntf const& aElement,
                                         Deviant const& aDeviant) = nullptr;
};

UMLMM_API ElementQueries const& elementQueries() noexcept;
/// Called by the metamodel when it comes up.
UMLMM_API void setElementQueries(ElementQueries const& aQueries) noexcept;

/// Copies of elements, which only the metamodel can make; all or nothing. Null entries: no metamodel is
/// loaded.
struct ElementCopying {
  /// A copy of an element with all that it owns, at the top level of its model.
  NSInterface::ModelElementIntf* (*clone)(NSInterface::ModelElementIntf& aElement,
                                          Deviant const& aDeviant) = nullptr;
  /// Copies all elements of a model into another one.
  void (*copyInto)(ModelObject const& aFrom, ModelObject& aTo) = nullptr;
};

UMLMM_API ElementCopying const& elementCopying() noexcept;
/// Called by the metamodel when it comes up.
UMLMM_API void setElementCopying(ElementCopying const& aCopying) noexcept;

}  // namespace Kelm
