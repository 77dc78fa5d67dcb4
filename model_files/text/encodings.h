#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "model_files/text/Encoding.h"

/// The ways that Encoding::named chooses from, and what they share.
namespace umlmm::files {

/// UTF-16 or UTF-32 by the bytes of a unit, 2 or 4.
std::shared_ptr<Encoding const> wideEncoding(std::size_t aUnit, bool aIsBigEndian);

/// By the name that iconv knows; null if it doesn't. Where each byte is a character, bytes that the encoding
/// leaves undefined are the characters with their number, as the control characters 0x80 to 0x9F are in
/// ISO-8859.
std::shared_ptr<Encoding const> iconvEncoding(std::string const& aName);

/// UTF-16 or UTF-32 by a mark, or by where the zeros of the first two characters are, if these are of ASCII;
/// else empty.
std::string_view wideUnitsOf(std::string_view aBytes) noexcept;

/// "<?xm" in EBCDIC, of which all kinds agree on the characters of a declaration.
inline constexpr std::string_view kEbcdicXml = "\x4C\x6F\xA7\x94";
inline bool isEbcdicXml(std::string_view aBytes) noexcept { return aBytes.starts_with(kEbcdicXml); }

constexpr bool isBlank(char aByte) noexcept {
  return aByte == ' ' || aByte == '\t' || aByte == '\n' || aByte == '\r';
}

/// What stands for bytes that are no character: of the last plane, which ends with two that are none.
inline constexpr char32_t kEscapedByte = 0x10FE00;
inline constexpr char32_t kEscapedSurrogate = 0x10F000;

constexpr char32_t escaped(char aByte) noexcept { return kEscapedByte + static_cast<unsigned char>(aByte); }
constexpr bool isEscapedByte(char32_t aCode) noexcept { return (aCode & ~char32_t{0xFF}) == kEscapedByte; }
constexpr bool isEscapedSurrogate(char32_t aCode) noexcept {
  return (aCode & ~char32_t{0x7FF}) == kEscapedSurrogate;
}

/// "&#8364;"; for malformed bytes that of the character which replaces such.
std::string referenceTo(char32_t aCode);

}  // namespace umlmm::files
