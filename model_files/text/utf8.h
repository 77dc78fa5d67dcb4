#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

/// Characters of UTF-8 texts.
namespace umlmm::files::utf8 {

/// Stands for a byte that begins no character.
inline constexpr char32_t kMalformed = 0xFFFFFFFF;

struct Character {
  char32_t fCode;
  std::size_t fLength;
};

inline bool isSurrogate(char32_t aCode) noexcept { return (aCode & 0xFFFFF800) == 0xD800; }

/// The character at a place before the end.
inline Character at(std::string_view aText, std::size_t aPlace) noexcept {
  auto const byte = [&](std::size_t aIndex) { return static_cast<unsigned char>(aText[aPlace + aIndex]); };
  unsigned const first = byte(0);
  if (first < 0x80) return {first, 1};
  std::size_t const length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || aText.size() - aPlace < length) return {kMalformed, 1};
  char32_t code = first & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return {kMalformed, 1};
    code = code << 6 | (byte(i) & 0x3FU);
  }
  bool const isTooLong = code < (length == 4 ? 0x10000U : length == 3 ? 0x800U : 0x80U);
  if (isTooLong || isSurrogate(code) || code > 0x10FFFF) return {kMalformed, 1};
  return {code, length};
}

inline void append(std::string& aText, char32_t aCode) {
  auto const tail = [&](unsigned aShift) { return static_cast<char>(0x80 | (aCode >> aShift & 0x3F)); };
  if (aCode < 0x80) {
    aText += static_cast<char>(aCode);
  } else if (aCode < 0x800) {
    aText.append({static_cast<char>(0xC0 | aCode >> 6), tail(0)});
  } else if (aCode < 0x10000) {
    aText.append({static_cast<char>(0xE0 | aCode >> 12), tail(6), tail(0)});
  } else {
    aText.append({static_cast<char>(0xF0 | aCode >> 18), tail(12), tail(6), tail(0)});
  }
}

inline constexpr std::size_t kWord = sizeof(std::uint64_t);

/// The end of what is ASCII from a place on, up to some bytes before it: four words in a step, for most of
/// most texts is ASCII.
inline std::size_t asciiEnd(std::string_view aText, std::size_t aPlace) noexcept {
  constexpr std::size_t kWords = 4;
  std::uint64_t words[kWords];
  for (; aText.size() - aPlace >= sizeof words; aPlace += sizeof words) {
    std::memcpy(words, aText.data() + aPlace, sizeof words);
    if (((words[0] | words[1] | words[2] | words[3]) & 0x8080808080808080U) != 0) break;
  }
  return aPlace;
}

/// The first character of a kind, all of which begin with these bytes; npos for none.
inline std::size_t find(std::string_view aText, bool (*aIsOne)(char32_t), std::string_view aStart) noexcept {
  std::size_t place = aText.find(aStart);
  while (place != std::string_view::npos && !aIsOne(at(aText, place).fCode)) {
    place = aText.find(aStart, place + 1);
  }
  return place;
}

}  // namespace umlmm::files::utf8
