#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "model_files/text/markup.h"
#include "model_files/writing/Edits.h"
#include "model_files/writing/Tags.h"

namespace umlmm::files {

/// Changes of the tags of a text: what is new is written as what stands around it.
class TagEdits : public Edits {
 public:
  using Layout = Tags::Layout;

  /// A tag with its children, looked at when something in it changes.
  struct Tag {
    std::vector<markup::Attribute> fAttributes;
    std::vector<markup::Child> fChildren;
    std::size_t fName = 0;
    /// Behind the last attribute.
    std::size_t fLast = 0;
    /// Of the end tag; 0 for none.
    std::size_t fEnd = 0;
  };

  TagEdits(std::string_view aText, char aQuote);

  std::string_view text() const noexcept { return fText; }
  Layout const& layout() const noexcept { return fLayout; }
  /// Blanks between the start of a line and an offset; nothing if there is more on the line.
  std::string_view indentAt(std::size_t aFrom) const;

  Tag tagOf(std::size_t aName) const;
  /// `aOld` is null for one that is not there yet.
  void setAttribute(Tag const& aTag, markup::Attribute const* aOld, std::string_view aName,
                    std::string const& aValue);
  void removeAttribute(markup::Attribute const& aAttribute);
  /// With its line, if it has one to itself.
  void removeTag(std::size_t aFrom, std::size_t aTo);
  /// New tags in the place of old ones, one after another; those that are too many go, those that lack a
  /// place come behind.
  void replaceChildren(Tag const& aTag, std::vector<markup::Child> const& aOld, std::vector<Write> aNew);
  /// Behind what ends at an offset; 0 for behind all.
  void addChild(Tag const& aTag, std::size_t aBehind, Write aChild);
  /// A tag on a line of its own behind what stands between two offsets.
  void addBehind(std::size_t aFrom, std::size_t aTo, Write aTag);
  /// To be called once, when all changes are there: what was added to tags without children comes in.
  void flushChildren();

 private:
  std::string_view fText;
  char fQuote;
  Layout fLayout;
  /// Children of tags that have none, by the place of the tag's name.
  std::map<std::size_t, std::vector<Write>> fFirstChildren;
};

}  // namespace umlmm::files
