#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Pieces of an XML text that is known to be well-formed, found by their places: a parser tells where names
/// stand, not where what they name ends.
namespace umlmm::files::markup {

/// The whole element whose name stands at the offset, from its "<" to behind its end tag.
std::string_view element(std::string_view aText, std::size_t aName);
/// The offset behind the start tag whose name stands at the offset; `aIsEmpty` tells whether it ends in "/>".
std::size_t endOfStart(std::string_view aText, std::size_t aName, bool& aIsEmpty);

struct Attribute {
  std::string_view fName;
  /// Of the name, and behind the closing quote.
  std::size_t fFrom;
  std::size_t fTo;
  /// Between the quotes, as written.
  std::string_view fRaw;
  char fQuote;
  /// With references replaced.
  std::string value() const;
};
/// All attributes of the tag whose name stands at the offset.
std::vector<Attribute> attributes(std::string_view aText, std::size_t aName);
/// A child of an element: where its name stands, and it all from "<" to behind the end tag.
struct Child {
  std::size_t fName;
  std::size_t fFrom;
  std::size_t fTo;
};
/// The children of the element whose name stands at the offset; `aEnd` becomes the offset of its end tag, or
/// 0 for an element without one.
std::vector<Child> children(std::string_view aText, std::size_t aName, std::size_t& aEnd);
/// Behind what comes before the first tag: declaration, comments, instructions.
std::size_t prologEnd(std::string_view aText);
/// The name at an offset.
std::string_view nameAt(std::string_view aText, std::size_t aName);

/// The attribute whose name stands at the offset.
Attribute attribute(std::string_view aText, std::size_t aName);

/// Where namespaces are given prefixes, in order.
std::vector<std::size_t> declarations(std::string_view aText);
/// The namespace of a prefix at an offset: of the declarations before it, the one that stands last.
std::string declaration(std::string_view aText, std::vector<std::size_t> const& aDeclarations,
                        std::size_t aOffset, std::string_view aPrefix);

/// A text as it is written between quotes or between tags; those of its characters that can't stand there
/// become references.
std::string escaped(std::string_view aText, char aQuote);
std::string escapedText(std::string_view aText);
/// A text as a tag of its own.
void writeValue(std::string_view aName, std::string_view aText, std::string& aOut);

}  // namespace umlmm::files::markup
