#include "model_files/writing/Applications.h"

#include <algorithm>
#include <unordered_set>

#include "model_files/dialect/extensions.h"
#include "model_files/dialect/namespaces.h"
#include "model_files/store/ParsedTag.h"
#include "model_files/store/applications.h"
#include "model_files/text/markup.h"

namespace umlmm::files {

namespace {

/// The value of a child as it is read, and whether it is a reference.
struct ChildValue {
  std::string fText;
  std::string fReference;
};

ChildValue childValueOf(std::string_view aTag) {
  ParsedTag const tag(aTag);
  ChildValue value{std::string(valueOf(tag.node())), {}};
  for (char const* const name : {"xmi:idref", "href"})
    if (tag.node().attribute(name)) value.fReference = name;
  return value;
}

}  // namespace

void declarePrefix(std::string& aTag, std::string_view aPrefix, std::string_view aAddress) {
  std::string declaration = " xmlns:";
  (((declaration += aPrefix) += "=\"") += markup::escaped(aAddress, '"')) += '"';
  aTag.insert(1 + markup::nameAt(aTag, 1).size(), declaration);
}

Applications::Applications(ModelFiles const& aFiles, std::uint32_t aFile, Kelm::Deviant const& aDeviant,
                           TagEdits& aEdits, Tags& aTags)
    : fFiles(aFiles),
      fFile(aFiles.fFiles[aFile]),
      fNumber(aFile),
      fDeviant(aDeviant),
      fText(aEdits.text()),
      fEdits(aEdits),
      fTags(aTags) {}

void Applications::patch(std::span<Cut const> aCuts) {
  std::vector<Application const*> rows;
  for (Application const& application : fFiles.fApplications) {
    if (application.fSpot.fFile == fNumber) rows.push_back(&application);
    if (fFiles.isRemoved(application)) fRemoved.emplace(application.fElement.get(), application.fName);
  }
  auto const offset = [](Application const* aRow) { return aRow->fSpot.fOffset; };
  std::ranges::stable_sort(rows, {}, offset);
  for (auto first = rows.begin(); first != rows.end();) {
    auto const last =
        std::find_if(first, rows.end(), [&](auto* aRow) { return offset(aRow) != offset(*first); });
    patchTag({first, last});
    first = last;
  }
  // What stands in an element that is gone would go with it.
  std::size_t next = 0;
  std::vector<Cut const*> open;
  Standing const* neighbour = nullptr;
  for (Standing const& standing : fStanding) {
    if (standing.fApplication->fIsInExtension) continue;
    if (isLost(standing, aCuts, next, open))
      fHomeless.emplace_back([this, standing](std::string& aOut) { aOut += textOf(standing); });
    else
      neighbour = &standing;
  }
  for (Application const& added : fFiles.fAdded)
    if (isNew(added))
      fHomeless.emplace_back([this, &added](std::string& aOut) {
        std::string text = textOf(added);
        ApplicationChange const& change = *fFiles.changeOf(added);
        if (!isDeclared(change.fProfile, change.fProfileUri))
          declarePrefix(text, change.fProfile, change.fProfileUri);
        aOut += text;
      });
  if (neighbour == nullptr) return;
  fHaveIds = std::ranges::any_of(markup::attributes(fText, neighbour->fName),
                                 [](auto const& aAttribute) { return aAttribute.fName.ends_with(":id"); });
  std::size_t const from = neighbour->fName - 1;
  for (Edits::Write& write : takeHomeless())
    fEdits.addBehind(from, from + markup::element(fText, neighbour->fName).size(), std::move(write));
}

void Applications::patchTag(std::span<Application const* const> aRows) {
  Application const& first = *aRows.front();
  auto const name = static_cast<std::size_t>(first.fSpot.fOffset);
  auto const remove = [&] { fEdits.removeTag(name - 1, name - 1 + markup::element(fText, name).size()); };
  ApplicationChange const* const change = fFiles.changeOf(first);
  if (change != nullptr && change->fIsRemoved) return remove();
  auto const isRowThere = [this](Application const* aRow) { return isThere(*aRow); };
  bool const isAnyThere = std::ranges::any_of(aRows, isRowThere);
  bool const isAllThere = std::ranges::all_of(aRows, isRowThere);
  if (!isAnyThere && first.fIsInExtension) return remove();
  if (first.fIsInExtension) {
    auto const [from, to] = fRemoved.equal_range(first.fElement.get());
    for (auto removed = from; removed != to; ++removed) removeFromEntry(name, removed->second);
  }
  if (!isAllThere || change != nullptr) {
    TagEdits::Tag const tag = fEdits.tagOf(name);
    if (!isAllThere && !pruneBases(tag, aRows)) return remove();
    if (change != nullptr)
      for (auto const& [tagName, values] : change->fValues) setValues(tag, tagName, values);
  }
  if (isAnyThere) fStanding.push_back({name, &first});
}

bool Applications::pruneBases(TagEdits::Tag const& aTag, std::span<Application const* const> aRows) {
  // By place; of each whether all that it names is there.
  std::map<std::size_t, bool> places;
  for (Application const* const row : aRows)
    places.try_emplace(static_cast<std::size_t>(row->fBase), true).first->second &= isThere(*row);
  struct Base {
    markup::Attribute const* fAttribute;
    markup::Child const* fChild;
    std::string fLeft;
  };
  std::vector<Base> changed;
  bool isAnyLeft = false;
  auto const look = [&](std::size_t aName, Base aBase, std::string const& aAddress) {
    auto const place = places.find(aName);
    bool const isUntouched = place == places.end() || place->second;
    if (!isUntouched) aBase.fLeft = wordsThere(aAddress);
    isAnyLeft |= isUntouched || !aBase.fLeft.empty();
    if (!isUntouched) changed.push_back(std::move(aBase));
  };
  for (markup::Attribute const& attribute : aTag.fAttributes)
    if (isBase(attribute.fName)) look(attribute.fFrom, {&attribute, nullptr, {}}, attribute.value());
  for (markup::Child const& child : aTag.fChildren)
    if (isBase(markup::nameAt(fText, child.fName)))
      look(child.fName, {nullptr, &child, {}}, childValueOf(markup::element(fText, child.fName)).fText);
  if (!isAnyLeft) return false;
  for (Base const& base : changed) {
    if (base.fChild != nullptr && base.fLeft.empty())
      fEdits.removeTag(base.fChild->fFrom, base.fChild->fTo);
    else if (base.fChild != nullptr)
      continue;
    else if (base.fLeft.empty())
      fEdits.removeAttribute(*base.fAttribute);
    else
      fEdits.setAttribute(aTag, base.fAttribute, base.fAttribute->fName, base.fLeft);
  }
  return true;
}

std::string Applications::wordsThere(std::string_view aAddress) const {
  std::string left;
  std::vector<std::string_view> words;
  forEachWord(aAddress, [&](auto aWord) { words.push_back(aWord); });
  if (words.size() < 2) return left;
  for (std::string_view const word : words) {
    Element const* const element = fFile.fIds.find(word);
    if (element != nullptr && !element->deviant_isValid(fDeviant)) continue;
    (left += left.empty() ? "" : " ") += word;
  }
  return left;
}

void Applications::name(std::function<bool(Element const&)> const& aIsOther) {
  std::span<Application const> const rows = fFiles.fApplications;
  for (auto first = rows.begin(); first != rows.end();) {
    auto const last = std::find_if(first, rows.end(), [&](Application const& aRow) {
      return aRow.fSpot != first->fSpot || aRow.fBase != first->fBase;
    });
    std::span const base(first, last);
    first = last;
    Application const& row = base.front();
    if (row.fSpot.fFile != fNumber || row.fIsInExtension || fFiles.isRemoved(row)) continue;
    auto const isThereAndOther = [&](Application const& aRow) {
      return isThere(aRow) && fFiles.standIn(*aRow.fElement) == nullptr && aIsOther(*aRow.fElement);
    };
    if (std::ranges::any_of(base, isThereAndOther)) nameBase(base);
  }
}

void Applications::nameBase(std::span<Application const> aRows) {
  auto const base = static_cast<std::size_t>(aRows.front().fBase);
  bool const isChild = fText[base - 1] == '<';
  auto const attributes =
      isChild ? markup::attributes(fText, base) : std::vector{markup::attribute(fText, base)};
  auto const address = std::ranges::find_if(attributes, [&](markup::Attribute const& aAttribute) {
    return !isChild || aAttribute.fName == "href" || aAttribute.fName.ends_with(":idref");
  });
  bool const isText = address == attributes.end();
  bool const isHref = !isText && isChild && address->fName == "href";
  std::string const old = isText ? childValueOf(markup::element(fText, base)).fText : address->value();
  std::size_t words = 0;
  forEachWord(old, [&](auto) { ++words; });
  // What names nothing is left to what it says.
  if (words != aRows.size()) return;
  std::string ids;
  std::vector<Element*> elements;
  bool isLocal = true;
  for (Application const& row : aRows) {
    if (!isThere(row)) continue;
    elements.push_back(row.fElement.get());
    std::string const id = fTags.localId(*elements.back());
    isLocal &= !id.empty();
    (ids += ids.empty() ? "" : " ") += id;
  }
  if (isText && isLocal && ids == old) return;
  if (isHref && words == 1)
    return fEdits.setAttribute({}, &*address, "href",
                               isLocal ? '#' + ids : fTags.fForeignAddress(*elements.front()));
  if (!isText && !isHref && isLocal) return fEdits.setAttribute({}, &*address, address->fName, ids);
  Edits::Write write = [this, name = std::string(isChild ? markup::nameAt(fText, base) : address->fName),
                        elements](std::string& aOut) {
    for (Element* const element : elements) fTags.writeReference(name, *element, aOut);
  };
  if (isChild)
    return fEdits.replace(base - 1, base - 1 + markup::element(fText, base).size(), std::move(write));
  fEdits.removeAttribute(*address);
  fEdits.addChild(fEdits.tagOf(static_cast<std::size_t>(aRows.front().fSpot.fOffset)), 0, std::move(write));
}

void Applications::removeFromEntry(std::size_t aEntry, std::string_view aStereotype) {
  auto const raw = markup::escaped(aStereotype, '"');
  for (markup::Child const& child : fEdits.tagOf(aEntry).fChildren)
    for (markup::Attribute const& attribute : markup::attributes(fText, child.fName)) {
      auto const isAt = [&](EntryPlace const& aPlace) {
        return aPlace.fTag == markup::nameAt(fText, child.fName) && aPlace.fAttribute == attribute.fName;
      };
      if (std::ranges::any_of(kStereotypePlaces, isAt) && attribute.value() == aStereotype)
        fEdits.removeAttribute(attribute);
      if (!isAt(kXrefs)) continue;
      // With the whole block if no other stereotype is in it.
      constexpr std::string_view kStart = "@STEREO;";
      constexpr std::string_view kEnd = "@ENDSTEREO;";
      constexpr std::string_view kBlockEnd = "$ENDXREF;";
      std::size_t from = attribute.fRaw.find(std::string(kStart) + "Name=" + raw + ';');
      if (from == std::string_view::npos) continue;
      std::size_t to =
          std::min(attribute.fRaw.find(kEnd, from), attribute.fRaw.size() - kEnd.size()) + kEnd.size();
      std::size_t const block = attribute.fRaw.rfind("$XREFPROP=", from);
      std::size_t const blockEnd = attribute.fRaw.find(kBlockEnd, to);
      if (block != std::string_view::npos && blockEnd != std::string_view::npos &&
          attribute.fRaw.find(kStart, block) == from && attribute.fRaw.find(kStart, to) > blockEnd) {
        from = block;
        to = blockEnd + kBlockEnd.size();
      }
      auto const start = static_cast<std::size_t>(attribute.fRaw.data() - fText.data());
      fEdits.erase(start + from, start + to);
    }
}

void Applications::setValues(TagEdits::Tag const& aTag, std::string const& aName,
                             std::vector<std::string> const& aValues) {
  auto const attribute = std::ranges::find(aTag.fAttributes, aName, &markup::Attribute::fName);
  bool const isAttribute = attribute != aTag.fAttributes.end();
  std::vector<markup::Child> children;
  std::vector<ChildValue> old;
  for (markup::Child const& child : aTag.fChildren) {
    if (markup::nameAt(fText, child.fName) != aName) continue;
    children.push_back(child);
    old.push_back(childValueOf(markup::element(fText, child.fName)));
  }
  if (children.empty() && aValues.size() == 1)
    return fEdits.setAttribute(aTag, isAttribute ? &*attribute : nullptr, aName, aValues.front());
  if (isAttribute) fEdits.removeAttribute(*attribute);
  // What is equal in front and behind stays; where something comes in, what follows is written again.
  std::size_t const shorter = std::min(old.size(), aValues.size());
  std::size_t front = 0;
  std::size_t back = 0;
  while (front < shorter && old[front].fText == aValues[front]) ++front;
  while (back < shorter - front && old[old.size() - back - 1].fText == aValues[aValues.size() - back - 1])
    ++back;
  if (old.size() - back == front && back > 0) back = 0;
  std::vector<Edits::Write> written;
  for (std::size_t at = front; at < aValues.size() - back; ++at) {
    std::string const reference = old.empty() ? std::string() : old[std::min(at, old.size() - 1)].fReference;
    written.emplace_back([this, aName, reference, value = aValues[at]](std::string& aOut) {
      if (reference.empty()) return markup::writeValue(aName, value, aOut);
      (aOut += '<') += aName;
      fTags.attribute(aOut, reference, value);
      aOut += "/>";
    });
  }
  children = {children.begin() + static_cast<std::ptrdiff_t>(front),
              children.end() - static_cast<std::ptrdiff_t>(back)};
  fEdits.replaceChildren(aTag, children, std::move(written));
}

bool Applications::isLost(Standing const& aStanding, std::span<Cut const> aCuts, std::size_t& aNext,
                          std::vector<Cut const*>& aOpen) const {
  for (; aNext < aCuts.size() && aCuts[aNext].fFrom < aStanding.fName; ++aNext) {
    while (!aOpen.empty() && aOpen.back()->fTo <= aCuts[aNext].fFrom) aOpen.pop_back();
    aOpen.push_back(&aCuts[aNext]);
  }
  while (!aOpen.empty() && aOpen.back()->fTo <= aStanding.fName) aOpen.pop_back();
  return !aOpen.empty() && !aOpen.back()->fIsMoved;
}

std::string Applications::textOf(Standing const& aStanding) {
  std::size_t const from = aStanding.fName - 1;
  std::string text;
  fEdits.write(from, from + markup::element(fText, aStanding.fName).size(), text,
               [this](std::size_t aFrom, std::size_t aTo) { noteCopied(aFrom, aTo); });
  return text;
}

std::string Applications::textOf(Application const& aAdded) {
  fOrder.push_back(aAdded.fNumber);
  ApplicationChange const& change = *fFiles.changeOf(aAdded);
  std::string const name = change.fProfile + ':' + std::string(aAdded.fName);
  std::string text = '<' + name;
  if (fHaveIds) {
    std::string& id = fIds[aAdded.fNumber];
    if (id.empty()) id = fTags.newId(name + fTags.idOf(*aAdded.fElement));
    fTags.attribute(text, fTags.idName(), id);
  }
  std::string children;
  if (std::string const id = fTags.localId(*aAdded.fElement); !id.empty())
    fTags.attribute(text, change.fBase, id);
  else
    fTags.writeReference(change.fBase, *aAdded.fElement, children);
  for (auto const& [tag, values] : change.fValues) {
    if (values.size() == 1) fTags.attribute(text, tag, values.front());
    if (values.size() < 2) continue;
    for (std::string const& value : values) markup::writeValue(tag, value, children);
  }
  if (children.empty()) return text + "/>";
  return text + '>' + children + "</" + name + '>';
}

bool Applications::isDeclared(std::string_view aPrefix, std::string_view aAddress) const {
  std::string const name = "xmlns:" + std::string(aPrefix);
  return std::ranges::any_of(
      markup::attributes(fText, markup::prologEnd(fText) + 1),
      [&](auto const& aAttribute) { return aAttribute.fName == name && aAttribute.value() == aAddress; });
}

void Applications::noteCopied(std::size_t aFrom, std::size_t aTo) {
  auto standing = std::ranges::lower_bound(fStanding, aFrom, {}, &Standing::fName);
  for (; standing != fStanding.end() && standing->fName < aTo; ++standing)
    fOrder.push_back(standing->fApplication->fNumber);
}

}  // namespace umlmm::files
