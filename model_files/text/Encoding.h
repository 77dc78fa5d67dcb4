#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace umlmm::files {

/// A way to write texts as bytes. What is decoded is well-formed UTF-8 (but for the encoding UTF-8 itself,
/// whose bytes stay as they are) and encodes to the very bytes that it came from: what no character stands
/// for, such as half a character, becomes characters of the last plane for private use, of which the encoding
/// has none.
class Encoding {
 public:
  Encoding() = default;
  Encoding(Encoding const&) = delete;
  Encoding& operator=(Encoding const&) = delete;
  virtual ~Encoding();

  /// Nothing, if there are bytes that could not come back.
  virtual std::optional<std::string> decoded(std::string aBytes) const = 0;
  /// A character that the encoding lacks becomes a character reference.
  virtual std::string encoded(std::string_view aText) const = 0;

  /// By its name in any case, or by one of the spellings of the field ("utf8", "Cp1252", "x-sjis"); null if
  /// it is unknown.
  static std::shared_ptr<Encoding const> named(std::string_view aName);
};

/// The name of the encoding that bytes tell by a mark, by where their zeros are, or by a declaration of XML
/// that these allow; "utf-8" for want of any. In lower case, as declared.
std::string encodingOf(std::string_view aBytes);

}  // namespace umlmm::files
