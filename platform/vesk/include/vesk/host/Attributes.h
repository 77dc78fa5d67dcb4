#pragma once

#include "vesk/VeskValue.h"
#include "vesk/fwd.h"
#include "vesk/interned.h"

/// Attributes of instances by name, for libraries, with values of whatever type. These travel in the front's
/// own form (Carrier::Front), as scripts write and read them, so that a name is as good as an attribute. A
/// library hands them on and can't look into them.
namespace vesk::host {

struct AttributeAccess {
  /// The value of the property `name`; what the front keeps for it becomes the caller's.
  VeskValue (*fRead)(Instance& instance, VeskInterned name) = nullptr;
  /// Sets the property; `value` stays the caller's.
  void (*fWrite)(Instance& instance, VeskInterned name, VeskValue value) = nullptr;
};

/// Set by the front, before the first instance.
UMLMM_API void setAttributeAccess(AttributeAccess access) noexcept;

/// Throw what the front throws, and a VeskError when it offers no such access or the instance is none of
/// this host.
[[nodiscard]] UMLMM_API VeskValue readAttribute(VeskInterface& instance, VeskInterned name);
UMLMM_API void writeAttribute(VeskInterface& instance, VeskInterned name, VeskValue value);

}  // namespace vesk::host
