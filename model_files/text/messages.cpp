#include "model_files/text/messages.h"

#include "model_files/text/utf8.h"

namespace umlmm::files {

std::string shown(std::string_view aText, std::size_t aMost) {
  std::string text;
  for (std::size_t place = 0; place < aText.size();) {
    auto const [code, length] = utf8::at(aText, place);
    if (place + length > aMost) return text + "...";
    if (code == utf8::kMalformed || code < ' ' || code == 0x7F) {
      text += '?';
    } else {
      text += aText.substr(place, length);
    }
    place += length;
  }
  return text;
}

std::string inQuotes(std::string_view aName) { return '"' + shown(aName, aName.size()) + '"'; }

}  // namespace umlmm::files
