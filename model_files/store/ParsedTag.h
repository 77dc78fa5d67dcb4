#pragma once

#include <cstdint>
#include <new>
#include <pugixml.hpp>
#include <string_view>

#include "model_files/text/SourceText.h"
#include "model_files/text/markup.h"

namespace umlmm::files {

/// A tag of a text, parsed by itself.
class ParsedTag {
 public:
  explicit ParsedTag(std::string_view aTag) {
    auto const result = fDocument.load_buffer(
        aTag.data(), aTag.size(), pugi::parse_default | pugi::parse_fragment, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();
  }
  ParsedTag(SourceText const& aText, std::uint64_t aOffset)
      : ParsedTag(markup::element(aText.utf8(), aOffset)) {}
  pugi::xml_node node() const { return fDocument.first_child(); }

 private:
  pugi::xml_document fDocument;
};

}  // namespace umlmm::files
