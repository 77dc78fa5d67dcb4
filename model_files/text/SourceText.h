#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model_files/files.h"
#include "model_files/text/writeFile.h"

namespace umlmm::files {

class Encoding;

/// The text of a file. Everything works on it as UTF-8, and offsets count in that; it goes back to the file's
/// own encoding byte for byte. Views of it hold as long as it
/// lives and isn't moved. Used in one thread at a time.
class SourceText {
 public:
  /// Reads a file, or what comes through a pipe. Raises Error for what can't be read: no such file, no right
  /// to, an encoding that is unknown; NotUml for a folder.
  static SourceText fromFile(std::string const& aPath);
  /// `aName` is what messages call it.
  static SourceText fromBytes(std::string aBytes, std::string aName);

  std::string const& name() const noexcept { return fName; }
  /// The text, without a byte-order mark. Malformed bytes of a file that says it is UTF-8, or says nothing,
  /// stand as they are; of any other encoding they are characters for private use, U+10F000 to U+10FEFF.
  std::string_view utf8() const noexcept { return std::string_view(fText).substr(fMark.size()); }
  /// As declared, in lower case, or found by the first bytes: "utf-8", "windows-1252", "utf-16le".
  std::string const& encoding() const noexcept { return fEncoding; }
  /// Of the file before it was read; empty for bytes.
  FileStamp const& stamp() const noexcept { return fStamp; }
  /// Bytes of the file.
  std::size_t bytes() const noexcept { return fBytes; }
  /// A text, with the changes in it, in the file's encoding and with its byte-order mark: the original bytes
  /// if it is `utf8()`. A character that the encoding lacks becomes a character reference ("&#8364;").
  std::string encoded(std::string_view aText) const;

  /// Line and column of an offset. Lines end with CR, LF or both. What has been gone through for it is not
  /// gone through again.
  Place placeOf(std::size_t aOffset) const;

 private:
  /// What holds where a block of the text begins.
  struct Block {
    std::size_t fLine;
    std::size_t fLineStart;
  };

  std::string fName;
  std::string fEncoding;
  std::shared_ptr<Encoding const> fCodec;
  /// As it stands in the text.
  std::string fMark;
  std::string fText;
  std::size_t fBytes = 0;
  FileStamp fStamp;
  mutable std::vector<Block> fBlocks;
};

/// What a text is that is no UML 2 in XMI: one sentence with the file's name, what it is, and what can be
/// done. Asked when nothing of UML 2 was found in it, of its first bytes and, if it is XML, of its first
/// tags; it never answers an empty text.
std::string whatItIs(SourceText const& aText);
/// Whether bytes are something that no XML starts with (an archive, a database, JSON, nothing at all, ...).
bool isNoXml(std::string_view aBytes) noexcept;

}  // namespace umlmm::files
