#include "model_files/text/encodings.h"
#include "model_files/text/utf8.h"

namespace umlmm::files {

namespace {

class WideEncoding final : public Encoding {
 public:
  WideEncoding(std::size_t aUnit, bool aIsBigEndian) noexcept : fUnit(aUnit), fIsBigEndian(aIsBigEndian) {}

  std::optional<std::string> decoded(std::string aBytes) const override {
    std::string text;
    text.reserve(aBytes.size() / fUnit + aBytes.size() / fUnit / 8);
    std::size_t place = 0;
    for (; aBytes.size() - place >= fUnit; place += fUnit) {
      char32_t const unit = unitAt(aBytes, place);
      if (unit < 0x80) {
        text += static_cast<char>(unit);
      } else if (fUnit == 4) {
        decodeUnit(text, aBytes, place, unit);
      } else if (decodePair(text, aBytes, place, unit)) {
        place += fUnit;
      }
    }
    for (; place < aBytes.size(); ++place) utf8::append(text, escaped(aBytes[place]));
    return text;
  }

  std::string encoded(std::string_view aText) const override {
    std::string bytes;
    bytes.reserve(aText.size() * fUnit);
    for (std::size_t place = 0; place < aText.size();) {
      auto const [code, length] = utf8::at(aText, place);
      place += length;
      if (code == utf8::kMalformed) {
        appendUnit(bytes, 0xFFFD);
      } else if (isEscapedByte(code)) {
        bytes += static_cast<char>(code - kEscapedByte);
      } else if (fUnit == 4 || code < 0x10000) {
        appendUnit(bytes, code);
      } else if (isEscapedSurrogate(code)) {
        appendUnit(bytes, code - kEscapedSurrogate + 0xD800);
      } else {
        appendUnit(bytes, 0xD800 + ((code - 0x10000) >> 10));
        appendUnit(bytes, 0xDC00 + ((code - 0x10000) & 0x3FF));
      }
    }
    return bytes;
  }

 private:
  char32_t unitAt(std::string const& aBytes, std::size_t aPlace) const noexcept {
    char32_t unit = 0;
    for (std::size_t i = 0; i < fUnit; ++i) {
      unit = unit << 8 | static_cast<unsigned char>(aBytes[aPlace + (fIsBigEndian ? i : fUnit - 1 - i)]);
    }
    return unit;
  }

  void appendUnit(std::string& aBytes, char32_t aUnit) const {
    for (std::size_t i = 0; i < fUnit; ++i) {
      aBytes += static_cast<char>(aUnit >> (fIsBigEndian ? fUnit - 1 - i : i) * 8 & 0xFF);
    }
  }

  /// Characters that stand for what is none are escaped themselves, so that all bytes come back.
  void decodeUnit(std::string& aText, std::string const& aBytes, std::size_t aPlace, char32_t aUnit) const {
    if (aUnit <= 0x10FFFF && !utf8::isSurrogate(aUnit) && !isEscapedByte(aUnit)) {
      utf8::append(aText, aUnit);
      return;
    }
    for (std::size_t i = 0; i < fUnit; ++i) utf8::append(aText, escaped(aBytes[aPlace + i]));
  }

  /// A character of UTF-16; true if it has taken two units.
  bool decodePair(std::string& aText, std::string const& aBytes, std::size_t aPlace, char32_t aUnit) const {
    if (!utf8::isSurrogate(aUnit)) {
      utf8::append(aText, aUnit);
      return false;
    }
    if (aUnit < 0xDC00 && aBytes.size() - aPlace >= 2 * fUnit) {
      char32_t const low = unitAt(aBytes, aPlace + fUnit);
      char32_t const code = 0x10000 + ((aUnit - 0xD800) << 10) + (low - 0xDC00);
      if (low >= 0xDC00 && low < 0xE000 && !isEscapedByte(code) && !isEscapedSurrogate(code)) {
        utf8::append(aText, code);
        return true;
      }
    }
    utf8::append(aText, kEscapedSurrogate + (aUnit - 0xD800));
    return false;
  }

  std::size_t fUnit;
  bool fIsBigEndian;
};

}  // namespace

std::shared_ptr<Encoding const> wideEncoding(std::size_t aUnit, bool aIsBigEndian) {
  return std::make_shared<WideEncoding>(aUnit, aIsBigEndian);
}

}  // namespace umlmm::files
