#include <cstdlib>
#include <cstring>
#include <string_view>

#include "foundation/except.h"
#include "lum/lum.h"
#include "tarn/tarn.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isHighSurrogate(char32_t c) noexcept { return c >= 0xD800 && c < 0xDC00; }
bool isLowSurrogate(char32_t c) noexcept { return c >= 0xDC00 && c < 0xE000; }

/// Reads one character and moves on; a broken sequence reads as the replacement character. Three-byte
/// surrogates are accepted, so that what appendUtf8 wrote comes back.
char32_t readUtf8(char const*& text) noexcept {
  auto const lead = static_cast<unsigned char>(*text++);
  if (lead < 0x80) return lead;
  int const more = lead >= 0xF0 && lead < 0xF5   ? 3
                   : lead >= 0xE0 && lead < 0xF0 ? 2
                   : lead >= 0xC2 && lead < 0xE0 ? 1
                                                 : 0;
  if (more == 0) return kReplacement;
  char32_t c = lead & (0x3Fu >> more);
  for (int i = 0; i < more; ++i) {
    auto const next = static_cast<unsigned char>(*text);
    if ((next & 0xC0) != 0x80) return kReplacement;
    c = (c << 6) | (next & 0x3Fu);
    ++text;
  }
  constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
  return c < kSmallest[more] || c > 0x10FFFF ? kReplacement : c;
}

void appendUtf16(std::u16string& text, char32_t c) {
  if (c < 0x10000) {
    text.push_back(static_cast<char16_t>(c));
    return;
  }
  text.push_back(static_cast<char16_t>(0xD7C0 + (c >> 10)));
  text.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
}

void appendUtf8(std::string& text, char32_t c) {
  auto const tail = [&](int shift) { text.push_back(static_cast<char>(0x80 | ((c >> shift) & 0x3F))); };
  if (c < 0x80) {
    text.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    text.push_back(static_cast<char>(0xC0 | (c >> 6)));
    tail(0);
  } else if (c < 0x10000) {
    text.push_back(static_cast<char>(0xE0 | (c >> 12)));
    tail(6);
    tail(0);
  } else {
    text.push_back(static_cast<char>(0xF0 | (c >> 18)));
    tail(12);
    tail(6);
    tail(0);
  }
}

std::string narrow(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1]))
      c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
    appendUtf8(result, c);
  }
  return result;
}

}  // namespace

tarnArray* tarnCreateString(char const* text) {
  std::u16string wide;
  while (*text) appendUtf16(wide, readUtf8(text));
  return tarnCreateStringOfLength(wide.data(), wide.size());
}

char* tarnArrayToString_UTF8(tarnArray const* array) {
  std::string const text = narrow(tarn::textOf(array));
  auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (!copy) throw foundation::core::except::bad_alloc();
  std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

char* tarnArray2String(tarnArray const* array) { return tarnArrayToString_UTF8(array); }

void tarnFree(void* text) noexcept { lumFree(text); }

std::u16string tarn::get_ustring(tarnArray const* array) { return std::u16string(textOf(array)); }
