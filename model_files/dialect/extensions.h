#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What a tool keeps of elements in its own part of a file alone: their documentation, stereotypes and tags.
namespace umlmm::files {

/// Whether an "xmi:Extension" is that of a tool which keeps entries about elements there. Tools that are not
/// known have none.
bool hasEntries(pugi::xml_node aExtension);
/// Whether a tag is a list of entries.
bool holdsEntries(pugi::xml_node aNode);
/// Calls `aVisit` with the entry that a tag is, if it is one, and with each inside of it, and the id of the
/// element that it is about.
template <class Visit>
void forEachEntry(pugi::xml_node aNode, Visit const& aVisit);

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
bool isEntry(pugi::xml_node aNode);
}  // namespace detail

template <class Visit>
void forEachEntry(pugi::xml_node aNode, Visit const& aVisit) {
  pugi::xml_attribute const id = aNode.attribute("xmi:idref");
  bool const isEntry = id && detail::isEntry(aNode);
  if (isEntry) aVisit(aNode, std::string_view(id.value()));
  if (!isEntry && !holdsEntries(aNode)) return;
  for (pugi::xml_node const child : aNode.children()) forEachEntry(child, aVisit);
}

}  // namespace umlmm::files
