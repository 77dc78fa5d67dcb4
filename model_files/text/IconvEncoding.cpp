#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <map>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "model_files/text/encodings.h"
#include "model_files/text/utf8.h"

namespace umlmm::files {

namespace {

class Converter {
 public:
  Converter(char const* aTo, char const* aFrom) : fHandle(iconv_open(aTo, aFrom)) {
    if (!isValid() && errno != EINVAL) throw std::bad_alloc();
  }
  Converter(Converter const&) = delete;
  Converter& operator=(Converter const&) = delete;
  ~Converter() {
    if (isValid()) iconv_close(fHandle);
  }

  // iconv_open tells a failure by the handle -1.
  bool isValid() const noexcept { return reinterpret_cast<std::intptr_t>(fHandle) != -1; }

  /// Converts from the front of `aIn` as far as it goes, and tells why no further: 0, EILSEQ, or EINVAL for a
  /// character that isn't whole.
  int convert(std::string_view& aIn, std::string& aOut) {
    char* in = const_cast<char*>(aIn.data());
    std::size_t left = aIn.size();
    int const reason = run(&in, &left, aOut);
    aIn.remove_prefix(aIn.size() - left);
    return reason;
  }

  /// Writes what is held back for what might follow, and returns to the state of the beginning.
  void finish(std::string& aOut) { run(nullptr, nullptr, aOut); }

 private:
  int run(char** aIn, std::size_t* aLeft, std::string& aOut) {
    for (;;) {
      char* out = fBuffer.data();
      std::size_t room = fBuffer.size();
      bool const isDone = iconv(fHandle, aIn, aLeft, &out, &room) != static_cast<std::size_t>(-1);
      int const reason = isDone ? 0 : errno;
      aOut.append(fBuffer.data(), out);
      if (reason != E2BIG) return reason;
    }
  }

  iconv_t fHandle;
  std::array<char, 16384> fBuffer;
};

/// Several bytes may be a character, or a state may change by them.
class MultiByteEncoding final : public Encoding {
 public:
  explicit MultiByteEncoding(std::string aName) : fName(std::move(aName)) {
    Both both(fName);
    for (int i = 0; i < 0x80 && !fHasState; ++i) {
      char const byte = static_cast<char>(i);
      std::string text;
      std::string_view rest(&byte, 1);
      fHasState = both.fIn.convert(rest, text) != 0 || text.empty();
      both.fIn.finish(text);
    }
  }

  std::optional<std::string> decoded(std::string aBytes) const override {
    Both both(fName);
    std::string text;
    decode(both, aBytes, true, text);
    if (encode(both, text) == aBytes) return text;
    if (fHasState) return std::nullopt;
    // Some encodings have several ways to write a character, of which they are given back one.
    text = decodedByBlocks(both, aBytes);
    if (encode(both, text) == aBytes) return text;
    return std::nullopt;
  }

  std::string encoded(std::string_view aText) const override {
    Both both(fName);
    return encode(both, aText);
  }

 private:
  struct Both {
    explicit Both(std::string const& aName) : fIn("UTF-8", aName.c_str()), fOut(aName.c_str(), "UTF-8") {}
    Converter fIn;
    Converter fOut;
  };

  static constexpr std::size_t kBlock = 16384;
  static constexpr std::size_t kLongestCharacter = 8;

  /// Appends what bytes mean, and returns how many they are: all, or those up to a character that isn't
  /// whole.
  static std::size_t decode(Both& aBoth, std::string_view aBytes, bool aIsEnd, std::string& aText) {
    std::string_view rest = aBytes;
    for (int reason = 0; (reason = aBoth.fIn.convert(rest, aText)) != 0;) {
      if (reason != EILSEQ && !aIsEnd) break;
      utf8::append(aText, escaped(rest.front()));
      rest.remove_prefix(1);
    }
    aBoth.fIn.finish(aText);
    return aBytes.size() - rest.size();
  }

