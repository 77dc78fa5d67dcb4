#include "model_files/dialect/extensions.h"

#include <algorithm>
#include <array>

namespace umlmm::files {

namespace {

constexpr std::string_view kExtender = "Enterprise Architect";
constexpr std::array<std::string_view, 4> kLists{"elements", "attributes", "operations", "connectors"};
constexpr std::array<std::string_view, 4> kEntries{"element", "attribute", "operation", "connector"};

using Place = EntryPlace;
constexpr Place kDocumentation[] = {{"properties", "documentation"}, {"documentation", "value"}};

/// The first that says something.
template <std::size_t kCount>
pugi::xml_attribute attributeAt(pugi::xml_node aEntry, Place const (&aPlaces)[kCount]) {
  for (Place const& place : aPlaces) {
    pugi::xml_attribute const found = aEntry.child(place.fTag).attribute(place.fAttribute);
    if (*found.value() != '\0') return found;
  }
  return {};
}

bool isOneOf(pugi::xml_node aNode, std::array<std::string_view, 4> const& aNames) {
  return std::ranges::find(aNames, std::string_view(aNode.name())) != aNames.end();
}

}  // namespace

bool hasEntries(pugi::xml_node aExtension) { return aExtension.attribute("extender").value() == kExtender; }

bool detail::isEntry(pugi::xml_node aNode) { return isOneOf(aNode, kEntries); }
bool holdsEntries(pugi::xml_node aNode) { return isOneOf(aNode, kLists); }

pugi::xml_attribute stereotypeIn(pugi::xml_node aEntry) { return attributeAt(aEntry, kStereotypePlaces); }

std::string profileIn(pugi::xml_node aEntry, std::string_view aStereotype) {
  // "Name=Order;FQName=Shop::Order;"
  std::string_view const text = aEntry.child(kXrefs.fTag).attribute(kXrefs.fAttribute).value();
  std::string const end = "::" + std::string(aStereotype) + ';';
  std::size_t const to = text.find(end);
  if (to == std::string_view::npos) return {};
  std::size_t const from = text.rfind("FQName=", to);
  return from == std::string_view::npos ? std::string() : std::string(text.substr(from + 7, to - from - 7));
}

std::vector<std::pair<std::string, std::string>> valuesIn(pugi::xml_node aEntry) {
  std::vector<std::pair<std::string, std::string>> values;
  if (pugi::xml_attribute const text = attributeAt(aEntry, kDocumentation))
    values.emplace_back("documentation", text.value());
  for (pugi::xml_node const tag : aEntry.child("tags").children("tag"))
    values.emplace_back(tag.attribute("name").value(), tag.attribute("value").value());
  return values;
}

}  // namespace umlmm::files
