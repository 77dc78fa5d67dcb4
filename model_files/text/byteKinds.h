#pragma once

#include <string>
#include <string_view>

namespace umlmm::files {

/// What something is, and what can be done with it: halves of a sentence.
struct Kind {
  std::string fWhat;
  std::string fAdvice;
};

/// What has to be done in the tool that a file comes from.
inline constexpr std::string_view kExport =
    "export the model from its tool as XMI 2.1 or later, or as Eclipse UML2, and open that file";
inline constexpr std::string_view kUnpack = "unpack it and open the model file in it";

/// Of a text that is no XML. The file's name tells what its bytes alone don't.
Kind kindOfBytes(std::string_view aText, std::string_view aName);
/// Of an archive, by the names in it.
Kind kindOfZip(std::string_view aBytes);

}  // namespace umlmm::files
