#include "model_files/writing/Tags.h"

#include <algorithm>

#include "model_files/dialect/older.h"
#include "model_files/dialect/values.h"
#include "model_files/text/markup.h"
#include "uml_metamodel/umlmm/MetamodelExtension.h"

namespace umlmm::files {

namespace {

Metaclass const& metaclassOf(Element const& aElement) { return Metamodel::instance().metaclassOf(aElement); }

/// FNV-1a, which is the same everywhere.
std::uint64_t hashOf(std::string_view aText, std::uint64_t aSeed) noexcept {
  for (char const character : aText)
    aSeed = (aSeed ^ static_cast<unsigned char>(character)) * 0x100000001b3ULL;
  return aSeed;
}

}  // namespace

bool isSubsetOf(Feature const& aSpecial, Feature const& aGeneral) {
  return std::ranges::any_of(aSpecial.fProperty->subsetted(),
                             [&](auto const* aProperty) { return aProperty == aGeneral.fProperty; });
}

PartPlaces placesOf(Element const& aOwner, Kelm::Deviant const& aDeviant) {
  PartPlaces places;
  for (Feature const* const feature : metaclassOf(aOwner).fOrder) {
    if (!feature->fComposite || !isWritten(*feature) || feature->fKind != Kind::Reference) continue;
    for (Element const* const part : elementsOf(aOwner, *feature, aDeviant)) {
      auto const [known, isNew] = places.try_emplace(part, feature);
      if (!isNew && isSubsetOf(*known->second, *feature)) known->second = feature;
    }
  }
  return places;
}

std::span<Made const> madeIn(ModelFile const& aFile, std::uint64_t aTag) {
  std::uint64_t const end = aTag + markup::element(aFile.fText.utf8(), aTag).size();
  auto const first = std::ranges::lower_bound(aFile.fMade, aTag, {}, &Made::fOffset);
  return {first, std::ranges::lower_bound(first, aFile.fMade.end(), end, {}, &Made::fOffset)};
}

std::string textOf(ModelFile const& aFile, Kept const& aKept,
                   std::function<void(Made const&, std::string&)> const& aWrite) {
  std::string_view const source = aFile.fText.utf8();
  std::string text;
  if (aKept.fIsAttribute) {
    auto const attribute = markup::attribute(source, aKept.fSpot.fOffset);
    markup::writeValue(std::string(attribute.fName), attribute.value(), text);
    return text;
  }
  std::size_t at = aKept.fSpot.fOffset - 1;
  std::size_t const end = at + markup::element(source, aKept.fSpot.fOffset).size();
  for (Made const& made : madeIn(aFile, aKept.fSpot.fOffset)) {
    if (made.fOffset < at) continue;
    text += source.substr(at, made.fOffset - 1 - at);
    aWrite(made, text);
    at = made.fOffset - 1 + markup::element(source, made.fOffset).size();
  }
  return text += source.substr(at, end - at);
}

std::string textOf(Dangling const& aDangling) {
  std::string const quoted = markup::escaped(aDangling.fAddress, '"');
  bool const isId = aDangling.fAddress.find('#') == std::string::npos;
  return '<' + std::string(aDangling.fFeature->fName) + (isId ? " xmi:idref=\"" : " href=\"") + quoted +
         "\"/>";
}

Tags::Tags(Kelm::Model const& aModel, Kelm::Model const& aRead, Style const& aStyle, Layout aLayout)
    : fDeviant(aModel.getDeviant()), fReadModel(aRead), fStyle(aStyle), fLayout(std::move(aLayout)) {}

void Tags::attribute(std::string& aOut, std::string_view aName, std::string_view aValue) const {
  (aOut += ' ') += aName;
  (aOut += '=') += fStyle.fQuote;
  (aOut += markup::escaped(aValue, fStyle.fQuote)) += fStyle.fQuote;
}

std::string Tags::typeOf(Element const& aElement) const {
  return fStyle.fUmlPrefix + ':' + std::string(metaclassOf(aElement).fName);
}

bool Tags::needsType(Element const& aElement, Feature const* aFeature) const {
  if (aFeature == nullptr) return fStyle.writesTypes();
  return fStyle.writesTypes() || impliedType(*aFeature) != &metaclassOf(aElement);
}

bool Tags::needsNil(Element const& aElement, Feature const& aFeature) {
  return !aFeature.fMany && textsOf(aElement, aFeature, fDeviant).empty() &&
         !textsOf(pristine(metaclassOf(aElement)), aFeature, fReadModel.getDeviant()).empty();
}

void Tags::writeNil(std::string_view aName, std::string& aOut) {
  (aOut += '<') += aName;
  aOut += " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:nil=\"true\"/>";
}

bool Tags::writesEnd(Feature const& aFeature) const {
  if (aFeature.fOpposite == nullptr || fStyle.isWritten(aFeature)) return true;
  if (fStyle.isWritten(*aFeature.fOpposite)) return false;
  // Nobody tells. Ends that must be there are written, and of equal ones both.
  bool const isRequired = aFeature.fProperty->getLower() > 0;
  bool const isOtherRequired = aFeature.fOpposite->fProperty->getLower() > 0;
  return isRequired || !isOtherRequired;
}

std::string Tags::innerIndent(std::string const& aIndent) const {
  // Blanks would outweigh all else in a very deep model.
  constexpr std::size_t kMost = 256;
  return aIndent.size() < kMost ? aIndent + fLayout.fUnit : aIndent;
}

void Tags::newLine(std::string_view aIndent, std::string& aOut) const {
  if (!fLayout.fLineEnd.empty()) (aOut += fLayout.fLineEnd) += aIndent;
}

void Tags::write(Element& aElement, std::string_view aTagName, Feature const* aFeature,
                 std::string const& aIndent, std::string& aOut) {
  // Models may be deeper than the stack.
  std::vector<Open> open;
  start(aElement, aTagName, aFeature, aIndent, aOut, open);
  while (!open.empty()) {
    Open& last = open.back();
    if (last.fNext == last.fParts.size()) {
      newLine(last.fIndent, aOut);
      ((aOut += "</") += last.fTagName) += '>';
      open.pop_back();
      continue;
    }
    auto const [part, feature] = last.fParts[last.fNext++];
    std::string const inner = innerIndent(last.fIndent);
    newLine(inner, aOut);
    start(*part, feature->fName, feature, inner, aOut, open);
  }
}

void Tags::start(Element& aElement, std::string_view aTagName, Feature const* aFeature,
                 std::string const& aIndent, std::string& aOut, std::vector<Open>& aOpen) {
  if (fWriteKnown && fWriteKnown(aElement, aTagName, aFeature, aOut)) return;
  if (fOrder != nullptr) fOrder->push_back(&aElement);
  std::string attributes;
  std::vector<std::string> children;
  bool const isTold = aFeature != nullptr || aTagName.find(':') != std::string_view::npos;
  if (!isTold || needsType(aElement, aFeature)) attribute(attributes, fStyle.fTypeName, typeOf(aElement));
  attribute(attributes, fStyle.fIdName, idOf(aElement));
  Metaclass const& metaclass = metaclassOf(aElement);
  for (Feature const* const feature : metaclass.fOrder)
    if (isWritten(*feature) && feature->fKind != Kind::Reference)
      writeValues(aElement, *feature, attributes, children);
  PartPlaces const places = placesOf(aElement, fDeviant);
  Open open{std::string(aTagName), aIndent, {}};
  for (Feature const* const feature : metaclass.fOrder) {
    if (!isWritten(*feature) || feature->fKind != Kind::Reference) continue;
    auto values = elementsOf(aElement, *feature, fDeviant);
    if (feature->fComposite) {
      // What stands at the top of another text is named.
      auto const isHere = [&](Element* aPart) {
        return places.at(aPart) == feature && (!fForeignAddress || fForeignAddress(*aPart).empty());
      };
      for (Element* const part : values)
        if (isHere(part)) open.fParts.emplace_back(part, feature);
      std::erase_if(values, isHere);
    }
    if (writesEnd(*feature)) writeReferences(*feature, values, attributes, children);
  }
  if (fKept)
    for (std::string& text : fKept(aElement)) children.push_back(std::move(text));
  ((aOut += '<') += aTagName) += attributes;
  if (children.empty() && open.fParts.empty()) {
    aOut += "/>";
    return;
  }
  aOut += '>';
  for (std::string const& text : children) {
    newLine(innerIndent(aIndent), aOut);
    aOut += text;
  }
  aOpen.push_back(std::move(open));
}

void Tags::writeValues(Element& aElement, Feature const& aFeature, std::string& aAttributes,
                       std::vector<std::string>& aChildren) {
  auto const texts = textsOf(aElement, aFeature, fDeviant);
  if (texts == textsOf(pristine(metaclassOf(aElement)), aFeature, fReadModel.getDeviant())) return;
  if (needsNil(aElement, aFeature)) writeNil(aFeature.fName, aChildren.emplace_back());
  for (std::string const& text : texts) {
    if (!aFeature.fMany) {
      attribute(aAttributes, aFeature.fName, text);
      continue;
    }
    std::string const name(aFeature.fName);
    markup::writeValue(name, text, aChildren.emplace_back());
  }
}

void Tags::writeReferences(Feature const& aFeature, std::vector<Element*> const& aValues,
                           std::string& aAttributes, std::vector<std::string>& aChildren) {
  // An attribute has ids alone, and tags of the same name would not keep the order with it.
  bool const asAttribute = fStyle.asAttribute(aFeature) && std::ranges::all_of(aValues, [&](Element* aValue) {
                             return !localId(*aValue).empty();
                           });
  std::string ids;
  for (Element* const value : aValues) {
    if (asAttribute)
      (ids += ids.empty() ? "" : " ") += localId(*value);
    else
      writeReference(aFeature.fName, *value, aChildren.emplace_back());
  }
  if (!ids.empty()) attribute(aAttributes, aFeature.fName, ids);
}

void Tags::writeReference(std::string_view aName, Element& aValue, std::string& aOut) {
  (aOut += '<') += aName;
  std::string const id = localId(aValue);
  if (id.empty()) {
    attribute(aOut, fStyle.fTypeName, typeOf(aValue));
    attribute(aOut, "href", fForeignAddress(aValue));
  } else {
    attribute(aOut, fStyle.fIdName.substr(0, fStyle.fIdName.find(':')) + ":idref", id);
  }
  aOut += "/>";
}

std::string Tags::localId(Element& aElement) {
  return fForeignAddress && !fForeignAddress(aElement).empty() ? std::string() : idOf(aElement);
}

std::string const& Tags::idOf(Element& aElement) {
  std::string& id = fIds[&aElement];
  if (!id.empty()) return id;
  id = givenId(aElement);
  // Of several elements with an id one keeps it: the one that it means.
  bool const isUsed = !id.empty() && fUsedIds.try_emplace(id, &aElement).first->second != &aElement;
  if (id.empty() || isUsed) {
    id = newId(seedOf(aElement), &aElement);
    fNewIds[&aElement] = id;
  }
  return id;
}

std::string Tags::givenId(Element& aElement) const {
  std::string id = fKnownId ? fKnownId(aElement) : std::string();
  return id.empty() ? externalIdOf(aElement, fDeviant) : id;
}

std::string Tags::seedOf(Element& aElement) {
  // From where the element stands and what it is called, so that the same change gives the same id.
  std::string seed(metaclassOf(aElement).fName);
  if (Element* const owner = containerOf(aElement, fDeviant)) {
    std::string const id = givenId(*owner);
    seed += id.empty() ? idOf(*owner) : id;
  }
  if (Feature const* const name = metaclassOf(aElement).feature("name"))
    for (std::string const& text : textsOf(aElement, *name, fDeviant)) seed += text;
  return seed;
}

std::string Tags::newId(std::string_view aSeed, Element const* aElement) {
  static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  for (unsigned attempt = 0;; ++attempt) {
    std::uint64_t halves[] = {hashOf(aSeed, 0xcbf29ce484222325ULL + attempt), 0};
    halves[1] = hashOf(aSeed, halves[0]);
    std::string id = "_";
    for (int at = 0; at < 22; ++at) {
      id += kDigits[halves[at / 11] & 63];
      halves[at / 11] >>= 6;
    }
    if (fUsedIds.try_emplace(id, aElement).second) return id;
  }
}

Element& Tags::pristine(Metaclass const& aMetaclass) {
  ElementPtr& element = fPristine[&aMetaclass];
  if (element == nullptr) {
    Kelm::ClassObject const made =
        createElement(fReadModel, Kelm::ImmutableClass(aMetaclass.fClass, Kelm::metaDeviant()));
    element.reset(made.get());
    if (Feature const* const reentrant = fStyle.fReentrant ? aMetaclass.fReentrant : nullptr)
      reentrant->fMethods->setEntry(element.get(), fReadModel.getDeviant(), reentrant->fId,
                                    valueOf(*reentrant, "true"));
  }
  return *element;
}

}  // namespace umlmm::files
