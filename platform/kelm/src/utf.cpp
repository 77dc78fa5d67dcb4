#include "kelm/String.h"

namespace Kelm {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isSurrogate(char32_t aCode) noexcept { return aCode >= 0xD800 && aCode <= 0xDFFF; }

/// The code point at `aPosition`, which moves behind it.
char32_t decode(std::u16string_view aText, std::size_t& aPosition) noexcept {
  char32_t const unit = aText[aPosition++];
  if (!isSurrogate(unit)) return unit;
  if (unit >= 0xDC00 || aPosition == aText.size()) return kReplacement;
  char32_t const low = aText[aPosition];
  if (low < 0xDC00 || low > 0xDFFF) return kReplacement;
  ++aPosition;
  return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

struct LeadByte {
  int fFollowing;
  char32_t fBits;
  /// Range of the byte after it, which keeps out overlong forms, surrogates and what lies past the last
  /// plane.
  unsigned char fLow;
  unsigned char fHigh;
};

LeadByte classify(unsigned char aByte) noexcept {
  if (aByte < 0x80) return {0, aByte, 0, 0};
  if (aByte >= 0xC2 && aByte <= 0xDF) return {1, aByte & 0x1Fu, 0x80, 0xBF};
  if (aByte == 0xE0) return {2, 0, 0xA0, 0xBF};
  if (aByte == 0xED) return {2, 0xD, 0x80, 0x9F};
  if (aByte >= 0xE1 && aByte <= 0xEF) return {2, aByte & 0x0Fu, 0x80, 0xBF};
  if (aByte == 0xF0) return {3, 0, 0x90, 0xBF};
  if (aByte >= 0xF1 && aByte <= 0xF3) return {3, aByte & 0x07u, 0x80, 0xBF};
  if (aByte == 0xF4) return {3, 4, 0x80, 0x8F};
  return {0, kReplacement, 0, 0};
}

/// The same for UTF-8; a malformed sequence counts as one up to the byte that breaks it.
char32_t decode(std::string_view aText, std::size_t& aPosition) noexcept {
  LeadByte const lead = classify(static_cast<unsigned char>(aText[aPosition++]));
  char32_t code = lead.fBits;
  for (int i = 0; i < lead.fFollowing; ++i) {
    if (aPosition == aText.size()) return kReplacement;
    auto const byte = static_cast<unsigned char>(aText[aPosition]);
    if (byte < (i == 0 ? lead.fLow : 0x80) || byte > (i == 0 ? lead.fHigh : 0xBF)) return kReplacement;
    code = (code << 6) | (byte & 0x3Fu);
    ++aPosition;
  }
  return code;
}

void append(std::string& aText, char32_t aCode) {
  auto const put = [&aText](char32_t aByte) { aText.push_back(static_cast<char>(aByte)); };
  auto const follow = [&](int aShift) { put(0x80 | ((aCode >> aShift) & 0x3F)); };
  if (aCode < 0x80) return put(aCode);
  if (aCode < 0x800) {
    put(0xC0 | (aCode >> 6));
  } else if (aCode < 0x10000) {
    put(0xE0 | (aCode >> 12));
    follow(6);
  } else {
    put(0xF0 | (aCode >> 18));
    follow(12);
    follow(6);
  }
  follow(0);
}

void append(std::u16string& aText, char32_t aCode) {
  if (aCode < 0x10000) {
    aText.push_back(static_cast<char16_t>(aCode));
  } else {
    aText.push_back(static_cast<char16_t>(0xD800 + ((aCode - 0x10000) >> 10)));
    aText.push_back(static_cast<char16_t>(0xDC00 + (aCode & 0x3FF)));
  }
}

template <class To, class From>
To transcode(From aText) {
  To result;
  result.reserve(aText.size());
  for (std::size_t position = 0; position < aText.size();) append(result, decode(aText, position));
  return result;
}

}  // namespace

std::string toUtf8(std::u16string_view aText) { return transcode<std::string>(aText); }
std::u16string toUtf16(std::string_view aText) { return transcode<std::u16string>(aText); }

}  // namespace Kelm
