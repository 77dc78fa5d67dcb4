#pragma once

#include "kelm/fwd.h"
#include "lum/visibility.h"

namespace Kelm {

/// One row of a meta-property table; row 0 is readable and holds no property.
struct MetaPropertyRecord {
  NSInterface::PropertyIntf const* fProperty;
};

/// The property accessors of one metaclass. Elements come as the kernel sees them and must have the
/// metaclass's features; ids are those of the metaclass, from 1. An unset feature reads as a null object.
/// Every write checks the variant and raises with nothing changed when it is refused.
struct IntrospectiveMethods {
  using Element = NSInterface::ClassObjectIntf;

  Object (*getEntry)(Element const*, Deviant const&, unsigned aId);
  bool (*isSetEntry)(Element const*, Deviant const&, unsigned aId);
  void (*setEntry)(Element*, Deviant const&, unsigned aId, Object const& aValue);
  /// The live sequence of a many-valued feature. It shares the element's count: keep it by `incRef`.
  Generic::SequenceIntf* (*getSequenceEntry)(Element const*, Deviant const&, unsigned aId);
  void (*unsetEntry)(Element*, Deviant const&, unsigned aId);
  /// Replaces all values of a many-valued feature, all or nothing; null clears.
  void (*setSequenceEntry)(Element*, Deviant const&, unsigned aId, Generic::SequenceIntf const* aValues,
                           Deviant const& aValuesDeviant);
  bool (*isReadOnlyEntry)(Element const*, Deviant const&, unsigned aId);
  /// The class that declares the features.
  NSInterface::ClassIntf const* const* owner;
  MetaPropertyRecord const* metaPropertyTable;
};

}  // namespace Kelm
