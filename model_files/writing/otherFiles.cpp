#include <algorithm>

#include "model_files/writing/Patcher.h"

/// What `Patcher` writes of other files of the model: how their elements are called, and what has come from
/// them.
namespace umlmm::files {

std::string Patcher::addressOf(Element& aElement) const {
  if (StandIn const* const standIn = fFiles.standIn(aElement)) return standIn->fAddress;
  int const file = fFiles.fileOf(aElement, fComparison.deviant());
  if (file == static_cast<int>(fNumber)) return {};
  auto const number = static_cast<std::uint32_t>(file);
  std::string const id = '#' + fIdIn(number, aElement);
  if (auto const known = fFile.fSpellings.find(number); known != fFile.fSpellings.end())
    return known->second + id;
  auto const path = locationOf(fFiles.fFiles[number].fText.name());
  auto const beside = locationOf(fFile.fText.name()).parent_path();
  std::string address;
  for (char const letter : path.lexically_relative(beside).generic_string()) {
    constexpr std::string_view kSigns = " %#?";
    constexpr std::string_view kCodes = "2025233F";
    std::size_t const sign = kSigns.find(letter);
    if (sign == kSigns.npos)
      address += letter;
    else
      (address += '%') += kCodes.substr(2 * sign, 2);
  }
  return address + id;
}

bool Patcher::isForeign(Element& aElement) const {
  return fFiles.fFiles.size() > 1 &&
         fFiles.fileOf(aElement, fComparison.deviant()) != static_cast<int>(fNumber);
}

bool Patcher::namesMoved(Element& aElement, Feature const& aFeature) const {
  if (fMoved.empty() || aFeature.fKind != Kind::Reference || fMoved.contains(&aElement)) return false;
  return std::ranges::any_of(elementsOf(aElement, aFeature, fComparison.deviant()),
                             [&](Element const* aValue) { return fMoved.contains(aValue); });
}

std::vector<std::string> Patcher::keptBy(Element& aElement) {
  std::vector<std::string> kept;
  if (!fMoved.contains(&aElement)) return kept;
  for (Kept const* const one : fFiles.keptBy(aElement)) {
    // Elements in it stay in their file.
    kept.push_back(files::textOf(fFiles.fFiles[one->fSpot.fFile], *one, [](Made const&, std::string&) {}));
    declarePrefixes(one->fSpot.fFile, kept.back());
  }
  for (Dangling const* const one : fFiles.danglingOf(aElement)) kept.push_back(files::textOf(*one));
  return kept;
}

void Patcher::declarePrefixes(std::uint32_t aFile, std::string& aTag) {
  auto const prefixesOf = [&](std::uint32_t aNumber) -> auto const& {
    auto const [prefixes, isNew] = fPrefixes.try_emplace(aNumber);
    std::string_view const text = fFiles.fFiles[aNumber].fText.utf8();
    if (isNew)
      for (std::size_t const place : markup::declarations(text)) {
        auto const attribute = markup::attribute(text, place);
        prefixes->second.try_emplace(std::string(attribute.fName), attribute.value());
      }
    return prefixes->second;
  };
  auto const& own = prefixesOf(fNumber);
  for (auto const& [declaration, address] : prefixesOf(aFile)) {
    auto const known = own.find(declaration);
    std::size_t const colon = declaration.find(':');
    bool const isKnown = known != own.end() && known->second == address;
    if (isKnown || colon == std::string::npos ||
        aTag.find(declaration.substr(colon + 1) + ':') == aTag.npos ||
        aTag.find(declaration + '=') != aTag.npos)
      continue;
    std::string text;
    fTags.attribute(text, declaration, address);
    aTag.insert(1 + markup::nameAt(aTag, 1).size(), text);
  }
}

std::unordered_map<Element const*, markup::Child> Patcher::foreignParts(Element& aOwner, Tag const& aTag,
                                                                        Feature const& aFeature) const {
  std::unordered_map<Element const*, markup::Child> parts;
  if (fFiles.fFiles.size() == 1) return parts;
  std::unordered_set<std::size_t> dangling;
  for (Dangling const* const one : fFiles.danglingOf(aOwner)) dangling.insert(one->fSpot.fOffset);
  auto children = childrenCalled(aTag, aOwner, aFeature);
  std::erase_if(children, [&](markup::Child const& aChild) {
    auto const isAddress = [](auto const& aAttribute) { return aAttribute.fName == "href"; };
    return dangling.contains(aChild.fName) ||
           std::ranges::none_of(markup::attributes(fText, aChild.fName), isAddress);
  });
  std::vector<Element const*> named;
  for (Element const* const part :
       elementsOf(*fComparison.toRead(&aOwner), aFeature, fComparison.readDeviant())) {
    Element const* const known = fComparison.toModel(part);
    if (known == nullptr || !fNodes.contains(known)) named.push_back(known);
  }
  // Both stand in the order of the text.
  if (named.size() == children.size())
    for (std::size_t at = 0; at < named.size(); ++at) parts.emplace(named[at], children[at]);
  return parts;
}

}  // namespace umlmm::files
