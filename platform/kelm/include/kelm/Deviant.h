#pragma once

#include <cstdint>

#include "kelm/fwd.h"
#include "lum/visibility.h"

namespace Kelm {

/// One view of a model. Records are permanent: a deviant may outlive its model. What a record says changes
/// only when its model closes, on the thread that uses the model.
struct Variant {
  /// The model, or null once it is closed.
  ModelObject* fModel;
  /// From 1 in the order of making, over all models.
  std::uint32_t fNumber;
  bool fReadOnly;
};

/// The writability check of a deviant, and the switch that turns all such checks off.
class UMLMM_API DeviantAssertions {
 public:
  /// True from the start; each thread has its own.
  static constinit thread_local bool sAssertionsEnabled;
  /// Sets the thread's switch and answers its old value.
  static bool enableAssertions(bool aEnabled) noexcept;

  /// Raises when the object may not be written through this deviant. The object may be null. No variant and
  /// value words pass; whether the object exists in the variant is another question.
  void internal_assertWritable(NSInterface::ObjectIntf const*) const {
    if (isReadOnly()) [[unlikely]]
      raiseReadOnly();
  }
  /// The check that comes before each change: the same, if the switch is on. The switch is asked for last, as
  /// a thread's own variable costs more to read than the variant.
  void assertWritable(NSInterface::ObjectIntf const* aObject) const {
    if (isReadOnly() && sAssertionsEnabled) [[unlikely]]
      internal_assertWritable(aObject);
  }

 protected:
  constexpr explicit DeviantAssertions(std::uintptr_t aWord) noexcept : fWord(aWord) {}
  [[noreturn]] static void raiseReadOnly();

  bool isReadOnly() const noexcept {
    Variant const* const variant = (fWord & 1) != 0 ? nullptr : reinterpret_cast<Variant const*>(fWord);
    return variant != nullptr && variant->fReadOnly;
  }

  /// Null, the address of a Variant, or a value word (lowest bit set) that is never followed.
  std::uintptr_t fWord;
};

/// The word that says in which variant of a model a reference sees its element; copied, never interpreted
/// by those who carry it. It holds no count and is compared by identity.
class Deviant : public DeviantAssertions {
 public:
  constexpr Deviant() noexcept : DeviantAssertions(0) {}
  explicit Deviant(Variant const* aVariant) noexcept
      : DeviantAssertions(reinterpret_cast<std::uintptr_t>(aVariant)) {}

  /// A value word: `aBits` carried in place of a variant, for the immortal objects of primitive values.
  static Deviant ofValue(std::uint32_t aBits) noexcept {
    Deviant result;
    result.fWord = (static_cast<std::uintptr_t>(aBits) << 1) | 1;
    return result;
  }
  static Deviant fromWord(std::uintptr_t aWord) noexcept {
    Deviant result;
    result.fWord = aWord;
    return result;
  }

  bool isValue() const noexcept { return (fWord & 1) != 0; }
  /// The bits of a value word; meaningless for others.
  std::uint32_t value() const noexcept { return static_cast<std::uint32_t>(fWord >> 1); }
  /// The variant, or null for no variant and for value words.
  Variant const* variant() const noexcept {
    return isValue() ? nullptr : reinterpret_cast<Variant const*>(fWord);
  }
  std::uintptr_t word() const noexcept { return fWord; }

  friend bool operator==(Deviant const& aLeft, Deviant const& aRight) noexcept {
    return aLeft.fWord == aRight.fWord;
  }
};

static_assert(sizeof(Deviant) == sizeof(void*));

}  // namespace Kelm
