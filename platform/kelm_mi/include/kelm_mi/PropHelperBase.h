#pragma once

#include "kelm/IntrospectiveMethods.h"
#include "kelm/Object.h"
#include "vesk/VeskValue.h"

namespace Kelm::mi {

/// Converts the values of one data type for the descriptor that owns the helper. Helpers come from the global
/// `new`.
class UMLMM_API PropHelperBase {
 public:
  PropHelperBase();

  /// The script's value of a model value, whose array is the caller's; `aTypeName` is the descriptor's data
  /// type.
  virtual vesk::VeskValue unboxAndReturn(Object aValue, char const* aTypeName) = 0;
  /// Writes a script's value, which stays the caller's. False if the value was empty and nothing was written.
  /// Raises, with nothing written, for one that is no value of the type.
  virtual bool boxAndSet(ClassObject* aObject, vesk::VeskValue& aValue, IntrospectiveMethods const* aMethods,
                         unsigned aId) = 0;
  virtual ~PropHelperBase();
};

}  // namespace Kelm::mi
