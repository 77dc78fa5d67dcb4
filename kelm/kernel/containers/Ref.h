#pragma once

#include <concepts>
#include <cstdint>
#include <type_traits>

#include "kelm/Generic.h"
#include "kelm/Object.h"
#include "kelm/kernel/containers/SequenceTraits.h"
#include "kelm/kernel/containers/SmallBlocks.h"

/// How typed values cross the type-erased sequence interface.
namespace Kelm::Generic {

/// A value on the heap with its count, from 0. The value stands first: a pointer to the holder points at the
/// value.
template <class T>
struct ValueHolder {
  using Blocks = Kelm::detail::BlocksFor<sizeof(T) + sizeof(std::uint64_t)>;
  static constexpr bool kIsSmall = sizeof(T) <= 16 && alignof(T) <= 8;

  explicit ValueHolder(T const& aValue) : fValue(aValue) {}

  static void* operator new(std::size_t aSize) {
    if constexpr (kIsSmall) return Blocks::take();
    return ::operator new(aSize);
  }
  static void operator delete(void* aHolder) noexcept {
    if constexpr (kIsSmall) return Blocks::give(aHolder);
    ::operator delete(aHolder);
  }

  T fValue;
  std::uint32_t fCount = 0;
};

/// `make` puts a T into a Ref, `get` takes it out again, of a Ref or of what `lend` lent. The holder is
/// copied by the Ref's manager alone, so both sides need not share a library.
template <class T>
struct RefAccess {
  /// What implementations hold for a sequence of T.
  using Stored = T;

  static Ref make(T const& aValue) { return Ref(new ValueHolder<T>(aValue), 0, &manage, &equals); }
  /// `aValue` must come from a `make` or `lend` of the same T; what is answered lives as long as that.
  static T const& get(Loan const& aValue) noexcept { return *static_cast<T const*>(aValue.fHolder); }
  /// Points at `aValue` itself, not at a copy.
  static Loan lend(T const& aValue) noexcept { return {const_cast<T*>(&aValue), 0}; }

 private:
  static void manage(void* aHolder, bool aIncrement) {
    auto* const holder = static_cast<ValueHolder<T>*>(aHolder);
    if (holder == nullptr) return;
    if (aIncrement) {
      ++holder->fCount;
    } else if (holder->fCount-- == 1) {
      delete holder;
    }
  }
  static bool equals(void const* aLeft, void const* aRight) {
    return SequenceTraits<T>::equal(*static_cast<T const*>(aLeft), *static_cast<T const*>(aRight));
  }
};

/// References to objects: the object itself in `fHolder`, its deviant in `fReserved`. All reference classes
/// give the same Ref for the same object, so a sequence of one can be read as a sequence of another.
template <ReferenceClass T>
struct RefAccess<T> {
  using Stored = Object;
  using Interface = typename T::InterfaceType;

  static Ref make(T const& aReference) {
    NSInterface::ObjectIntf const* const object = aReference.get();
    return Ref(const_cast<NSInterface::ObjectIntf*>(object), aReference.getDeviant().word(), &manage,
               &equals);
  }
  /// A null reference when the object has no interface of T; otherwise one that counts it.
  static T get(Loan const& aValue) {
    auto* const object = static_cast<NSInterface::ObjectIntf*>(aValue.fHolder);
    Deviant const deviant = Deviant::fromWord(aValue.fReserved);
    if constexpr (std::same_as<Interface, NSInterface::ObjectIntf>) {
      return T(object, deviant);
    } else {
      return T(queryInterface<Interface, typename T::Domain>(object), deviant);
    }
  }
  static Loan lend(T const& aReference) noexcept {
    NSInterface::ObjectIntf const* const object = aReference.get();
    return {const_cast<NSInterface::ObjectIntf*>(object), aReference.getDeviant().word()};
  }

 private:
  static void manage(void* aObject, bool aIncrement) {
    auto const* const object = static_cast<NSInterface::ObjectIntf const*>(aObject);
    if (object == nullptr) return;
    if (aIncrement) {
      object->incRef();
    } else {
      object->decRef();
    }
  }
  static bool equals(void const* aLeft, void const* aRight) { return aLeft == aRight; }
};

}  // namespace Kelm::Generic

namespace Kelm {

/// Selects the variant for values of an implementation's base.
struct TRUE_TYPE {};

}  // namespace Kelm
