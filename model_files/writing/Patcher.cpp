#include "model_files/writing/Patcher.h"

#include <algorithm>
#include <filesystem>

#include "kelm/ModelElementIntf.h"
#include "model_files/dialect/older.h"

namespace umlmm::files {

namespace {

Metaclass const& metaclassOf(Element const& aElement) { return Metamodel::instance().metaclassOf(aElement); }

}  // namespace

Patcher::Patcher(Kelm::Model const& aModel, ModelFiles const& aFiles, std::uint32_t aFile,
                 ModelFiles const& aRead, Comparison& aComparison, Elements const& aMoved,
                 Places const& aForced)
    : fModel(aModel),
      fFiles(aFiles),
      fFile(aFiles.fFiles[aFile]),
      fNumber(aFile),
      fRead(aRead),
      fComparison(aComparison),
      fMoved(aMoved),
      fForced(aForced),
      fText(fFile.fText.utf8()),
      fEdits(fText, aRead.fFiles[aFile].fStyle.fQuote),
      fTags(aModel, aComparison.readModel(), aRead.fFiles[aFile].fStyle, fEdits.layout()),
      fApplications(aFiles, aFile, aComparison.deviant(), fEdits, fTags) {
  for (std::size_t at = 0; at < fFile.fMade.size(); ++at) fNodes.emplace(fFile.fMade[at].fElement.get(), at);
  fFile.fIds.forEach([this](std::string_view aId, Element const& aElement) { fTags.useId(aId, aElement); });
  // What leads nowhere shall not lead to something that only comes into this text.
  for (Dangling const& dangling : fFiles.fDangling) {
    std::size_t const hash = dangling.fAddress.find('#');
    if (hash != std::string::npos) fTags.reserveId(std::string_view(dangling.fAddress).substr(hash + 1));
    if (dangling.fSpot.fFile == fNumber) fTags.reserveId(dangling.fAddress);
  }
  fTags.fKnownId = [this](Element& aElement) { return fFiles.idOf(aElement); };
  fTags.fKept = [this](Element& aElement) { return keptBy(aElement); };
  fTags.fForeignAddress = [this](Element& aElement) { return addressOf(aElement); };
  fTags.fWriteKnown = [this](Element& aElement, std::string_view aName, Feature const* aFeature,
                             std::string& aOut) {
    if (!fNodes.contains(&aElement)) return false;
    writeNode(aElement, aName, aFeature, aOut);
    return true;
  };
}

void Patcher::renew(Tags::NewIds const& aIds) {
  for (auto const& [element, id] : aIds) {
    fTags.renew(*element, id);
    if (Element* const owner = containerOf(*element, fComparison.deviant())) fChangedOwners.insert(owner);
  }
}

std::string Patcher::write(std::vector<Element*>& aOrder) {
  fOrder = &aOrder;
  fTags.order(aOrder);
  if (!std::exchange(fIsCompared, true)) compareAll();
  addIds();
  return render();
}

void Patcher::compareAll() {
  for (std::size_t at = 0; at < fFile.fMade.size(); ++at) compare(at);
  for (Element* const owner : fChangedOwners) patchParts(*owner);
  if (!fMoved.empty())
    fApplications.name([this](Element const& aElement) { return fMoved.contains(&aElement); });
  fApplications.patch(fCuts);
  patchTop();
  fEdits.flushChildren();
}

Tags::NewIds Patcher::renewed() const {
  Tags::NewIds renewed;
  for (auto const& [element, id] : fTags.newIds())
    if (fNodes.contains(element) && !fFiles.idOf(*element).empty()) renewed.emplace(element, id);
  return renewed;
}

std::string Patcher::render() {
  fOrder->clear();
  fApplications.restart();
  fEdits.sort();
  std::string text;
  fEdits.writeAll(text, [this](std::size_t aFrom, std::size_t aTo) { noteCopied(aFrom, aTo); });
  return text;
}

void Patcher::noteCopied(std::size_t aFrom, std::size_t aTo) {
  auto const first = std::ranges::lower_bound(fFile.fMade, aFrom, {}, &Made::fOffset);
  for (auto made = first; made != fFile.fMade.end() && made->fOffset < aTo; ++made)
    fOrder->push_back(made->fElement.get());
  fApplications.noteCopied(aFrom, aTo);
}

void Patcher::compare(std::size_t aNumber) {
  Element& element = *fFile.fMade[aNumber].fElement;
  std::size_t const name = fFile.fMade[aNumber].fOffset;
  Element& read = *fRead.fFiles[fNumber].fMade[aNumber].fElement;
  bool const isThere = fComparison.isThere(element);
  bool const isOut = fReplaced.contains(name);
  if (!isThere || isOut || !isAtHome(element, read, name)) {
    bool const isGone = !isThere || isForeign(element);
    std::size_t const end = name - 1 + markup::element(fText, name).size();
    if (!isOut && !becomesReference(aNumber)) fEdits.removeTag(name - 1, end);
    fCuts.push_back({name - 1, end, !isGone});
    if (isGone) fGoneTo = std::max(fGoneTo, end);
    if (!isThere) return;
    fHomeless.insert(&element);
    fMovedTags.emplace_back(end, &element);
    fMovedTo = std::max(fMovedTo, end);
    if (Element* const owner = containerOf(element, fComparison.deviant())) fChangedOwners.insert(owner);
  }
  Tag tag;
  bool isLooked = false;
  for (Feature const* const feature : metaclassOf(element).fOrder) {
    if (!isWritten(*feature)) continue;
    bool const isForced = !fForced.empty() && fForced.contains({&element, feature});
    if (!isForced && fComparison.isSame(element, read, *feature) && !namesMoved(element, *feature)) continue;
    if (!isLooked) tag = fEdits.tagOf(name);
    isLooked = true;
    patch(element, tag, *feature);
  }
}

bool Patcher::becomesReference(std::size_t aNumber) {
  Made const& made = fFile.fMade[aNumber];
  Element const& read = *fRead.fFiles[fNumber].fMade[aNumber].fElement;
  if (containerOf(read, fComparison.readDeviant()) != nullptr || fFiles.isTop({fNumber, made.fOffset}))
    return false;
  for (std::size_t at = aNumber; at-- > 0;) {
    Made const& around = fFile.fMade[at];
    if (around.fOffset + markup::element(fText, around.fOffset).size() <= made.fOffset) continue;
    Element& element = *around.fElement;
    Feature const* const feature = featureCalled(metaclassOf(element), markup::nameAt(fText, made.fOffset));
    bool const refers = feature != nullptr && feature->fKind == Kind::Reference && !feature->fComposite &&
                        !feature->fDerived && fComparison.isThere(element);
    if (!refers) return false;
    fReplaced.insert(made.fOffset);
    patchReferences(element, fEdits.tagOf(around.fOffset), *feature,
                    elementsOf(element, *feature, fComparison.deviant()));
    return true;
  }
  return false;
}

bool Patcher::isAtHome(Element& aElement, Element& aRead, std::size_t aName) {
  Element* const owner = containerOf(aElement, fComparison.deviant());
  Element* const readOwner = containerOf(aRead, fComparison.readDeviant());
  // One at the top may stand in the tag of another one that goes.
  if (owner == nullptr && aName < fGoneTo) return false;
  // Or in that of one that has become a part of it.
  if (owner == nullptr && aName < fMovedTo)
    for (auto const& [end, moved] : fMovedTags) {
      Element* top = moved;
      while (Element* const above = containerOf(*top, fComparison.deviant())) top = above;
      if (end > aName && top == &aElement) return false;
    }
  auto const isOutside = [&](Element* aOwner) { return aOwner == nullptr || isForeign(*aOwner); };
  bool const isOfMany = fFiles.fFiles.size() > 1;
  bool const isTop = isOfMany && fFiles.isTop({fNumber, aName});
  if (isTop && isOutside(owner) && isOutside(readOwner == nullptr ? nullptr : fComparison.toModel(readOwner)))
    return true;
  if ((owner == nullptr) != (readOwner == nullptr)) return false;
  if (owner == nullptr) return true;
  if (fComparison.toModel(readOwner) != owner) return false;
  // One that named it from another file may have come into this one, and is written with its parts.
  if (isOfMany && !fNodes.contains(owner) && !isForeign(*owner)) return false;
  if (!fChangedOwners.contains(owner)) return true;
  Feature const* const feature =
      placeCalled(metaclassOf(*owner), markup::nameAt(fText, aName), metaclassOf(aElement));
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
  if (auto const* const attribute = attributeCalled(aTag, aElement, *derived))
    fEdits.removeAttribute(*attribute);
  for (markup::Child const& child : childrenCalled(aTag, aElement, *derived))
    fEdits.removeTag(child.fFrom, child.fTo);
}

void Patcher::patchValue(Element& aElement, Tag const& aTag, Feature const& aFeature) {
  auto texts = textsOf(aElement, aFeature, fComparison.deviant());
  auto const* const attribute = onlyAttribute(aTag, aElement, aFeature);
  auto const children = childrenCalled(aTag, aElement, aFeature);
  bool const asAttribute = children.empty() && (attribute != nullptr ? texts.size() < 2 : !aFeature.fMany);
  if (attribute != nullptr && (texts.empty() || !asAttribute)) fEdits.removeAttribute(*attribute);
  std::vector<Write> written;
  if (asAttribute && !texts.empty())
    return fEdits.setAttribute(aTag, attribute, aFeature.fName, texts.front());
  if (fTags.needsNil(aElement, aFeature))
    written.emplace_back([&aFeature](std::string& aOut) { Tags::writeNil(aFeature.fName, aOut); });
  if (asAttribute && written.empty()) return;
  written.reserve(written.size() + texts.size());
  std::string const name(children.empty() ? aFeature.fName : markup::nameAt(fText, children.front().fName));
  for (std::string& text : texts)
    written.emplace_back([name, text](std::string& aOut) { markup::writeValue(name, text, aOut); });
  fEdits.replaceChildren(aTag, children, std::move(written));
}

void Patcher::patchReferences(Element& aElement, Tag const& aTag, Feature const& aFeature,
                              std::vector<Element*> const& aValues) {
  auto children = childrenCalled(aTag, aElement, aFeature);
  // Elements that stand where they are referred to. One that is all that the feature holds stays there.
  std::vector<std::size_t> whole;
  for (markup::Child const& child : children)
    if (!aFeature.fComposite && std::ranges::binary_search(fFile.fMade, child.fName, {}, &Made::fOffset))
      whole.push_back(child.fName);
  if (whole.size() == 1 && aValues.size() == 1 && children.size() == 1) {
    auto const node = fNodes.find(aValues.front());
    bool const isIt = node != fNodes.end() && fFile.fMade[node->second].fOffset == whole.front();
    if (isIt && !fReplaced.contains(whole.front()) &&
        containerOf(*aValues.front(), fComparison.deviant()) == nullptr)
      return;
  }
  fReplaced.insert(whole.begin(), whole.end());
  auto const* const attribute = onlyAttribute(aTag, aElement, aFeature);
  // Of a containment those that name what stands elsewhere.
  if (aFeature.fComposite)
    std::erase_if(children, [&](auto const& aChild) {
      return std::ranges::none_of(markup::attributes(fText, aChild.fName), [](auto const& aAttribute) {
        return aAttribute.fName == "href" || aAttribute.fName.ends_with(":idref");
      });
    });
  if (aFeature.fComposite && fFiles.fFiles.size() > 1) {
    auto const foreign = foreignParts(aElement, aTag, aFeature);
    std::erase_if(children, [&](auto const& aChild) {
      return std::ranges::any_of(foreign,
                                 [&](auto const& aPart) { return aPart.second.fName == aChild.fName; });
    });
  }
  if (attribute == nullptr && children.empty() && !fTags.writesEnd(aFeature)) return;
  // References that led nowhere stay, unless something else has come into their one place.
  std::unordered_set<std::size_t> kept;
  std::string ids;
  for (Dangling const* const one : fFiles.danglingOf(aElement)) {
    Dangling const& dangling = *one;
    if (dangling.fFeature != &aFeature || dangling.fSpot.fFile != fNumber) continue;
    if (!aFeature.fMany && !aValues.empty()) continue;
    bool const isInAttribute = std::ranges::any_of(
        aTag.fAttributes, [&](auto const& aAttribute) { return aAttribute.fFrom == dangling.fSpot.fOffset; });
    if (isInAttribute)
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
  if (resolved.empty() && attribute != nullptr) fEdits.removeAttribute(*attribute);
  if (!resolved.empty()) fEdits.setAttribute(aTag, attribute, aFeature.fName, resolved);
  std::vector<markup::Child> old;
  std::ranges::copy_if(children, std::back_inserter(old),
                       [&](auto const& aChild) { return !kept.contains(aChild.fName); });
  fEdits.replaceChildren(aTag, old, std::move(written));
}

void Patcher::patchTop() {
  std::vector<Write> added;
  for (Element* const root : *fModel.object().roots()) {
    if (root == nullptr || fFiles.standIn(*root) != nullptr) continue;
    bool const isNew = !fFiles.hasTag(*root) && fNumber == 0;
    if (!isNew && !fHomeless.contains(root)) continue;
    added.emplace_back([this, root](std::string& aOut) {
      fTags.write(*root, fTags.typeOf(*root), nullptr, fTags.layout().fUnit, aOut);
    });
  }
  for (Write& application : fApplications.takeHomeless()) added.push_back(std::move(application));
  if (!added.empty()) addAtTop(std::move(added));
}

void Patcher::addAtTop(std::vector<Write> aAdded) {
  std::size_t const root = markup::prologEnd(fText) + 1;
  if (markup::nameAt(fText, root).ends_with("XMI")) {
    Tag const tag = fEdits.tagOf(root);
    for (Write& write : aAdded) fEdits.addChild(tag, 0, std::move(write));
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
  for (Write& one : aAdded)
    fEdits.replace(behind, behind, [gap, write = std::move(one)](std::string& aOut) {
      aOut += gap;
      write(aOut);
    });
  fEdits.insert(behind, gap + "</" + name + '>');
}

void Patcher::addIds() {
  for (auto const& [element, id] : fTags.newIds()) {
    auto const node = fNodes.find(element);
    if (node == fNodes.end() || !fGivenIds.insert(element).second) continue;
    Tag const tag = fEdits.tagOf(fFile.fMade[node->second].fOffset);
    // Another element has the id that stands there.
    auto const old = std::ranges::find(tag.fAttributes, fTags.idName(), &markup::Attribute::fName);
    fEdits.setAttribute(tag, old == tag.fAttributes.end() ? nullptr : &*old, fTags.idName(), id);
  }
}

markup::Attribute const* Patcher::attributeCalled(Tag const& aTag, Element const& aElement,
                                                  Feature const& aFeature) const {
  markup::Attribute const* last = nullptr;
  for (markup::Attribute const& attribute : aTag.fAttributes)
    if (featureCalled(metaclassOf(aElement), attribute.fName) == &aFeature) last = &attribute;
  return last;
}

markup::Attribute const* Patcher::onlyAttribute(Tag const& aTag, Element const& aElement,
                                                Feature const& aFeature) {
  markup::Attribute const* const last = attributeCalled(aTag, aElement, aFeature);
  for (markup::Attribute const& attribute : aTag.fAttributes)
    if (&attribute != last && featureCalled(metaclassOf(aElement), attribute.fName) == &aFeature)
      fEdits.removeAttribute(attribute);
  return last;
}

std::vector<markup::Child> Patcher::childrenCalled(Tag const& aTag, Element const& aElement,
                                                   Feature const& aFeature) const {
  std::vector<markup::Child> children;
  std::ranges::copy_if(aTag.fChildren, std::back_inserter(children), [&](auto const& aChild) {
    return featureCalled(metaclassOf(aElement), markup::nameAt(fText, aChild.fName)) == &aFeature;
  });
  return children;
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