  static std::string encode(Both& aBoth, std::string_view aText) {
    std::string bytes;
    while (!aText.empty()) {
      // Escaped bytes are taken out first, as an encoding may have all characters for private use.
      std::size_t const end = std::min(utf8::find(aText, isEscapedByte, "\xF4\x8F"), aText.size());
      for (std::string_view piece = aText.substr(0, end); aBoth.fOut.convert(piece, bytes) != 0;) {
        auto const [code, length] = utf8::at(piece, 0);
        std::string const reference = referenceTo(code);
        std::string_view rest = reference;
        aBoth.fOut.convert(rest, bytes);
        piece.remove_prefix(length);
      }
      aText.remove_prefix(end);
      if (aText.empty()) break;
      aBoth.fOut.finish(bytes);
      auto const [code, length] = utf8::at(aText, 0);
      bytes += static_cast<char>(code - kEscapedByte);
      aText.remove_prefix(length);
    }
    aBoth.fOut.finish(bytes);
    return bytes;
  }

  static std::string decodedByBlocks(Both& aBoth, std::string_view aBytes) {
    std::string text;
    while (!aBytes.empty()) {
      std::string piece;
      bool const isEnd = aBytes.size() <= kBlock;
      std::string_view const block = aBytes.substr(0, decode(aBoth, aBytes.substr(0, kBlock), isEnd, piece));
      text += encode(aBoth, piece) == block ? piece : decodedByCharacters(aBoth, block);
      aBytes.remove_prefix(block.size());
    }
    return text;
  }

  /// Escapes each character that doesn't come back as it was.
  static std::string decodedByCharacters(Both& aBoth, std::string_view aBytes) {
    std::string text;
    while (!aBytes.empty()) {
      std::string character;
      std::size_t length = 0;
      int reason = EINVAL;
      while (reason == EINVAL && length < std::min(kLongestCharacter, aBytes.size())) {
        std::string_view rest = aBytes.substr(0, ++length);
        character.clear();
        reason = aBoth.fIn.convert(rest, character);
        aBoth.fIn.finish(character);
      }
      std::string_view const bytes = aBytes.substr(0, reason == 0 ? length : 1);
      if (reason == 0 && encode(aBoth, character) == bytes) {
        text += character;
      } else {
        for (char const byte : bytes) utf8::append(text, escaped(byte));
      }
      aBytes.remove_prefix(bytes.size());
    }
    return text;
  }

  std::string fName;
  /// Whether there are bytes that are no character, but change what follows.
  bool fHasState = false;
};

/// Each byte is a character of the first plane.
class TableEncoding final : public Encoding {
 public:
  using Codes = std::array<char32_t, 256>;

  explicit TableEncoding(Codes const& aCodes) : fBytes(0x10000, -1) {
    for (std::size_t byte = 0; byte < aCodes.size(); ++byte) {
      std::string character;
      utf8::append(character, aCodes[byte]);
      character.copy(fCharacters[byte].data(), kLongest);
      fLengths[byte] = static_cast<unsigned char>(character.size());
      if (!isEscapedByte(aCodes[byte])) fBytes[aCodes[byte]] = static_cast<std::int16_t>(byte);
      if (byte < 0x80 && aCodes[byte] != byte) fHasAscii = false;
    }
  }

  std::optional<std::string> decoded(std::string aBytes) const override {
    std::size_t size = 0;
    for (std::size_t place = 0; place < aBytes.size();) {
      std::size_t const plain = plainEnd(aBytes, place);
      std::size_t const end = std::min(plain + utf8::kWord, aBytes.size());
      size += plain - place;
      for (place = plain; place < end; ++place) size += fLengths[static_cast<unsigned char>(aBytes[place])];
    }
    if (fHasAscii && size == aBytes.size()) return aBytes;
    std::string text(size + kLongest, '\0');
    char* out = text.data();
    for (std::size_t place = 0; place < aBytes.size();) {
      std::size_t const plain = plainEnd(aBytes, place);
      out = std::copy(aBytes.data() + place, aBytes.data() + plain, out);
      place = plain;
      // Copies of one length are the fastest; what is too much is written over.
      for (std::size_t const end = std::min(place + utf8::kWord, aBytes.size()); place < end; ++place) {
        auto const byte = static_cast<unsigned char>(aBytes[place]);
        std::memcpy(out, fCharacters[byte].data(), kLongest);
        out += fLengths[byte];
      }
    }
    text.resize(size);
    return text;
  }

