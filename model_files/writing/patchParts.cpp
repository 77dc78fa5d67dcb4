#include <algorithm>

#include "model_files/dialect/older.h"
#include "model_files/writing/Patcher.h"

/// What `Patcher` writes of the parts of an owner: their tags in their order, and how other features name
/// them.
namespace umlmm::files {

namespace {

Metaclass const& metaclassOf(Element const& aElement) { return Metamodel::instance().metaclassOf(aElement); }

}  // namespace

void Patcher::patchParts(Element& aOwner) {
  auto const node = fNodes.find(&aOwner);
  // The owner is new: it is written with all its parts.
  if (node == fNodes.end()) return;
  Tag const tag = fEdits.tagOf(fFile.fMade[node->second].fOffset);
  PartPlaces const places = placesOf(aOwner, fComparison.deviant());
  // Among its parts an id means one alone.
  if (!fRead.fReport.fDuplicateIds.empty())
    for (Element* const part :
         elementsOf(aOwner, *metaclassOf(aOwner).feature("ownedElement"), fComparison.deviant()))
      if (!isForeign(*part) && !fFiles.idOf(*part).empty()) fTags.idOf(*part);
  for (Feature const* const feature : metaclassOf(aOwner).fOrder) {
    if (!isWritten(*feature) || feature->fKind != Kind::Reference || !feature->fComposite) continue;
    auto const parts = elementsOf(aOwner, *feature, fComparison.deviant());
    patchParts(aOwner, tag, *feature, parts, places);
  }
}

void Patcher::patchParts(Element& aOwner, Tag const& aTag, Feature const& aFeature,
                         std::vector<Element*> const& aParts, PartPlaces const& aPlaces) {
  // Places of the tags that stay, in the order of the text.
  std::unordered_map<std::size_t, markup::Child const*> byName;
  for (markup::Child const& child : aTag.fChildren) byName.emplace(child.fName, &child);
  std::vector<markup::Child> slots;
  auto standing = foreignParts(aOwner, aTag, aFeature);
  std::unordered_set<Element const*> const parts(aParts.begin(), aParts.end());
  for (auto const& [part, child] : standing)
    if (!parts.contains(part)) fEdits.removeTag(child.fFrom, child.fTo);
  Names names = patchNames(aOwner, aTag, aFeature, aParts, aPlaces, standing);
  auto const isReference = [&](Element* aPart) { return isForeign(*aPart) || names.fNeeded.contains(aPart); };
  auto const slotOf = [&](Element* aPart) -> markup::Child const* {
    if (auto const found = standing.find(aPart); found != standing.end()) return &found->second;
    auto const node = fNodes.find(aPart);
    if (node == fNodes.end() || fHomeless.contains(aPart) || names.fElsewhere.contains(aPart)) return nullptr;
    auto const found = byName.find(fFile.fMade[node->second].fOffset);
    return found == byName.end() ? nullptr : found->second;
  };
  for (Element* const part : aParts)
    if (auto const* const slot = slotOf(part)) slots.push_back(*slot);
  std::ranges::sort(slots, {}, &markup::Child::fFrom);
  std::string name(slots.empty() ? aFeature.fName : markup::nameAt(fText, slots.front().fName));
  if (featureCalled(metaclassOf(aOwner), name) != &aFeature) name = aFeature.fName;
  auto const written = [&](Element* aPart) -> Write {
    if (isReference(aPart))
      return [this, name, aPart](std::string& aOut) { fTags.writeReference(name, *aPart, aOut); };
    return [this, aPart, name, &aFeature,
            indent = std::string(fEdits.indentAt(aTag.fName - 1))](std::string& aOut) {
      fTags.write(*aPart, name, &aFeature, indent + fTags.layout().fUnit, aOut);
    };
  };
  // What a tag in another feature tells already is told again for the sake of the order alone.
  std::size_t next = 0;
  std::size_t behind = 0;
  bool isInOrder = true;
  for (Element* const part : aParts) {
    auto const implied = names.fImplied.find(part);
    bool const hasSlot = slotOf(part) != nullptr;
    if (!hasSlot && implied == names.fImplied.end()) continue;
    markup::Child const& place = hasSlot ? slots[next++] : implied->second;
    isInOrder &= place.fFrom >= behind;
    behind = place.fTo;
  }
  if (!isInOrder)
    for (auto const& [part, place] : names.fImplied) names.fNeeded.insert(part);
  next = behind = 0;
  for (Element* const part : aParts) {
    if (slotOf(part) != nullptr) {
      markup::Child const& slot = slots[next];
      // An id may be another one now.
      std::string text;
      if (names.fNeeded.contains(part)) written(part)(text);
      bool const isOther = !text.empty() && text != fText.substr(slot.fFrom, slot.fTo - slot.fFrom);
      if (slotOf(part)->fName != slot.fName || isOther) fEdits.replace(slot.fFrom, slot.fTo, written(part));
      behind = slots[next++].fTo;
      continue;
    }
    if (!names.fNeeded.contains(part)) {
      // It has a tag that stays where it is, in another feature or in what a tool puts around it.
      if (auto const implied = names.fImplied.find(part); implied != names.fImplied.end())
        behind = implied->second.fTo;
      bool const isElsewhere = fNodes.contains(part) && !fHomeless.contains(part);
      if (isElsewhere || aPlaces.at(part) != &aFeature) continue;
    }
    if (behind == 0 && !slots.empty()) {
      // In front of all that are there.
      std::string const gap = fTags.layout().fLineEnd + std::string(fEdits.indentAt(slots.front().fFrom));
      fEdits.replace(slots.front().fFrom, slots.front().fFrom,
                     [write = written(part), gap](std::string& aOut) {
                       write(aOut);
                       aOut += gap;
                     });
    } else {
      fEdits.addChild(aTag, behind, written(part));
    }
  }
}

Patcher::Names Patcher::patchNames(Element& aOwner, Tag const& aTag, Feature const& aFeature,
                                   std::vector<Element*> const& aParts, PartPlaces const& aPlaces,
                                   std::unordered_map<Element const*, markup::Child>& aStanding) {
  Names names;
  std::vector<Element*> needed;
  for (Element* const part : aParts) {
    markup::Child place;
    Naming const naming = namingOf(aOwner, aTag, aFeature, *part, aPlaces, place);
    if (naming != Naming::None) names.fElsewhere.insert(part);
    if (naming == Naming::Needed) needed.push_back(part);
    if (naming == Naming::Implied) names.fImplied.emplace(part, place);
  }
  std::unordered_set<std::size_t> known;
  for (auto const& [part, child] : aStanding) known.insert(child.fName);
  std::vector<std::pair<std::string, markup::Child>> byId;
  for (markup::Child const& child : childrenCalled(aTag, aOwner, aFeature)) {
    if (known.contains(child.fName)) continue;
    for (markup::Attribute const& attribute : markup::attributes(fText, child.fName)) {
      std::string const address = attribute.value();
      if (attribute.fName == "href") byId.emplace_back(address.substr(address.find('#') + 1), child);
      if (attribute.fName.ends_with(":idref")) byId.emplace_back(address, child);
    }
  }
  bool const isAttribute = attributeCalled(aTag, aOwner, aFeature) != nullptr;
  if (isAttribute || (byId.empty() && fTags.style().asAttribute(aFeature))) {
    patchReferences(aOwner, aTag, aFeature, needed);
    return names;
  }
  if (byId.empty() && !fTags.writesEnd(aFeature)) return names;
  names.fNeeded.insert(needed.begin(), needed.end());
  std::unordered_map<std::string, Element const*> parts;
  if (!byId.empty())
    for (Element* const part : aParts) parts.emplace(fFiles.idOf(*part), part);
  std::unordered_set<std::size_t> dangling;
  for (Dangling const* const one : fFiles.danglingOf(aOwner))
    if (aFeature.fMany || needed.empty()) dangling.insert(one->fSpot.fOffset);
  for (auto const& [id, child] : byId) {
    auto const part = parts.find(id);
    if (dangling.contains(child.fName)) continue;
    bool const isName = part != parts.end() &&
                        (names.fNeeded.contains(part->second) || names.fImplied.contains(part->second));
    if (!isName || !aStanding.emplace(part->second, child).second)
      fEdits.removeTag(child.fFrom, child.fTo);
    else
      names.fNeeded.insert(part->second);
  }
  return names;
}

Patcher::Naming Patcher::namingOf(Element& aOwner, Tag const& aTag, Feature const& aFeature, Element& aPart,
                                  PartPlaces const& aPlaces, markup::Child& aPlace) const {
  auto const node = fNodes.find(&aPart);
  if (node == fNodes.end() || fHomeless.contains(&aPart) || isForeign(aPart))
    return aPlaces.at(&aPart) != &aFeature ? Naming::Needed : Naming::None;
  std::size_t const name = fFile.fMade[node->second].fOffset;
  // In a child, or in what a tool puts around it there.
  auto const behind = std::ranges::upper_bound(aTag.fChildren, name, {}, &markup::Child::fName);
  bool const isInside = behind != aTag.fChildren.begin() && name < std::prev(behind)->fTo;
  std::size_t const child = isInside ? std::prev(behind)->fName : 0;
  bool const isHere =
      isInside && (child == name || !std::ranges::binary_search(fFile.fMade, child, {}, &Made::fOffset));
  if (!isHere) return Naming::Needed;
  Feature const* const written =
      placeCalled(metaclassOf(aOwner), markup::nameAt(fText, name), metaclassOf(aPart));
  if (written == nullptr || written->fDerived || written == &aFeature) return Naming::None;
  aPlace = *std::prev(behind);
  return isSubsetOf(*written, aFeature) ? Naming::Implied : Naming::Needed;
}

}  // namespace umlmm::files
