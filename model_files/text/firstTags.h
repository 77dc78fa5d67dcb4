#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace umlmm::files {

/// A start tag as written. Its views live as long as the text.
struct Tag {
  /// "XMI" of "xmi:XMI".
  std::string_view local() const noexcept { return fName.substr(fName.rfind(':') + 1); }
  bool has(std::string_view aAttribute) const noexcept;
  /// Empty for one that it hasn't.
  std::string_view attribute(std::string_view aName) const noexcept;

  std::string_view fName;
  /// Empty for none; of a prefix that is not declared, too.
  std::string_view fNamespace;
  std::vector<std::pair<std::string_view, std::string_view>> fAttributes;
  /// 0 for the root.
  std::size_t fDepth = 0;
  /// "<a/>".
  bool fIsEmpty = false;
};

/// The beginning of a text of XML, as far as it can be told without being strict about it.
struct FirstTags {
  std::string_view fDoctype;
  std::vector<Tag> fTags;
  /// Of the text; they are in scope at the root.
  std::vector<std::string_view> fNamespaces;
};

FirstTags firstTags(std::string_view aText, std::size_t aMost);

}  // namespace umlmm::files
