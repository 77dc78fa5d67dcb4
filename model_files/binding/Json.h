#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace umlmm::files::mi {

/// A text of JSON that grows as its values come: commas are put where they belong, and malformed UTF-8 passes
/// as it is. Whoever opens an array or object closes it.
class Json {
 public:
  Json& open(char aBracket) {
    separate();
    fText += aBracket;
    fIsFirst = true;
    return *this;
  }
  Json& close(char aBracket) {
    fText += aBracket;
    fIsFirst = false;
    return *this;
  }
  Json& key(std::string_view aName) {
    value(aName);
    fText += ':';
    fIsFirst = true;
    return *this;
  }
  Json& value(std::string_view aText) {
    separate();
    fText += '"';
    for (char const character : aText) put(character);
    fText += '"';
    return *this;
  }
  Json& value(std::integral auto aNumber) {
    separate();
    fText += std::to_string(aNumber);
    return *this;
  }
  /// A member of an object.
  Json& member(std::string_view aName, auto const& aValue) { return key(aName).value(aValue); }

  std::string const& text() const noexcept { return fText; }

 private:
  void separate() {
    if (!fIsFirst) fText += ',';
    fIsFirst = false;
  }
  void put(char aCharacter) {
    if (aCharacter == '"' || aCharacter == '\\') {
      (fText += '\\') += aCharacter;
    } else if (static_cast<unsigned char>(aCharacter) < 0x20) {
      constexpr char kDigits[] = "0123456789abcdef";
      auto const code = static_cast<unsigned char>(aCharacter);
      ((fText += "\\u00") += kDigits[code >> 4]) += kDigits[code & 15];
    } else {
      fText += aCharacter;
    }
  }

  std::string fText;
  bool fIsFirst = true;
};

}  // namespace umlmm::files::mi
