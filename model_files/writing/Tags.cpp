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

bool isSubsetOf(Feature const& aSpecial, Feature const& aGeneral) {
  return std::ranges::any_of(aSpecial.fProperty->subsetted(),
                             [&](auto const* aProperty) { return aProperty == aGeneral.fProperty; });
}

}  // namespace

Feature const* featureOf(Element const& aOwner, Element const& aPart, Kelm::Deviant const& aDeviant) {
  Feature const* chosen = nullptr;
  for (Feature const* const feature : metaclassOf(aOwner).fOrder) {
    if (!feature->fComposite || !isWritten(*feature) || feature->fKind != Kind::Reference) continue;
    if (!metaclassOf(aPart).isA(*feature->fType)) continue;
    if (chosen != nullptr && !isSubsetOf(*chosen, *feature)) continue;
    auto const parts = elementsOf(aOwner, *feature, aDeviant);
    if (std::ranges::find(parts, &aPart) != parts.end()) chosen = feature;
  }
  return chosen;
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

bool Tags::writesEnd(Feature const& aFeature) const {
  if (aFeature.fOpposite == nullptr || fStyle.isWritten(aFeature)) return true;
  if (fStyle.isWritten(*aFeature.fOpposite)) return false;
  // Nobody tells. Ends that must be there are written, and of equal ones both.
  bool const isRequired = aFeature.fProperty->getLower() > 0;
  bool const isOtherRequired = aFeature.fOpposite->fProperty->getLower() > 0;
  return isRequired || !isOtherRequired;
}

void Tags::write(Element& aElement, std::string_view aTagName, Feature const* aFeature,
                 std::string const& aIndent, std::string& aOut) {
  if (fWriteKnown && fWriteKnown(aElement, aTagName, aFeature, aOut)) return;
  if (fOrder != nullptr) fOrder->push_back(&aElement);
  std::string attributes;
  std::vector<std::string> children;
  std::string const inner = aIndent + fLayout.fUnit;
  if (needsType(aElement, aFeature)) attribute(attributes, fStyle.fTypeName, typeOf(aElement));
  attribute(attributes, fStyle.fIdName, idOf(aElement));
  Metaclass const& metaclass = metaclassOf(aElement);
  for (Feature const* const feature : metaclass.fOrder) {
    if (!isWritten(*feature) || feature->fKind == Kind::Reference) continue;
    writeValues(aElement, *feature, attributes, children);
  }
  for (Feature const* const feature : metaclass.fOrder) {
    if (!isWritten(*feature) || feature->fKind != Kind::Reference || !writesEnd(*feature)) continue;
    auto values = elementsOf(aElement, *feature, fDeviant);
    if (feature->fComposite)
      std::erase_if(values, [&](Element* aPart) { return featureOf(aElement, *aPart, fDeviant) == feature; });
    writeReferences(*feature, values, attributes, children);
  }
  if (fKept)
    for (std::string& text : fKept(aElement)) children.push_back(std::move(text));
  ((aOut += '<') += aTagName) += attributes;
  bool hasParts = false;
  auto const child = [&](auto aWrite) {
    if (!hasParts) aOut += '>';
    hasParts = true;
    (aOut += fLayout.fLineEnd) += fLayout.fLineEnd.empty() ? "" : inner;
    aWrite();
  };
  for (std::string const& text : children) child([&] { aOut += text; });
  for (Feature const* const feature : metaclass.fOrder) {
    if (!isWritten(*feature) || feature->fKind != Kind::Reference || !feature->fComposite) continue;
    for (Element* const part : elementsOf(aElement, *feature, fDeviant))
      if (featureOf(aElement, *part, fDeviant) == feature)
        child([&] { write(*part, feature->fName, feature, inner, aOut); });
  }
  if (!hasParts) {
    aOut += "/>";
    return;
  }
  (aOut += fLayout.fLineEnd) += fLayout.fLineEnd.empty() ? "" : aIndent;
  ((aOut += "</") += aTagName) += '>';
}

void Tags::writeValues(Element& aElement, Feature const& aFeature, std::string& aAttributes,
                       std::vector<std::string>& aChildren) {
  auto const texts = textsOf(aElement, aFeature, fDeviant);
  if (texts == textsOf(pristine(metaclassOf(aElement)), aFeature, fReadModel.getDeviant())) return;
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
  id = fKnownId ? fKnownId(aElement) : std::string();
  if (id.empty()) id = externalIdOf(aElement, fDeviant);
  if (id.empty()) {
    id = newId(aElement);
    fNewIds[&aElement] = id;
  }
  return id;
}

std::string Tags::newId(Element& aElement) {
  static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  // From where the element stands and what it is called, so that the same change gives the same id.
  std::string seed(metaclassOf(aElement).fName);
  if (Element* const owner = containerOf(aElement, fDeviant)) seed += idOf(*owner);
  if (Feature const* const name = metaclassOf(aElement).feature("name"))
    for (std::string const& text : textsOf(aElement, *name, fDeviant)) seed += text;
  for (unsigned attempt = 0;; ++attempt) {
    std::uint64_t halves[] = {hashOf(seed, 0xcbf29ce484222325ULL + attempt), 0};
    halves[1] = hashOf(seed, halves[0]);
    std::string id = "_";
    for (int at = 0; at < 22; ++at) {
      id += kDigits[halves[at / 11] & 63];
      halves[at / 11] >>= 6;
    }
    if (fUsedIds.insert(id).second) return id;
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
