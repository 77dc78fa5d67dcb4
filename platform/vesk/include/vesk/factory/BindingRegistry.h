#pragma once

#include <cstddef>

#include "vesk/VeskValue.h"
#include "vesk/fwd.h"
#include "vesk/interned.h"

namespace vesk::factory {

namespace basic {

/// The table from native ids to the instances bound to them, in the host's thread. It does not hold the
/// instances: a binding lasts until the last host reference to the instance goes and its class drops it by
/// remove. Nor does it hold what an id stands for: that is the class's affair.
///
/// An id with its lowest bit set (lum/host_word.h) keeps its instance in the host word of its record; all
/// others are kept in a hash table.
class UMLMM_API BindingRegistry {
 public:
  /// The 1 by 1 array of the instance for `id` with one host reference for the caller, made as an instance
  /// of `className` if there is none; `created` says whether it was. For the null id, the empty value of
  /// the class or data type of that name. The null class name is enough for an id that is bound.
  static VeskValue announce(void* id, VeskInterned className, bool& created);
  static VeskValue announce(void* id, VeskInterned className);
  static VeskValue announce(void const* id, VeskInterned className);

  /// Binds `id` to the instance in `object`, which the host made for a running constructor. Throws a
  /// VeskError when there is none, and when the id or the instance is bound already. The class is that of the
  /// instance: `className` and `isNew` are not looked at.
  static void announceForConstructor(void* id, VeskInterned className, tarnArray* object, bool isNew);

  /// Drops the binding of `id`, if there is one; but not that of a new instance that got the id while the old
  /// one is being released.
  static void remove(void const* id);

  /// The instance bound to `id`, or null; no reference is taken.
  [[nodiscard]] static host::Instance* find(void const* id) noexcept;
  /// How many instances are bound.
  [[nodiscard]] static std::size_t size() noexcept;
};

}  // namespace basic

namespace detail {

/// Makes the data types of texts known to the host; may be called any number of times.
UMLMM_API void initStringDataTypes();

}  // namespace detail

}  // namespace vesk::factory
