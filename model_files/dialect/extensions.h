#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What a tool keeps of elements in its own part of a file alone: their documentation, stereotypes and tags.
namespace umlmm::files {

/// Calls `aVisit` with each entry of an "xmi:Extension" that is about an element, and the element's id. Tools
/// that are not known have none.
template <class Visit>
void forEachEntry(pugi::xml_node aExtension, Visit aVisit);

/// A child of an entry, and an attribute of it.
struct EntryPlace {
  char const* fTag;
  char const* fAttribute;
};
/// Where the stereotype stands, and where all are listed:
/// "…@STEREO;Name=Order;FQName=Shop::Order;@ENDSTEREO;…" between "$XREFPROP=" and "$ENDXREF;".
inline constexpr EntryPlace kStereotypePlaces[] = {{"properties", "stereotype"},
                                                   {"stereotype", "stereotype"}};
inline constexpr EntryPlace kXrefs{"xrefs", "value"};

/// The attribute with the stereotype's name; none if it has no stereotype.
pugi::xml_attribute stereotypeIn(pugi::xml_node aEntry);
/// The profile that a stereotype is from; empty if the entry doesn't tell.
std::string profileIn(pugi::xml_node aEntry, std::string_view aStereotype);
/// Tags, and as "documentation" what the tool's user has written about the element.
std::vector<std::pair<std::string, std::string>> valuesIn(pugi::xml_node aEntry);

namespace detail {
bool hasEntries(pugi::xml_node aExtension);
bool isEntry(pugi::xml_node aNode);
bool holdsEntries(pugi::xml_node aNode);
}  // namespace detail

template <class Visit>
void forEachEntry(pugi::xml_node aExtension, Visit aVisit) {
  if (!detail::hasEntries(aExtension)) return;
  auto const go = [&](auto const& aSelf, pugi::xml_node aNode) -> void {
    for (pugi::xml_node const child : aNode.children()) {
      pugi::xml_attribute const id = child.attribute("xmi:idref");
      bool const isEntry = id && detail::isEntry(child);
      if (isEntry) aVisit(child, std::string_view(id.value()));
      if (isEntry || detail::holdsEntries(child)) aSelf(aSelf, child);
    }
  };
  go(go, aExtension);
}

}  // namespace umlmm::files
