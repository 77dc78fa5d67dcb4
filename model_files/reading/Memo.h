#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace umlmm::files {

/// The first and the last bytes of a name, which are all of a short one.
struct NameWords {
  std::uint64_t fFirst = 0;
  std::uint64_t fLast = 0;
  std::size_t fLength = SIZE_MAX;

  NameWords() = default;
  explicit NameWords(std::string_view aName) noexcept : fLength(aName.size()) {
    char const* const text = aName.data();
    if (fLength >= sizeof(std::uint64_t)) {
      fFirst = load<std::uint64_t>(text);
      fLast = load<std::uint64_t>(text + fLength - sizeof(std::uint64_t));
    } else if (fLength >= sizeof(std::uint32_t)) {
      fFirst = load<std::uint32_t>(text);
      fLast = load<std::uint32_t>(text + fLength - sizeof(std::uint32_t));
    } else {
      for (char const byte : aName) fFirst = fFirst << 8 | static_cast<unsigned char>(byte);
    }
  }
  /// By way of a value of its own size: the processor waits where a part of a word has just been stored.
  template <class Word>
  static Word load(char const* aText) noexcept {
    Word word;
    std::memcpy(&word, aText, sizeof word);
    return word;
  }
  bool operator==(NameWords const&) const = default;
  std::uint64_t hash(std::uintptr_t aContext) const noexcept {
    constexpr std::uint64_t kMix = 0x9E3779B97F4A7C15;
    std::uint64_t const mixed = ((fFirst * kMix) ^ fLast) + aContext * 31 + fLength;
    return mixed * kMix;
  }
};

/// Remembers what names mean. Files have few names and use them again and again: most questions are answered
/// by a look at one row, which takes less than half the time of a table of texts.
template <class Value>
class Memo {
 public:
  /// What `aFind()` answers for the name, which may depend on the context as well.
  template <class Find>
  Value const& get(std::uintptr_t aContext, std::string_view aName, NameWords const& aWords, Find aFind) {
    std::size_t const number = aWords.hash(aContext) >> (64 - kBits);
    Row& row = fRows[number];
    bool const isKnown = row.fContext == aContext && row.fWords == aWords &&
                         (aName.size() <= 2 * sizeof(std::uint64_t) || fLongNames[number] == aName);
    if (!isKnown) [[unlikely]] {
      Value const value = aFind();
      fLongNames[number] = aName;
      row.fValue = value;
      row.fContext = aContext;
      row.fWords = aWords;
    }
    return row.fValue;
  }

 private:
  static constexpr unsigned kBits = 8;

  struct Row {
    std::uintptr_t fContext = 0;
    NameWords fWords;
    Value fValue{};
  };

  std::array<Row, std::size_t{1} << kBits> fRows;
  std::array<std::string, std::size_t{1} << kBits> fLongNames;
};

/// The same for things that depend on two numbers.
template <class Value>
class PairMemo {
 public:
  template <class Find>
  Value const& get(std::uint32_t aFirst, std::uint32_t aSecond, Find aFind) {
    std::uint64_t const key = std::uint64_t{aFirst} << 32 | aSecond;
    Row& row = fRows[(aFirst * 37 + aSecond) % kRows];
    if (row.fKey != key) [[unlikely]] {
      row.fValue = aFind();
      row.fKey = key;
    }
    return row.fValue;
  }

 private:
  static constexpr std::size_t kRows = 512;

  struct Row {
    std::uint64_t fKey = UINT64_MAX;
    Value fValue{};
  };

  std::array<Row, kRows> fRows;
};

}  // namespace umlmm::files
