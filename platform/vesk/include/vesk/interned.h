#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "lum/visibility.h"
#include "vesk/fwd.h"

namespace vesk {

namespace internal {

/// The one permanent record of a text. The two words beside the text are caches of the host, written by its
/// one thread: the class or data type that the text names, and whatever a front keeps with the name.
struct InternedRecord {
  std::string fText;
  host::Type* fType = nullptr;
  void* fFront = nullptr;
};

/// The empty text has the null token.
struct IdEmptyPolicy {};

}  // namespace internal

/// An interned text: equal texts have equal tokens. Tokens are never given back, so copies are free.
template <class Policy>
class VeskInternedBase {
 public:
  constexpr VeskInternedBase() noexcept = default;
  explicit constexpr VeskInternedBase(internal::InternedRecord* record) noexcept : fRecord(record) {}

  [[nodiscard]] constexpr bool empty() const noexcept { return fRecord == nullptr; }
  explicit constexpr operator bool() const noexcept { return fRecord != nullptr; }
  [[nodiscard]] char const* c_str() const noexcept { return fRecord ? fRecord->fText.c_str() : ""; }
  [[nodiscard]] std::string_view view() const noexcept {
    return fRecord ? std::string_view(fRecord->fText) : std::string_view();
  }
  /// The permanent record; null for the empty text.
  [[nodiscard]] constexpr internal::InternedRecord* record() const noexcept { return fRecord; }

  friend constexpr bool operator==(VeskInternedBase, VeskInternedBase) noexcept = default;
  /// By address: some order, not that of the texts, and another one in the next run.
  friend bool operator<(VeskInternedBase a, VeskInternedBase b) noexcept {
    return std::less<>()(a.fRecord, b.fRecord);
  }

 private:
  internal::InternedRecord* fRecord = nullptr;
};

using VeskInterned = VeskInternedBase<internal::IdEmptyPolicy>;

namespace internal {

// All of these may be called in any thread; a text that is interned stays for the life of the process.

/// The token of `text`, which is consumed; null for the empty text.
[[nodiscard]] UMLMM_API VeskInterned makeInterned(std::string&& text);
/// The token of zero-terminated text; null for null and for the empty text.
[[nodiscard]] UMLMM_API VeskInterned intern(char const* text);
[[nodiscard]] UMLMM_API VeskInterned intern(std::string_view text);
/// The token of `text` if the text was interned before, otherwise null.
[[nodiscard]] UMLMM_API VeskInterned findInterned(std::string_view text) noexcept;

/// A literal that is interned at its first use and costs one load and test from then on:
/// `static constinit InternedLiteral sName{"Kelm.Object"}; ... sName.get()`. It is the host's thread that
/// asks.
class InternedLiteral {
 public:
  explicit constexpr InternedLiteral(char const* text) noexcept : fText(text) {}
  [[nodiscard]] VeskInterned get() {
    if (fToken.empty()) [[unlikely]]
      fToken = intern(fText);
    return fToken;
  }
  operator VeskInterned() { return get(); }

 private:
  char const* fText;
  VeskInterned fToken;
};

/// A text as a template argument.
template <std::size_t N>
struct FixedText {
  consteval FixedText(char const (&text)[N]) {
    for (std::size_t i = 0; i < N; ++i) fText[i] = text[i];
  }
  char fText[N]{};
};

/// The token of a literal, the same call site cost as InternedLiteral: `interned<"Kelm.Object">()`.
template <FixedText Text>
[[nodiscard]] VeskInterned interned() {
  static constinit InternedLiteral sLiteral{Text.fText};
  return sLiteral.get();
}

}  // namespace internal

}  // namespace vesk

template <class Policy>
struct std::hash<vesk::VeskInternedBase<Policy>> {
  std::size_t operator()(vesk::VeskInternedBase<Policy> name) const noexcept {
    return std::hash<void const*>()(name.record());
  }
};
