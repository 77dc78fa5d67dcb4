#include "model_files/text/markup.h"

#include <algorithm>
#include <pugixml.hpp>

namespace umlmm::files::markup {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

/// Behind what starts with "<" here and is no element: a comment, an instruction, a section of characters.
std::size_t skipOther(std::string_view aText, std::size_t aAt) {
  struct Kind {
    std::string_view fStart;
    std::string_view fEnd;
  };
  static constexpr Kind kKinds[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"<!", ">"}};
  for (auto const& [start, end] : kKinds)
    if (aText.substr(aAt).starts_with(start)) {
      std::size_t const found = aText.find(end, aAt + start.size());
      return found == std::string_view::npos ? aText.size() : found + end.size();
    }
  return aAt;
}

}  // namespace

std::size_t endOfStart(std::string_view aText, std::size_t aName, bool& aIsEmpty) {
  char quote = 0;
  for (std::size_t at = aName; at < aText.size(); ++at) {
    char const character = aText[at];
    if (quote != 0) {
      if (character == quote) quote = 0;
    } else if (character == '"' || character == '\'') {
      quote = character;
    } else if (character == '>') {
      aIsEmpty = aText[at - 1] == '/';
      return at + 1;
    }
  }
  aIsEmpty = true;
  return aText.size();
}

std::string_view element(std::string_view aText, std::size_t aName) {
  std::size_t const start = aName - 1;
  bool isEmpty = false;
  std::size_t at = endOfStart(aText, aName, isEmpty);
  for (int depth = isEmpty ? 0 : 1; depth > 0;) {
    at = aText.find('<', at);
    if (at == std::string_view::npos || at + 1 >= aText.size()) return aText.substr(start);
    if (aText[at + 1] == '/') {
      --depth;
      at = std::min(aText.find('>', at), aText.size() - 1) + 1;
    } else if (std::size_t const behind = skipOther(aText, at); behind != at) {
      at = behind;
    } else {
      at = endOfStart(aText, at + 1, isEmpty);
      if (!isEmpty) ++depth;
    }
  }
  return aText.substr(start, at - start);
}

std::size_t prologEnd(std::string_view aText) {
  std::size_t at = aText.find('<');
  while (at < aText.size()) {
    std::size_t const behind = skipOther(aText, at);
    if (behind == at) return at;
    at = aText.find('<', behind);
  }
  return aText.size();
}

std::string_view nameAt(std::string_view aText, std::size_t aName) {
  return aText.substr(aName, aText.find_first_of(" \t\r\n/>", aName) - aName);
}

std::vector<Attribute> attributes(std::string_view aText, std::size_t aName) {
  std::vector<Attribute> all;
  std::size_t at = aName + nameAt(aText, aName).size();
  while ((at = aText.find_first_not_of(kBlanks, at)) < aText.size() && aText[at] != '/' && aText[at] != '>') {
    all.push_back(attribute(aText, at));
    at = all.back().fTo;
  }
  return all;
}

std::vector<Child> children(std::string_view aText, std::size_t aName, std::size_t& aEnd) {
  std::vector<Child> all;
  bool isEmpty = false;
  std::size_t at = endOfStart(aText, aName, isEmpty);
  aEnd = 0;
  while (!isEmpty && (at = aText.find('<', at)) < aText.size()) {
    if (aText[at + 1] == '/') {
      aEnd = at;
      break;
    }
    std::size_t const behind = skipOther(aText, at);
    if (behind == at) {
      all.push_back({at + 1, at, at + element(aText, at + 1).size()});
      at = all.back().fTo;
    } else {
      at = behind;
    }
  }
  return all;
}

Attribute attribute(std::string_view aText, std::size_t aName) {
  std::size_t const end = aText.find_first_of(" \t\r\n=", aName);
  std::size_t const open = aText.find_first_of("\"'", end);
  std::size_t const close = aText.find(aText[open], open + 1);
  return {aText.substr(aName, end - aName), aName, close + 1, aText.substr(open + 1, close - open - 1),
          aText[open]};
}

std::string Attribute::value() const {
  pugi::xml_document document;
  std::string text = "<a b=";
  ((text += fQuote) += fRaw) += fQuote;
  text += "/>";
  document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
  return document.first_child().first_attribute().value();
}

namespace {

/// Whether a name, "=" and a text in quotes stand at an offset.
bool isAttribute(std::string_view aText, std::size_t aAt) {
  std::size_t at = aText.find_first_of(" \t\r\n=\"'<>", aAt);
  at = aText.find_first_not_of(kBlanks, at);
  if (at == std::string_view::npos || aText[at] != '=') return false;
  at = aText.find_first_not_of(kBlanks, at + 1);
  return at != std::string_view::npos && (aText[at] == '"' || aText[at] == '\'') &&
         aText.find(aText[at], at + 1) != std::string_view::npos;
}

}  // namespace

std::vector<std::size_t> declarations(std::string_view aText) {
  constexpr std::string_view kName = "xmlns:";
  std::vector<std::size_t> found;
  for (std::size_t at = aText.find(kName); at != std::string_view::npos;
       at = aText.find(kName, at + kName.size()))
    if (at > 0 && kBlanks.find(aText[at - 1]) != std::string_view::npos && isAttribute(aText, at))
      found.push_back(at);
  return found;
}

std::string declaration(std::string_view aText, std::vector<std::size_t> const& aDeclarations,
                        std::size_t aOffset, std::string_view aPrefix) {
  std::string const name = "xmlns:" + std::string(aPrefix);
  bool isEmpty = false;
  auto at = std::ranges::lower_bound(aDeclarations, endOfStart(aText, aOffset, isEmpty));
  while (at != aDeclarations.begin()) {
    Attribute const found = attribute(aText, *--at);
    if (found.fName == name) return found.value();
  }
  return {};
}

std::string escaped(std::string_view aText, char aQuote) {
  std::string text;
  for (char const character : aText) {
    switch (character) {
      case '&':
        text += "&amp;";
        break;
      case '<':
        text += "&lt;";
        break;
      case '"':
      case '\'':
        if (character == aQuote)
          text += aQuote == '"' ? "&quot;" : "&apos;";
        else
          text += character;
        break;
      case '\n':
        text += "&#xA;";
        break;
      case '\r':
        text += "&#xD;";
        break;
      case '\t':
        text += "&#x9;";
        break;
      default:
        text += character;
    }
  }
  return text;
}

std::string escapedText(std::string_view aText) {
  std::string text;
  for (char const character : aText) {
    if (character == '&')
      text += "&amp;";
    else if (character == '<')
      text += "&lt;";
    else if (character == '>')
      text += "&gt;";
    else if (character == '\r')
      text += "&#xD;";
    else
      text += character;
  }
  return text;
}

void writeValue(std::string_view aName, std::string_view aText, std::string& aOut) {
  ((aOut += '<') += aName) += '>';
  // Blanks alone between tags are taken for layout.
  if (aText.find_first_not_of(kBlanks) == std::string_view::npos)
    for (char const blank : aText) ((aOut += "&#") += std::to_string(static_cast<int>(blank))) += ';';
  else
    aOut += escapedText(aText);
  (aOut += "</") += aName;
  aOut += '>';
}

}  // namespace umlmm::files::markup
