#include "model_files/text/Encoding.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "model_files/text/encodings.h"
#include "model_files/text/utf8.h"

namespace umlmm::files {

namespace {

class Utf8 final : public Encoding {
 public:
  std::optional<std::string> decoded(std::string aBytes) const override { return aBytes; }
  std::string encoded(std::string_view aText) const override { return std::string(aText); }
};

constexpr bool isDigit(char aByte) noexcept { return aByte >= '0' && aByte <= '9'; }
constexpr bool isLetter(char aByte) noexcept { return aByte >= 'a' && aByte <= 'z'; }
std::string lowerCase(std::string_view aText) {
  std::string text(aText);
  for (char& byte : text) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte + ('a' - 'A'));
  }
  return text;
}

/// Names of the field, without marks between letters, for those of iconv. Where a vendor has added characters
/// to a standard under its name, it is the vendor's.
constexpr std::array<std::pair<std::string_view, std::string_view>, 13> kSpellings{{
    {"ansi", "CP1252"},
    {"euckr", "UHC"},
    {"gb2312", "GBK"},
    {"iso88598e", "ISO-8859-8"},
    {"iso88598i", "ISO-8859-8"},
    {"ksc56011987", "UHC"},
    {"macroman", "MACINTOSH"},
    {"mskanji", "CP932"},
    {"shiftjis", "CP932"},
    {"sjis", "CP932"},
    {"xgbk", "GBK"},
    {"xmacroman", "MACINTOSH"},
    {"xsjis", "CP932"},
}};

/// "windows-1252" and "Cp1252" in all their spellings.
constexpr std::array<std::string_view, 6> kCodePages{"ansi", "codepage", "cp", "ms", "win", "windows"};

std::string codePage(std::string_view aKey) {
  if (aKey.starts_with('x')) aKey.remove_prefix(1);
  auto const digits = std::find_if(aKey.begin(), aKey.end(), isDigit);
  std::string_view const number = aKey.substr(static_cast<std::size_t>(digits - aKey.begin()));
  std::string_view const prefix = aKey.substr(0, aKey.size() - number.size());
  bool const isOne = !number.empty() && std::all_of(number.begin(), number.end(), isDigit) &&
                     std::find(kCodePages.begin(), kCodePages.end(), prefix) != kCodePages.end();
  return isOne ? "CP" + std::string(number) : std::string();
}

/// The value of `encoding` in a declaration of XML that a text in ASCII begins with, in lower case.
std::string declared(std::string_view aText) {
  std::string const text = lowerCase(aText.substr(0, std::min<std::size_t>(aText.size(), 1024)));
  auto place = static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isBlank) - text.begin());
  if (text.compare(place, 5, "<?xml") != 0 || place + 5 >= text.size() || !isBlank(text[place + 5]))
    return {};
  std::string_view const prolog = std::string_view(text).substr(0, text.find('>', place));
  auto const skipBlanks = [&] {
    while (place < prolog.size() && isBlank(prolog[place])) ++place;
    return place < prolog.size() ? prolog[place] : '\0';
  };
  place = prolog.find("encoding", place);
  if (place == std::string_view::npos) return {};
  place += std::string_view("encoding").size();
  if (skipBlanks() != '=') return {};
  ++place;
  char const quote = skipBlanks();
  if (quote != '"' && quote != '\'') return {};
  ++place;
  skipBlanks();
  std::size_t end = prolog.find(quote, place);
  if (end == std::string_view::npos) return {};
  while (end > place && isBlank(prolog[end - 1])) --end;
  return std::string(prolog.substr(place, end - place));
}

}  // namespace

Encoding::~Encoding() = default;

std::string referenceTo(char32_t aCode) {
  return "&#" + std::to_string(aCode == utf8::kMalformed ? 0xFFFD : aCode) + ';';
}

std::shared_ptr<Encoding const> Encoding::named(std::string_view aName) {
  std::string const name = lowerCase(aName);
  std::string key;
  for (char const byte : name) {
    if (isLetter(byte) || isDigit(byte)) {
      key += byte;
    } else if (std::string_view("-_.:").find(byte) == std::string_view::npos) {
      return nullptr;  // iconv takes more than names: "latin1//translit"
    }
  }
  if (key.empty()) return nullptr;
  if (key.ends_with("utf8")) return std::make_shared<Utf8>();
  for (std::size_t const unit : {2, 4}) {
    for (bool const isBig : {false, true}) {
      if (key == (unit == 2 ? "utf16" : "utf32") + std::string(isBig ? "be" : "le")) {
        return wideEncoding(unit, isBig);
      }
    }
  }
  auto const spelling = std::find_if(kSpellings.begin(), kSpellings.end(),
                                     [&](auto const& aSpelling) { return aSpelling.first == key; });
  if (spelling != kSpellings.end()) return iconvEncoding(std::string(spelling->second));
  for (std::string const& spelled : {name, key, codePage(key)}) {
    if (spelled.empty()) continue;
    if (auto encoding = iconvEncoding(spelled)) return encoding;
  }
  return nullptr;
}

std::string_view wideUnitsOf(std::string_view aBytes) noexcept {
  using namespace std::string_view_literals;
  if (aBytes.starts_with("\xFF\xFE\0\0"sv)) return "utf-32le";
  if (aBytes.starts_with("\0\0\xFE\xFF"sv)) return "utf-32be";
  if (aBytes.starts_with("\xFF\xFE"sv)) return "utf-16le";
  if (aBytes.starts_with("\xFE\xFF"sv)) return "utf-16be";
  if (aBytes.size() < 4) return {};
  auto const hasTextAt = [&](std::string_view aPattern) {
    for (std::size_t i = 0; i < aPattern.size(); ++i) {
      bool const isText = isBlank(aBytes[i]) || (aBytes[i] >= ' ' && aBytes[i] <= '~');
      if (aPattern[i] == 'x' ? !isText : aBytes[i] != '\0') return false;
    }
    return true;
  };
  if (hasTextAt("x0x0")) return "utf-16le";
  if (hasTextAt("0x0x")) return "utf-16be";
  if (hasTextAt("x000")) return "utf-32le";
  if (hasTextAt("000x")) return "utf-32be";
  return {};
}

std::string encodingOf(std::string_view aBytes) {
  if (auto const wide = wideUnitsOf(aBytes); !wide.empty()) return std::string(wide);
  if (aBytes.starts_with("\xEF\xBB\xBF")) return "utf-8";
  bool const isEbcdic = isEbcdicXml(aBytes);
  std::string const usual = isEbcdic ? "ibm037" : "utf-8";
  std::string name;
  if (!isEbcdic) {
    name = declared(aBytes);
  } else if (auto const ebcdic = Encoding::named(usual)) {
    name = declared(ebcdic->decoded(std::string(aBytes.substr(0, 1024))).value_or(""));
  }
  if (name.empty()) return usual;
  // A text that names UTF-16 in ASCII is not in UTF-16: strings of programs are written out with such a
  // claim.
  auto const encoding = Encoding::named(name);
  std::string const mark(isEbcdic ? kEbcdicXml : "<?xm");
  return encoding && encoding->decoded(mark) != "<?xm" ? usual : name;
}

}  // namespace umlmm::files
