#include "model_files/reading/Pieces.h"

#include <algorithm>
#include <new>

namespace umlmm::files {

namespace {

/// Put behind a piece: a tag of which nothing follows.
constexpr std::string_view kEnd = "<:end/>\n";
constexpr unsigned kFlags = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_wconv_attribute |
                            pugi::parse_eol | pugi::parse_embed_pcdata | pugi::parse_fragment;

}  // namespace

pugi::xml_parse_result Pieces::parse(std::size_t aFrom, std::size_t aLength,
                                     std::vector<std::string_view> const& aOpen) {
  std::string opening;
  for (std::string_view const name : aOpen) ((opening += '<') += name) += '>';
  std::size_t const rest = fText.size() - aFrom;
  // With many open elements a piece is longer, so that all of them together take no more than the text.
  for (std::size_t length = std::max({fLength, aLength, opening.size()});; length *= 2) {
    bool const isLast = length >= rest;
    std::size_t const size = isLast ? rest : fText.substr(aFrom, length).rfind('<');
    if (!isLast && (size == 0 || size == std::string_view::npos)) continue;
    fBuffer.assign(opening).append(fText, aFrom, size);
    if (!isLast) fBuffer += kEnd;
    fFrom = aFrom;
    fTried = length;
    fEndOffset = aFrom + size;
    fPiece = fBuffer.data() + opening.size();
    pugi::xml_parse_result result =
        fDocument.load_buffer_inplace(fBuffer.data(), fBuffer.size(), kFlags, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();
    fOpen.clear();
    fEnd = {};
    if (!isLast && !findEnd(fPiece + size + 1)) continue;
    result.offset = std::max<std::ptrdiff_t>(result.offset - static_cast<std::ptrdiff_t>(opening.size()), 0) +
                    static_cast<std::ptrdiff_t>(aFrom);
    // That elements are not closed before the end is no failure of a piece.
    if (!isLast) result.status = pugi::status_ok;
    return result;
  }
}

bool Pieces::findEnd(char const* aName) {
  // Otherwise the end stands inside of a comment or the like, or something before it is wrong.
  pugi::xml_node node = fDocument;
  while (pugi::xml_node const last = node.last_child()) {
    fOpen.push_back(last);
    node = last;
  }
  if (fOpen.empty() || node.name() != aName) return false;
  fOpen.pop_back();
  fEnd = node;
  return true;
}

}  // namespace umlmm::files
