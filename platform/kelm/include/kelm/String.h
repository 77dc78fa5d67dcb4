#pragma once

#include <atomic>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "kelm/Object.h"
#include "kelm/threads.h"

namespace Kelm {

/// An immutable, counted UTF-16 text: what a string slot holds, and how a string travels as an object. The
/// text follows the record and is zero-terminated. Models and threads may share it; the empty text, which all
/// of them do, is immortal, and threads leave its count alone. Lengths and positions are in UTF-16 units.
class UMLMM_API StringObject final : public NSInterface::ObjectIntf {
 public:
  /// A new text with one count, which is the caller's; the one empty text for no characters. What is
  /// malformed in `aText` is kept as it is.
  static StringObject* make(std::u16string_view aText);
  /// The same of UTF-8; what is malformed becomes the replacement character.
  static StringObject* make(std::string_view aText);
  static StringObject* empty() noexcept;

  int incRef() const override {
    if (isSingleThreaded()) [[likely]]
      return ++fCount;
    return countShared(1);
  }
  int decRef() const override {
    int const count = isSingleThreaded() ? --fCount : countShared(-1);
    if (count > 0) [[likely]]
      return count;
    return end();
  }
  int numRef() const override { return std::atomic_ref(fCount).load(std::memory_order_relaxed); }
  char const* getVeskName(bool aImmutable) const override;
  bool deviant_isValid(Deviant) const override { return true; }

  std::u16string_view text() const noexcept { return {data(), fLength}; }
  char16_t const* data() const noexcept { return reinterpret_cast<char16_t const*>(this + 1); }
  /// Of the host alone, which notes in its one thread what it has of the text; 0 at first.
  std::uint32_t& hostMark() const noexcept { return fHostMark; }

  static void operator delete(void* aMemory);

 private:
  /// The last count is gone.
  [[gnu::cold]] int end() const;
  [[gnu::cold]] int countShared(int aStep) const noexcept;
  template <class Units>
  static StringObject* copy(Units aText);

  StringObject() = default;
  ~StringObject() override;
  static void* operator new(std::size_t aSize, std::size_t aCharacters);
  static void operator delete(void* aMemory, std::size_t aCharacters);

  mutable std::int32_t fCount = 1;
  std::uint32_t fLength = 0;
  mutable std::uint32_t fHostMark = 0;
};
static_assert(sizeof(StringObject) == 32, "the mark stands where there was room");

/// A UTF-16 text that shares its record with copies, in whatever threads, with a narrow copy made when asked
/// for. Copying takes no memory. One String itself belongs to one thread at a time; reading is no exception,
/// as `narrow` writes.
class UMLMM_API String {
 public:
  String() noexcept;
  String(String const& aOther) noexcept;
  String(String&& aOther) noexcept;
  String(std::u16string const& aText) : fText(StringObject::make(aText)) {}
  explicit String(std::same_as<std::u16string_view> auto aText) : fText(StringObject::make(aText)) {}
  /// Adds a count; the empty text for null.
  explicit String(StringObject const* aRecord) noexcept
      : fText(aRecord == nullptr ? StringObject::empty() : aRecord) {
    fText->incRef();
  }
  String& operator=(String aOther) noexcept;
  ~String() {
    if (fNarrow != nullptr) [[unlikely]]
      dropNarrow();
    fText->decRef();
  }

  /// Good until this String is assigned or ends.
  std::u16string_view text() const noexcept { return fText->text(); }
  /// Zero-terminated.
  char16_t const* data() const noexcept { return fText->data(); }
  bool empty() const noexcept { return text().empty(); }
  /// Replaces the text, by a part of the same one too, and drops the narrow copy. Nothing has changed if it
  /// raises.
  void assign(std::u16string_view aText);
  /// By UTF-16 unit: the order of code points up to the surrogates.
  int compare(String const& aOther) const noexcept { return text().compare(aOther.text()); }
  /// UTF-8; lone surrogates become the replacement character.
  std::string to_string() const;
  static std::string to_string(std::u16string const& aText);
  /// The narrow copy in UTF-8, zero-terminated, made on first use and owned by this String: copies make their
  /// own, and assigning drops it.
  char const* narrow() const;
  bool hasNarrow() const noexcept { return fNarrow != nullptr; }
  /// Never null; not counted for the caller.
  StringObject const* record() const noexcept { return fText; }

  friend bool operator==(String const& aLeft, String const& aRight) noexcept {
    return aLeft.compare(aRight) == 0;
  }
  friend bool operator<(String const& aLeft, String const& aRight) noexcept {
    return aLeft.compare(aRight) < 0;
  }

 protected:
  struct Counted {};
  /// Takes over a count on the record.
  String(StringObject const* aRecord, Counted) noexcept : fText(aRecord) {}
  [[gnu::cold]] void dropNarrow() noexcept;

  StringObject const* fText;
  mutable char* fNarrow = nullptr;
};

/// UTF-8 of UTF-16 and back; what is malformed becomes the replacement character.
UMLMM_API std::string toUtf8(std::u16string_view aText);
UMLMM_API std::u16string toUtf16(std::string_view aText);

}  // namespace Kelm