  std::string encoded(std::string_view aText) const override {
    std::string bytes;
    bytes.reserve(aText.size());
    for (std::size_t place = 0; place < aText.size();) {
      std::size_t const plain = plainEnd(aText, place);
      bytes.append(aText, place, plain - place);
      place = plain;
      for (std::size_t const end = std::min(place + utf8::kWord, aText.size()); place < end;) {
        auto const [code, length] = utf8::at(aText, place);
        appendCharacter(bytes, code);
        place += length;
      }
    }
    return bytes;
  }

 private:
  static constexpr std::size_t kLongest = 4;

  /// Where bytes that stand for themselves end, or before it.
  std::size_t plainEnd(std::string_view aBytes, std::size_t aPlace) const noexcept {
    return fHasAscii ? utf8::asciiEnd(aBytes, aPlace) : aPlace;
  }

  void appendCharacter(std::string& aBytes, char32_t aCode) const {
    if (aCode < fBytes.size() && fBytes[aCode] >= 0) {
      aBytes += static_cast<char>(fBytes[aCode]);
    } else if (isEscapedByte(aCode)) {
      aBytes += static_cast<char>(aCode - kEscapedByte);
    } else {
      for (char const byte : referenceTo(aCode)) {
        aBytes += static_cast<char>(fBytes[static_cast<unsigned char>(byte)]);
      }
    }
  }

  std::array<std::array<char, kLongest>, 256> fCharacters{};
  std::array<unsigned char, 256> fLengths{};
  std::vector<std::int16_t> fBytes;
  bool fHasAscii = true;
};

/// The characters of an encoding in which each byte is one, whatever stands before it; else null. There, each
/// takes its own number for what it leaves undefined, if that is free.
std::shared_ptr<TableEncoding const> tableOf(std::string const& aName) {
  Converter converter("UTF-8", aName.c_str());
  TableEncoding::Codes codes{};
  std::vector<std::size_t> undefined;
  std::vector<char32_t> taken;
  for (std::size_t byte = 0; byte < codes.size(); ++byte) {
    char const in = static_cast<char>(byte);
    std::string_view rest(&in, 1);
    std::string text;
    int const reason = converter.convert(rest, text);
    converter.finish(text);
    if (reason == EILSEQ) {
      undefined.push_back(byte);
      continue;
    }
    if (reason != 0 || text.empty()) return nullptr;
    auto const [code, length] = utf8::at(text, 0);
    if (length != text.size() || code > 0xFFFF) return nullptr;
    if (std::find(taken.begin(), taken.end(), code) != taken.end()) return nullptr;
    codes[byte] = code;
    taken.push_back(code);
  }
  if (codes[0] != 0 || undefined.size() > 128) return nullptr;
  for (std::size_t const byte : undefined) {
    bool const isTaken = std::find(taken.begin(), taken.end(), byte) != taken.end();
    codes[byte] = isTaken ? escaped(static_cast<char>(byte)) : static_cast<char32_t>(byte);
  }
  return std::make_shared<TableEncoding>(codes);
}

}  // namespace

std::shared_ptr<Encoding const> iconvEncoding(std::string const& aName) {
  // A table takes as long to make as reading a tenth of a megabyte. Few are ever needed.
  constexpr std::size_t kMostTables = 8;
  static std::mutex sMutex;
  static std::map<std::string, std::shared_ptr<TableEncoding const>> sTables;
  std::lock_guard const lock(sMutex);
  if (auto const known = sTables.find(aName); known != sTables.end()) return known->second;
  if (!Converter("UTF-8", aName.c_str()).isValid() || !Converter(aName.c_str(), "UTF-8").isValid())
    return nullptr;
  if (auto table = tableOf(aName)) {
    if (sTables.size() < kMostTables) sTables.emplace(aName, table);
    return table;
  }
  return std::make_shared<MultiByteEncoding>(aName);
}

}  // namespace umlmm::files
