#include "model_files/writing/Patcher.h"

#include <algorithm>
#include <filesystem>

#include "kelm/ModelElementIntf.h"
#include "model_files/dialect/older.h"

namespace umlmm::files {

namespace {

Metaclass const& metaclassOf(Element const& aElement) { return Metamodel::instance().metaclassOf(aElement); }

/// Blanks between the start of a line and an offset; nothing if there is more on the line.
std::string_view indentAt(std::string_view aText, std::size_t aFrom) {
  std::size_t at = aFrom;
  while (at > 0 && (aText[at - 1] == ' ' || aText[at - 1] == '\t')) --at;
  bool const isLine = at > 0 && (aText[at - 1] == '\n' || aText[at - 1] == '\r');
  return isLine ? aText.substr(at, aFrom - at) : std::string_view();
}

Tags::Layout layoutOf(std::string_view aText) {
  std::size_t const line = aText.find('\n');
  if (line == std::string_view::npos) return {};
  Tags::Layout layout{line > 0 && aText[line - 1] == '\r' ? "\r\n" : "\n", "  "};
  // The first tag that is set in tells by how much.
  for (std::size_t at = aText.find('\n'); at != std::string_view::npos; at = aText.find('\n', at + 1)) {
    std::size_t const tag = aText.find_first_not_of(" \t", at + 1);
    if (tag == std::string_view::npos) break;
    if (tag == at + 1 || aText[tag] != '<') continue;
    layout.fUnit = aText.substr(at + 1, tag - at - 1);
    break;
  }
  return layout;
}

}  // namespace

Patcher::Patcher(Kelm::Model const& aModel, ModelFiles const& aFiles, std::uint32_t aFile,
                 ModelFiles const& aRead, Comparison& aComparison)
    : fModel(aModel),
      fFiles(aFiles),
      fFile(aFiles.fFiles[aFile]),
      fNumber(aFile),
      fRead(aRead),
      fComparison(aComparison),
      fText(fFile.fText.utf8()),
      fEdits(fText),
      fTags(aModel, aComparison.readModel(), aRead.fFiles[aFile].fStyle, layoutOf(fText)) {
  for (std::size_t at = 0; at < fFile.fMade.size(); ++at) fNodes.emplace(fFile.fMade[at].fElement.get(), at);
  fFile.fIds.forEach([this](std::string_view aId, Element const&) { fTags.useId(aId); });
  fTags.fKnownId = [this](Element& aElement) { return fFiles.idOf(aElement); };
  fTags.fForeignAddress = [this](Element& aElement) { return addressOf(aElement); };
  fTags.fWriteKnown = [this](Element& aElement, std::string_view aName, Feature const* aFeature,
                             std::string& aOut) {
    if (!fNodes.contains(&aElement)) return false;
    writeNode(aElement, aName, aFeature, aOut);
    return true;
  };
}

std::string Patcher::write(std::vector<Element*>& aOrder) {
  fOrder = &aOrder;
  fTags.order(aOrder);
  for (std::size_t at = 0; at < fFile.fMade.size(); ++at) compare(at);
  for (Element* const owner : fChangedOwners) patchParts(*owner);
  removeApplications();
  flushChildren();
  std::size_t const count = fEdits.count();
  patchTop();
  while (rescueRoots()) {
    fEdits.keep(count);
    patchTop();
  }
  // Writing may name elements that have no id in the text yet.
  std::string text = render();
  for (std::size_t known = 0; known != fTags.newIds().size();) {
    known = fTags.newIds().size();
    addIds();
    text = render();
  }
  return text;
}

bool Patcher::rescueRoots() {
  if (!fEdits.hasErased()) return false;
  render();
  std::unordered_set<Element const*> const stay(fOrder->begin(), fOrder->end());
  std::vector<std::size_t> lost;
  for (Element* const root : *fModel.object().roots())
    if (root != nullptr && fNodes.contains(root) && !stay.contains(root)) lost.push_back(fNodes.at(root));
  std::ranges::sort(lost);
  // One that stands in another goes along with it.
  std::size_t end = 0;
  bool isAny = false;
  for (std::size_t const number : lost) {
    std::size_t const name = fFile.fMade[number].fOffset;
    if (name < end) continue;
    end = name + markup::element(fText, name).size();
    isAny |= fHomeless.insert(fFile.fMade[number].fElement.get()).second;
  }
  return isAny;
}

std::string Patcher::render() {
  fOrder->clear();
  fEdits.sort();
  std::string text;
  fEdits.writeAll(text, [this](std::size_t aFrom, std::size_t aTo) { noteCopied(aFrom, aTo); });
  return text;
}

void Patcher::noteCopied(std::size_t aFrom, std::size_t aTo) {
  auto const first = std::ranges::lower_bound(fFile.fMade, aFrom, {}, &Made::fOffset);
  for (auto made = first; made != fFile.fMade.end() && made->fOffset < aTo; ++made)
    fOrder->push_back(made->fElement.get());
}

std::string Patcher::addressOf(Element& aElement) const {
  if (StandIn const* const standIn = fFiles.standIn(aElement)) return standIn->fAddress;
  int const file = fFiles.fileOf(aElement, fComparison.deviant());
  if (file == static_cast<int>(fNumber)) return {};
  std::filesystem::path const path = fFiles.fFiles[static_cast<std::size_t>(file)].fText.name();
  auto const beside = std::filesystem::path(fFile.fText.name()).parent_path();
  return path.lexically_relative(beside.empty() ? "." : beside).generic_string() + '#' +
         externalIdOf(aElement, fComparison.deviant());
}

void Patcher::compare(std::size_t aNumber) {
  Element& element = *fFile.fMade[aNumber].fElement;
  std::size_t const name = fFile.fMade[aNumber].fOffset;
  Element& read = *fRead.fFiles[fNumber].fMade[aNumber].fElement;
  auto const cut = [&] {
    std::string_view const whole = markup::element(fText, name);
    removeTag(name - 1, name - 1 + whole.size());
  };
  if (!fComparison.isThere(element)) return cut();
  if (!isAtHome(element, read, name)) {
    fHomeless.insert(&element);
    if (Element* const owner = containerOf(element, fComparison.deviant())) fChangedOwners.insert(owner);
    cut();
  }
  Tag tag;
  bool isLooked = false;
  for (Feature const* const feature : metaclassOf(element).fOrder) {
    if (!isWritten(*feature) || fComparison.isSame(element, read, *feature)) continue;
    if (!isLooked) tag = tagOf(name);
    isLooked = true;
    patch(element, tag, *feature);
  }
}

bool Patcher::isAtHome(Element& aElement, Element& aRead, std::size_t aName) {
  Element* const owner = containerOf(aElement, fComparison.deviant());
  Element* const readOwner = containerOf(aRead, fComparison.readDeviant());
  if ((owner == nullptr) != (readOwner == nullptr)) return false;
  if (owner == nullptr) return true;
  if (fComparison.toModel(readOwner) != owner) return false;
  if (!fChangedOwners.contains(owner)) return true;
  Feature const* const feature = featureCalled(metaclassOf(*owner), markup::nameAt(fText, aName));
  if (feature == nullptr || !feature->fComposite) return true;
  auto const [known, isNew] = fMembers.try_emplace({owner, feature});
  if (isNew)
    for (Element const* const part : elementsOf(*owner, *feature, fComparison.deviant()))
      known->second.insert(part);
  return known->second.contains(&aElement);
}

void Patcher::patch(Element& aElement, Tag const& aTag, Feature const& aFeature) {
  if (aFeature.fKind != Kind::Reference) return patchValue(aElement, aTag, aFeature);
  removeDerived(aElement, aTag, aFeature);
  if (aFeature.fComposite)
    fChangedOwners.insert(&aElement);
  else
    patchReferences(aElement, aTag, aFeature, elementsOf(aElement, aFeature, fComparison.deviant()));
}

void Patcher::removeDerived(Element& aElement, Tag const& aTag, Feature const& aFeature) {
  constexpr std::string_view kValue = "Value";
  if (!aFeature.fComposite || !aFeature.fName.ends_with(kValue)) return;
  std::string_view const name = aFeature.fName.substr(0, aFeature.fName.size() - kValue.size());
  Feature const* const derived = metaclassOf(aElement).feature(name);
  if (derived == nullptr || !derived->fDerived) return;
  if (auto const* const attribute = attributeCalled(aTag, aElement, *derived)) removeAttribute(*attribute);
  for (markup::Child const& child : childrenCalled(aTag, aElement, *derived))
    removeTag(child.fFrom, child.fTo);
}

void Patcher::patchValue(Element& aElement, Tag const& aTag, Feature const& aFeature) {
  auto texts = textsOf(aElement, aFeature, fComparison.deviant());
  auto const* const attribute = attributeCalled(aTag, aElement, aFeature);
  auto const children = childrenCalled(aTag, aElement, aFeature);
  bool const asAttribute = children.empty() && (attribute != nullptr ? texts.size() < 2 : !aFeature.fMany);
  if (attribute != nullptr && (texts.empty() || !asAttribute)) removeAttribute(*attribute);
  if (asAttribute) {
    if (!texts.empty()) setAttribute(aTag, attribute, aFeature.fName, texts.front());
    return;
  }
  std::vector<Write> written;
  written.reserve(texts.size());
  std::string const name(children.empty() ? aFeature.fName : markup::nameAt(fText, children.front().fName));
  for (std::string& text : texts)
    written.emplace_back([name, text](std::string& aOut) { markup::writeValue(name, text, aOut); });
  replaceChildren(aTag, children, std::move(written));
}

void Patcher::patchReferences(Element& aElement, Tag const& aTag, Feature const& aFeature,
                              std::vector<Element*> const& aValues) {
  auto const* const attribute = attributeCalled(aTag, aElement, aFeature);
  auto children = childrenCalled(aTag, aElement, aFeature);
  // Of a containment those that name what stands elsewhere.
  if (aFeature.fComposite)
    std::erase_if(children, [&](auto const& aChild) {
      return std::ranges::none_of(markup::attributes(fText, aChild.fName), [](auto const& aAttribute) {
        return aAttribute.fName == "href" || aAttribute.fName.ends_with(":idref");
      });
    });
  if (attribute == nullptr && children.empty() && !fTags.writesEnd(aFeature)) return;
  // References that led nowhere stay, unless something else has come into their one place.
  std::unordered_set<std::size_t> kept;
  std::string ids;
  for (Dangling const* const one : fFiles.danglingOf(aElement)) {
    Dangling const& dangling = *one;
    if (dangling.fFeature != &aFeature || dangling.fSpot.fFile != fNumber) continue;
    if (!aFeature.fMany && !aValues.empty()) continue;
    if (attribute != nullptr && dangling.fSpot.fOffset == attribute->fFrom)
      (ids += ids.empty() ? "" : " ") += dangling.fAddress;
    else
      kept.insert(dangling.fSpot.fOffset);
  }
  // An attribute has ids alone, and tags of the same name would not keep the order with it.
  bool const asAttribute =
      (attribute != nullptr || (children.empty() && fTags.style().asAttribute(aFeature))) &&
      std::ranges::all_of(aValues, [&](Element* aValue) { return addressOf(*aValue).empty(); });
  std::vector<Write> written;
  std::string resolved;
  for (Element* const value : aValues) {
    if (asAttribute) {
      (resolved += resolved.empty() ? "" : " ") += fTags.idOf(*value);
      continue;
    }
    std::string const name(children.empty() ? aFeature.fName : markup::nameAt(fText, children.front().fName));
    written.emplace_back(
        [this, name, value](std::string& aOut) { fTags.writeReference(name, *value, aOut); });
  }
  if (!resolved.empty() && !ids.empty()) resolved += ' ';
  resolved += ids;
  if (resolved.empty() && attribute != nullptr) removeAttribute(*attribute);
  if (!resolved.empty()) setAttribute(aTag, attribute, aFeature.fName, resolved);
  std::vector<markup::Child> old;
  std::ranges::copy_if(children, std::back_inserter(old),
                       [&](auto const& aChild) { return !kept.contains(aChild.fName); });
  replaceChildren(aTag, old, std::move(written));
}

void Patcher::patchParts(Element& aOwner) {
  auto const node = fNodes.find(&aOwner);
  // The owner is new: it is written with all its parts.
  if (node == fNodes.end()) return;
  Tag const tag = tagOf(fFile.fMade[node->second].fOffset);
  PartPlaces const places = placesOf(aOwner, fComparison.deviant());
  for (Feature const* const feature : metaclassOf(aOwner).fOrder) {
    if (!isWritten(*feature) || feature->fKind != Kind::Reference || !feature->fComposite) continue;
    auto const parts = elementsOf(aOwner, *feature, fComparison.deviant());
    if (!parts.empty()) patchParts(aOwner, tag, *feature, parts, places);
    auto named = parts;
    std::erase_if(named, [&](Element* aPart) { return !isNamed(aOwner, tag, *feature, *aPart, places); });
    patchReferences(aOwner, tag, *feature, named);
  }
}

void Patcher::patchParts(Element& aOwner, Tag const& aTag, Feature const& aFeature,
                         std::vector<Element*> const& aParts, PartPlaces const& aPlaces) {
  // Places of the tags that stay, in the order of the text.
  std::unordered_map<std::size_t, markup::Child const*> byName;
  for (markup::Child const& child : aTag.fChildren) byName.emplace(child.fName, &child);
  std::vector<markup::Child> slots;
  auto const slotOf = [&](Element* aPart) -> markup::Child const* {
    auto const node = fNodes.find(aPart);
    if (node == fNodes.end() || fHomeless.contains(aPart)) return nullptr;
    auto const found = byName.find(fFile.fMade[node->second].fOffset);
    return found == byName.end() ? nullptr : found->second;
  };
  for (Element* const part : aParts)
    if (auto const* const slot = slotOf(part)) slots.push_back(*slot);
  std::ranges::sort(slots, {}, &markup::Child::fFrom);
  std::string name(slots.empty() ? aFeature.fName : markup::nameAt(fText, slots.front().fName));
  if (featureCalled(metaclassOf(aOwner), name) != &aFeature) name = aFeature.fName;
  auto const written = [&](Element* aPart) -> Write {
    return [this, aPart, name, &aFeature,
            indent = std::string(indentAt(fText, aTag.fName - 1))](std::string& aOut) {
      fTags.write(*aPart, name, &aFeature, indent + fTags.layout().fUnit, aOut);
    };
  };
  std::size_t next = 0;
  std::size_t behind = 0;
  for (Element* const part : aParts) {
    if (slotOf(part) != nullptr) {
      markup::Child const& slot = slots[next];
      if (slotOf(part)->fName != slot.fName) fEdits.replace(slot.fFrom, slot.fTo, written(part));
      behind = slots[next++].fTo;
      continue;
    }
    // What has a tag that stays has it elsewhere: in another file, in an extension.
    bool const isElsewhere = fFiles.hasTag(*part) && !fHomeless.contains(part);
    if (isElsewhere || aPlaces.at(part) != &aFeature) continue;
    if (behind == 0 && !slots.empty()) {
      // In front of all that are there.
      std::string const gap = fTags.layout().fLineEnd + std::string(indentAt(fText, slots.front().fFrom));
      fEdits.replace(slots.front().fFrom, slots.front().fFrom,
                     [write = written(part), gap](std::string& aOut) {
                       write(aOut);
                       aOut += gap;
                     });
    } else {
      addChild(aTag, behind, written(part));
    }
  }
}

bool Patcher::isNamed(Element& aOwner, Tag const& aTag, Feature const& aFeature, Element& aPart,
                      PartPlaces const& aPlaces) const {
  auto const node = fNodes.find(&aPart);
  if (node == fNodes.end() || fHomeless.contains(&aPart)) return aPlaces.at(&aPart) != &aFeature;
  std::size_t const name = fFile.fMade[node->second].fOffset;
  // In a child, or in an extension that is one.
  auto const behind = std::ranges::upper_bound(aTag.fChildren, name, {}, &markup::Child::fName);
  bool const isInside = behind != aTag.fChildren.begin() && name < std::prev(behind)->fTo;
  std::size_t const child = isInside ? std::prev(behind)->fName : 0;
  bool const isHere =
      isInside && (child == name || !std::ranges::binary_search(fFile.fMade, child, {}, &Made::fOffset));
  Feature const* const written = featureCalled(metaclassOf(aOwner), markup::nameAt(fText, name));
  bool const isPlace = written != nullptr && !written->fDerived;
  return !isHere || (isPlace && written != &aFeature);
}

void Patcher::patchTop() {
  std::vector<Element*> added;
  for (Element* const root : *fModel.object().roots()) {
    if (root == nullptr || fFiles.standIn(*root) != nullptr) continue;
    bool const isNew = !fFiles.hasTag(*root) && fNumber == 0;
    if (isNew || fHomeless.contains(root)) added.push_back(root);
  }
  if (added.empty()) return;
  std::size_t const root = markup::prologEnd(fText) + 1;
  auto const written = [&](Element* aElement) -> Write {
    return [this, aElement](std::string& aOut) {
      fTags.write(*aElement, fTags.typeOf(*aElement), nullptr, fTags.layout().fUnit, aOut);
    };
  };
  if (markup::nameAt(fText, root).ends_with("XMI")) {
    Tag const tag = tagOf(root);
    for (Element* const element : added) addChild(tag, 0, written(element));
    return;
  }
  // The one root gets a frame that has room for more, with what the root declares.
  std::string const name = fTags.idName().substr(0, fTags.idName().find(':')) + ":XMI";
  std::string start = '<' + name;
  for (markup::Attribute const& attribute : markup::attributes(fText, root))
    if (attribute.fName.starts_with("xmlns:") || attribute.fName.ends_with(":version"))
      (start += ' ') += fText.substr(attribute.fFrom, attribute.fTo - attribute.fFrom);
  std::string const gap = fTags.layout().fLineEnd;
  fEdits.insert(root - 1, start + '>' + gap);
  std::size_t const behind = root - 1 + markup::element(fText, root).size();
  for (Element* const element : added)
    fEdits.replace(behind, behind, [gap, write = written(element)](std::string& aOut) {
      aOut += gap;
      write(aOut);
    });
  fEdits.insert(behind, gap + "</" + name + '>');
}

void Patcher::removeApplications() {
  std::map<std::size_t, bool> isNeeded;
  for (Application const& application : fFiles.fApplications)
    if (application.fSpot.fFile == fNumber)
      isNeeded[application.fSpot.fOffset] |= fComparison.isThere(*application.fElement);
  for (auto const& [name, needed] : isNeeded)
    if (!needed) removeTag(name - 1, name - 1 + markup::element(fText, name).size());
}

void Patcher::addIds() {
  for (auto const& [element, id] : fTags.newIds()) {
    auto const node = fNodes.find(element);
    if (node == fNodes.end() || !fGivenIds.insert(element).second) continue;
    setAttribute(tagOf(fFile.fMade[node->second].fOffset), nullptr, fTags.idName(), id);
  }
}

void Patcher::replaceChildren(Tag const& aTag, std::vector<markup::Child> const& aOld,
                              std::vector<Write> aNew) {
  std::size_t at = 0;
  for (; at < aOld.size() && at < aNew.size(); ++at) {
    std::string text;
    aNew[at](text);
    if (text != fText.substr(aOld[at].fFrom, aOld[at].fTo - aOld[at].fFrom))
      fEdits.replace(aOld[at].fFrom, aOld[at].fTo, std::move(text));
  }
  for (std::size_t more = at; more < aOld.size(); ++more) removeTag(aOld[more].fFrom, aOld[more].fTo);
  std::size_t const behind = aOld.empty() ? 0 : aOld.back().fTo;
  for (std::size_t more = at; more < aNew.size(); ++more) addChild(aTag, behind, std::move(aNew[more]));
}

Patcher::Tag Patcher::tagOf(std::size_t aName) const {
  Tag tag;
  tag.fName = aName;
  tag.fAttributes = markup::attributes(fText, aName);
  tag.fLast =
      tag.fAttributes.empty() ? aName + markup::nameAt(fText, aName).size() : tag.fAttributes.back().fTo;
  tag.fChildren = markup::children(fText, aName, tag.fEnd);
  return tag;
}

markup::Attribute const* Patcher::attributeCalled(Tag const& aTag, Element const& aElement,
                                                  Feature const& aFeature) const {
  auto const found = std::ranges::find_if(aTag.fAttributes, [&](auto const& aAttribute) {
    return featureCalled(metaclassOf(aElement), aAttribute.fName) == &aFeature;
  });
  return found == aTag.fAttributes.end() ? nullptr : &*found;
}

std::vector<markup::Child> Patcher::childrenCalled(Tag const& aTag, Element const& aElement,
                                                   Feature const& aFeature) const {
  std::vector<markup::Child> children;
  std::ranges::copy_if(aTag.fChildren, std::back_inserter(children), [&](auto const& aChild) {
    return featureCalled(metaclassOf(aElement), markup::nameAt(fText, aChild.fName)) == &aFeature;
  });
  return children;
}

void Patcher::setAttribute(Tag const& aTag, markup::Attribute const* aOld, std::string_view aName,
                           std::string const& aValue) {
  if (aOld != nullptr) {
    if (aOld->value() == aValue) return;
    auto const from = static_cast<std::size_t>(aOld->fRaw.data() - fText.data());
    return fEdits.replace(from, from + aOld->fRaw.size(), markup::escaped(aValue, aOld->fQuote));
  }
  std::string text;
  fTags.attribute(text, aName, aValue);
  fEdits.insert(aTag.fLast, std::move(text));
}

void Patcher::removeAttribute(markup::Attribute const& aAttribute) {
  std::size_t from = aAttribute.fFrom;
  while (from > 0 && std::string_view(" \t\r\n").find(fText[from - 1]) != std::string_view::npos) --from;
  fEdits.erase(from, aAttribute.fTo);
}

void Patcher::removeTag(std::size_t aFrom, std::size_t aTo) {
  // With its line, if it has one to itself.
  std::size_t from = aFrom - indentAt(fText, aFrom).size();
  bool const isLine = from > 0 && (fText[from - 1] == '\n' || fText[from - 1] == '\r');
  if (isLine && fText[from - 1] == '\n') --from;
  if (isLine && from > 0 && fText[from - 1] == '\r') --from;
  fEdits.erase(isLine ? from : aFrom, aTo);
}

void Patcher::addChild(Tag const& aTag, std::size_t aBehind, Write aChild) {
  if (aTag.fChildren.empty()) {
    fFirstChildren[aTag.fName].push_back(std::move(aChild));
    return;
  }
  std::size_t const at = aBehind != 0 ? aBehind : aTag.fChildren.back().fTo;
  std::string const gap =
      fTags.layout().fLineEnd + std::string(indentAt(fText, aTag.fChildren.front().fFrom));
  fEdits.replace(at, at, [gap, write = std::move(aChild)](std::string& aOut) {
    aOut += gap;
    write(aOut);
  });
}

void Patcher::flushChildren() {
  for (auto& [name, children] : fFirstChildren) {
    bool isEmpty = false;
    std::size_t const end = markup::endOfStart(fText, name, isEmpty);
    std::string const indent(indentAt(fText, name - 1));
    std::string const& lineEnd = fTags.layout().fLineEnd;
    std::string const closing =
        isEmpty ? "</" + std::string(markup::nameAt(fText, name)) + '>' : std::string();
    // What stands between start and end tag now are blanks.
    std::size_t const to = isEmpty ? end : fText.find('<', end);
    std::size_t const from = isEmpty ? fText.find_last_not_of(" \t\r\n", end - 3) + 1 : end;
    fEdits.replace(from, to,
                   [this, lineEnd, indent, closing, isEmpty, all = std::move(children)](std::string& aOut) {
                     if (isEmpty) aOut += '>';
                     for (Write const& write : all) {
                       (aOut += lineEnd) += lineEnd.empty() ? std::string() : indent + fTags.layout().fUnit;
                       write(aOut);
                     }
                     (aOut += lineEnd) += lineEnd.empty() ? std::string() : indent;
                     aOut += closing;
                   });
  }
}

void Patcher::writeNode(Element& aElement, std::string_view aTagName, Feature const* aFeature,
                        std::string& aOut) {
  std::size_t const name = fFile.fMade[fNodes.at(&aElement)].fOffset;
  std::size_t const size = markup::element(fText, name).size();
  std::string text;
  fEdits.write(name - 1, name - 1 + size, text,
               [this](std::size_t aFrom, std::size_t aTo) { noteCopied(aFrom, aTo); });
  // In a feature of another name the tag is called by that.
  std::string_view const old = markup::nameAt(fText, name);
  std::string type;
  bool const isTyped = std::ranges::any_of(markup::attributes(fText, name), [](auto const& aAttribute) {
    return aAttribute.fName == "xmi:type" || aAttribute.fName == "xsi:type";
  });
  if (!isTyped && fTags.needsType(aElement, aFeature))
    fTags.attribute(type, fTags.style().fTypeName, fTags.typeOf(aElement));
  if (old != aTagName) {
    if (text.ends_with('>') && text[text.size() - 2] != '/')
      text.replace(text.rfind("</") + 2, old.size(), aTagName);
    text.replace(1, old.size(), aTagName);
  }
  text.insert(1 + aTagName.size(), type);
  aOut += text;
}

}  // namespace umlmm::files
