#pragma once

#include "kelm/fwd.h"
#include "lum/visibility.h"

namespace Kelm {

/// One row of a meta-property table; row 0 is readable and holds no property.
struct MetaPropertyRecord {
  NSInterface::PropertyIntf const* fProperty;
};

/// The property accessors of one metaclass. Elements come as the kernel sees them; ids are those of the
/// metaclass, from 1. Another id raises "invalid meta property id", an element without the feature, or one
/// that does not exist in the variant, says so. Every write checks that the variant can be written, and
/// raises with nothing changed when it is refused.
struct IntrospectiveMethods {
  using Element = NSInterface::ClassObjectIntf;

  /// A null object for an unset feature and for a many-valued one. Stored numbers are never unset, nor are
  /// texts that must have a value: they read 0 and the empty text.
  Object (*getEntry)(Element const*, Deviant const&, unsigned aId);
  bool (*isSetEntry)(Element const*, Deviant const&, unsigned aId);
  /// Null unsets; any other value raises for a many-valued feature.
  void (*setEntry)(Element*, Deviant const&, unsigned aId, Object const& aValue);
  /// The live sequence of a many-valued feature; others raise, or for the kernel's features give null. It
  /// shares the element's count: keep it by `incRef`.
  Generic::SequenceIntf* (*getSequenceEntry)(Element const*, Deviant const&, unsigned aId);
  /// As a new element has it, where the feature must have a value; else no value, or an empty list.
  void (*unsetEntry)(Element*, Deviant const&, unsigned aId);
  /// Replaces all values of a many-valued feature, all or nothing; null clears. The values are read in their
  /// own variant before the first change, so they may be those of another feature that loses them by it.
  void (*setSequenceEntry)(Element*, Deviant const&, unsigned aId, Generic::SequenceIntf const* aValues,
                           Deviant const& aValuesDeviant);
  bool (*isReadOnlyEntry)(Element const*, Deviant const&, unsigned aId);
  /// The class that declares the features.
  NSInterface::ClassIntf const* const* owner;
  MetaPropertyRecord const* metaPropertyTable;
};

}  // namespace Kelm
