#pragma once

#include <concepts>
#include <type_traits>

#include "kelm/Handle.h"

namespace Kelm {

/// Read-only reference to any object.
class ImmutableObject : public Handle<NSInterface::ObjectIntf> {
 public:
  using Handle::Handle;
  ImmutableObject() noexcept = default;
  ImmutableObject(Handle const& aOther) : Handle(aOther) {}
};

/// Changeable reference to any object; also how values travel through the accessor tables.
class Object : public ImmutableObject {
 public:
  Object() noexcept = default;
  Object(NSInterface::ObjectIntf const* aImpl, Deviant aDeviant) : ImmutableObject(aImpl, aDeviant) {}
  /// The same for an object of a final class, not null, which is counted without a look at its table.
  template <std::derived_from<NSInterface::ObjectIntf> Final>
  requires std::is_final_v<Final> Object(Final const* aImpl, Deviant aDeviant)
  noexcept {
    fImpl = aImpl;
    fDeviant = aDeviant;
    if (isCounted()) aImpl->incRef();
  }
  explicit Object(Handle const& aOther) : ImmutableObject(aOther) {}

  NSInterface::ObjectIntf* get() const noexcept { return const_cast<NSInterface::ObjectIntf*>(fImpl); }
  /// Raises on a null reference and on a variant that can't be written.
  void destroy() const { writable("kelm/Kelm/Object_h")->destroy(fDeviant); }
};

static_assert(sizeof(Object) == 2 * sizeof(void*));

}  // namespace Kelm
