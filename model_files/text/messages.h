#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Texts of files and names of files as parts of a message.
namespace umlmm::files {

/// Well-formed UTF-8 in one line, whatever was given; with dots behind it if it is cut.
std::string shown(std::string_view aText, std::size_t aMost = 200);
/// A name of any length.
std::string inQuotes(std::string_view aName);

}  // namespace umlmm::files
