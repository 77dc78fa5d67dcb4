#include "model_files/reading/Builder.h"

#include "kelm/kernel/containers/Ref.h"
#include "model_files/dialect/extensions.h"
#include "model_files/dialect/older.h"
#include "model_files/dialect/values.h"
#include "uml_metamodel/umlmm/MetamodelExtension.h"

namespace umlmm::files {

namespace {

constexpr std::string_view kKept = "kept as written";
constexpr std::string_view kAtTop = "stands at the top level of the model";

/// All text of a tag, also where it stands in pieces.
std::string_view contentOf(pugi::xml_node aNode, std::string& aScratch) {
  pugi::xml_text const text = aNode.text();
  if (!text) return {};
  std::string_view const first = text.get();
  bool const isEmbedded = text.data() == aNode;
  pugi::xml_node const next = isEmbedded ? aNode.first_child() : text.data().next_sibling();
  if (!next) return first;
  aScratch.assign(first);
  for (pugi::xml_node more = next; more; more = more.next_sibling())
    if (more.type() == pugi::node_pcdata || more.type() == pugi::node_cdata) aScratch += more.value();
  return aScratch;
}

bool isDeclaration(std::string_view aName) noexcept {
  return aName.starts_with("xmlns") && (aName.size() == 5 || aName[5] == ':');
}

/// "base_Class".
bool isBase(std::string_view aName) noexcept {
  return aName.starts_with("base_") || aName.starts_with("base-");
}

}  // namespace

Builder::Builder(ModelFiles& aFiles, std::uint32_t aFile, Kelm::Model const& aModel, Findings& aFindings,
                 References& aReferences, char const* aText, bool aIsAgain)
    : fFiles(aFiles),
      fOwn(aFiles.fFiles[aFile]),
      fFile(aFile),
      fModel(aModel),
      fDeviant(aModel.getDeviant()),
      fFindings(aFindings),
      fReferences(aReferences),
      fText(aText),
      fIsAgain(aIsAgain) {}

void Builder::start(pugi::xml_document const& aDocument) {
  fFrames.push_back({aDocument.first_child(), nullptr, nullptr, 0, false});
}

bool Builder::step(std::size_t aCount) {
  while (!fFrames.empty()) {
    if (aCount-- == 0) return false;
    Frame& frame = fFrames.back();
    pugi::xml_node const node = frame.fNext;
    if (!node) {
      fPrefixes.close(frame.fOpen);
      fFrames.pop_back();
      continue;
    }
    frame.fNext = node.next_sibling();
    if (node.type() == pugi::node_element) handle(node);
  }
  setDerived();
  return true;
}

void Builder::finish() {
  for (auto const& [metaclass, count] : fCounts) {
    fFiles.fReport.fElements[std::string(metaclass->fName)] += count;
    fFiles.fReport.fElementCount += count;
  }
}

void Builder::declarePrefixes(pugi::xml_node aNode) {
  for (pugi::xml_attribute const attribute : aNode.attributes()) {
    std::string_view const name = attribute.name();
    if (!isDeclaration(name)) continue;
    std::string_view const prefix = name.size() > 6 ? name.substr(6) : std::string_view();
    fPrefixes.declare(prefix, attribute.value());
    Space const space = fPrefixes.all().back().fSpace;
    if (space == Space::Uml && fUmlAddress.empty()) fUmlAddress = attribute.value();
    if (space == Space::Xmi && fXmiAddress.empty()) fXmiAddress = attribute.value();
  }
}

Builder::Head Builder::headOf(pugi::xml_node aNode) const {
  Head head;
  for (pugi::xml_attribute const attribute : aNode.attributes()) {
    std::string_view const text = attribute.name();
    if (text == "href") head.fHref = attribute.value();
    if (text.find(':') == std::string_view::npos) continue;
    QualifiedName const name(text);
    Space const space = name.fPrefix == "xmi" ? Space::Xmi : fPrefixes.find(name.fPrefix);
    if (space != Space::Xmi && space != Space::Xsi) continue;
    if (name.fName == "type") head.fType = attribute.value();
    if (name.fName == "id") head.fId = attribute.value();
    if (name.fName == "idref") head.fIdref = attribute.value();
    if (name.fName == "nil") head.fIsNil = attribute.as_bool();
  }
  if (!head.fType.empty()) {
    QualifiedName const type(head.fType);
    // Without a prefix it is one of UML in a file that has to do with UML.
    bool const isPlain = type.fPrefix.empty() && !fUmlAddress.empty();
    head.fTypeSpace = isPlain ? Space::Uml : fPrefixes.find(type.fPrefix);
  }
  return head;
}

void Builder::handle(pugi::xml_node aNode) {
  fOffset = offsetOf(aNode.name());
  std::size_t const open = fPrefixes.open();
  std::size_t const depth = fFrames.size();
  declarePrefixes(aNode);
  QualifiedName const name(aNode.name());
  Head const head = headOf(aNode);
  Frame const frame = fFrames.back();
  if (frame.fIsUncovered)
    handleUncovered(frame, aNode, name, head);
  else if (frame.fElement == nullptr)
    handleTop(aNode, name, head);
  else
    handleInside(frame, aNode, name, head);
  // What the tag declares holds as long as its children are being handled.
  if (fFrames.size() > depth)
    fFrames.back().fOpen = open;
  else
    fPrefixes.close(open);
}

void Builder::enter(pugi::xml_node aNode, Element* aElement, Metaclass const* aMetaclass, bool aIsUncovered) {
  fFrames.push_back({aNode.first_child(), aElement, aMetaclass, fPrefixes.open(), aIsUncovered});
}

void Builder::handleTop(pugi::xml_node aNode, QualifiedName aName, Head const& aHead) {
  if (aName.fPrefix.empty() && aName.fName == "documentation") noteTool(aNode);
  Space const space = fPrefixes.find(aName.fPrefix);
  // The frame of XMI 1 holds nothing of UML 2, whatever it says.
  if (aName.fName == "XMI" && aNode.attribute("xmi.version")) return;
  if (aName.fName == "XMI") return enter(aNode, nullptr, nullptr);
  bool const isElsewhere = !aHead.fHref.empty() || !aHead.fIdref.empty();
  if (!isElsewhere && (space == Space::Uml || aHead.fTypeSpace == Space::Uml)) {
    ++fFound;
    std::string_view const type =
        aHead.fTypeSpace == Space::Uml ? QualifiedName(aHead.fType).fName : aName.fName;
    Metaclass const* const metaclass = metaclassCalled(type);
    if (metaclass != nullptr && !metaclass->fAbstract) {
      if (fIsAgain) noteStyle(aNode, nullptr, *metaclass);
      Element& element = make(*metaclass, aNode, aHead);
      return enter(aNode, &element, metaclass);
    }
    fault("metaclass", type, kKept, spotOf(aNode));
    keep(nullptr, spotOf(aNode));
    return enter(aNode, nullptr, nullptr, true);
  }
  handlePrefixed({{}, nullptr, nullptr, 0, false}, aNode, aName, aHead);
}

void Builder::handleInside(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName,
                           Head const& aHead) {
  if (!aName.fPrefix.empty()) return handlePrefixed(aFrame, aNode, aName, aHead);
  Feature const* const feature = featureCalled(*aFrame.fMetaclass, aName.fName);
  if (feature != nullptr) {
    if (aHead.fIsNil) return;
    if (feature->fKind == Kind::Reference) return handleReference(aFrame, *feature, aNode, aHead);
    return handleValue(aFrame, *feature, aNode, aHead);
  }
  keep(aFrame.fElement, spotOf(aNode));
  if (aName.fName == "eAnnotations") return note("annotation", "eAnnotations", kKept, spotOf(aNode));
  fault("feature", in(*aFrame.fMetaclass, aName.fName), kKept, spotOf(aNode));
  handleUncovered(aFrame, aNode, aName, aHead);
}

void Builder::handleUncovered(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName,
                              Head const& aHead) {
  if (aName.fName == "eAnnotations" || !aHead.fHref.empty() || !aHead.fIdref.empty()) return;
  Space const space = fPrefixes.find(aName.fPrefix);
  Metaclass const* metaclass = nullptr;
  if (aHead.fTypeSpace == Space::Uml)
    metaclass = metaclassCalled(QualifiedName(aHead.fType).fName);
  else if (aHead.fType.empty() && space == Space::Uml)
    metaclass = metaclassCalled(aName.fName);
  // Parameters of templates are something else than those of behaviors.
  bool const isTemplate = std::string_view(aNode.parent().name()) == "ownedTemplateSignature";
  bool const isPlain = aHead.fType.empty() && aName.fPrefix.empty() && aNode.first_attribute();
  if (metaclass == nullptr && isPlain && !isTemplate) metaclass = impliedType(aFrame.fMetaclass, aName.fName);
  if (metaclass != nullptr && !metaclass->fAbstract) {
    note("element of an owner that is not covered", metaclass->fName, kAtTop, spotOf(aNode));
    Element& element = make(*metaclass, aNode, aHead);
    return enter(aNode, &element, metaclass);
  }
  if (space != Space::Xmi && space != Space::Other && aNode.first_child())
    enter(aNode, nullptr, nullptr, true);
}

void Builder::handleValue(Frame const& aFrame, Feature const& aFeature, pugi::xml_node aNode,
                          Head const& aHead) {
  Spot const spot = spotOf(aNode);
  if (!aHead.fHref.empty() || !aHead.fIdref.empty() ||
      !setValue(*aFrame.fElement, aFeature, contentOf(aNode, fScratch), spot))
    keep(aFrame.fElement, spot);
}

void Builder::handleReference(Frame const& aFrame, Feature const& aFeature, pugi::xml_node aNode,
                              Head const& aHead) {
  Spot const spot = spotOf(aNode);
  std::string_view const address = aHead.fIdref.empty() ? aHead.fHref : aHead.fIdref;
  if (!address.empty() && fIsAgain) fOwn.fStyle.note(aFeature, false);
  if (!address.empty()) {
    if (pugi::xml_node const more = aNode.first_child())
      fReferences.addPath(address, more.child("referenceExtension").attribute("referentPath").value());
    if (!aHead.fIdref.empty()) return fReferences.addAll(*aFrame.fElement, aFeature, address, spot);
    return fReferences.add(*aFrame.fElement, aFeature, address, spot);
  }
  if (aHead.fType.empty() && !aFeature.fComposite && !aNode.first_attribute()) {
    // An id as the text of a tag.
    pugi::xml_text const text = aNode.text();
    if (text) fReferences.addAll(*aFrame.fElement, aFeature, text.get(), spot);
    return;
  }
  // A name that tells no place of its own may tell the type.
  bool const isOwnName = aFeature.fName == aNode.name();
  Feature const* const written = isOwnName ? &aFeature : aFrame.fMetaclass->feature(aNode.name());
  Feature const& named = written == nullptr || impliedType(*written) == nullptr ? aFeature : *written;
  bool const isUml = aHead.fType.empty() || aHead.fTypeSpace == Space::Uml;
  if (!isUml) {
    keep(aFrame.fElement, spot);
    return note("namespace", aHead.fType, kKept, spot);
  }
  Metaclass const* metaclass =
      aHead.fType.empty() ? impliedType(named) : metaclassCalled(QualifiedName(aHead.fType).fName);
  if (metaclass == nullptr && aHead.fType.empty() && !isOwnName)
    metaclass = impliedType(aFrame.fMetaclass, aNode.name());
  if (metaclass == nullptr || metaclass->fAbstract) {
    keep(aFrame.fElement, spot);
    if (aHead.fType.empty())
      fault("type left out", in(*aFrame.fMetaclass, aFeature.fName), kKept, spot);
    else
      fault("metaclass", QualifiedName(aHead.fType).fName, kKept, spot);
    ++fFound;
    return enter(aNode, nullptr, nullptr, true);
  }
  if (fIsAgain) noteStyle(aNode, &aFeature, *metaclass);
  Element& part = make(*metaclass, aNode, aHead);
  Feature const* const place = aFeature.fDerived ? placeOf(*aFrame.fMetaclass, *metaclass) : &aFeature;
  if (place != nullptr && (aFeature.fComposite || !aFeature.fDerived))
    own(*aFrame.fElement, *place, part, aNode);
  else if (!aFeature.fComposite)
    note("derived feature", aFeature.fName, kAtTop, spot);
  else
    fault("element without a feature", in(*aFrame.fMetaclass, aNode.name()), kAtTop, spot);
  enter(aNode, &part, metaclass);
}

void Builder::handlePrefixed(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName,
                             Head const& aHead) {
  Spot const spot = spotOf(aNode);
  switch (fPrefixes.find(aName.fPrefix)) {
    case Space::Xmi:
    case Space::Xsi:
      keep(aFrame.fElement, spot);
      if (aName.fName == "Documentation" || aName.fName == "documentation") return noteTool(aNode);
      note("extension", aNode.name(), kKept, spot);
      forEachEntry(aNode, [&](pugi::xml_node aEntry, std::string_view aId) {
        std::string_view const stereotype = stereotypeIn(aEntry).value();
        fReferences.addEntry(stereotype.empty() ? stereotype : lasting(stereotype), aId, spotOf(aEntry));
      });
      // One tool keeps parts of the element itself there.
      if (pugi::xml_node const more = aNode.child("modelExtension"); more && aFrame.fElement != nullptr)
        enter(more, aFrame.fElement, aFrame.fMetaclass);
      return;
    case Space::Uml: {
      Metaclass const* const metaclass = metaclassCalled(aName.fName);
      if (aFrame.fElement == nullptr || metaclass == nullptr || metaclass->fAbstract) break;
      Feature const* const place = placeOf(*aFrame.fMetaclass, *metaclass);
      fault("element without a feature", aNode.name(),
            place != nullptr ? "taken as " + std::string(place->fName) : std::string(kAtTop), spot);
      Element& part = make(*metaclass, aNode, aHead);
      if (place != nullptr) own(*aFrame.fElement, *place, part, aNode);
      return enter(aNode, &part, metaclass);
    }
    default:
      if (handleApplication(aNode, aName)) return;
      break;
  }
  keep(aFrame.fElement, spot);
  note("namespace", aNode.name(), kKept, spot);
}

void Builder::noteTool(pugi::xml_node aNode) {
  Report::File& file = fFiles.fReport.fFiles[fFile];
  auto const read = [&](std::string_view aName, std::string& aOut) {
    for (pugi::xml_attribute const attribute : aNode.attributes())
      if (QualifiedName(attribute.name()).fName == aName) aOut = attribute.value();
    for (pugi::xml_node const child : aNode.children())
      if (QualifiedName(child.name()).fName == aName) aOut = child.text().get();
  };
  read("exporter", file.fTool);
  read("exporterVersion", file.fToolVersion);
}

bool Builder::handleApplication(pugi::xml_node aNode, QualifiedName aName) {
  bool isApplication = false;
  // The parser's text goes when all is read.
  std::string_view const name = fOwn.fText.utf8().substr(offsetOf(aName.fName.data()), aName.fName.size());
  auto const add = [&](std::string_view aAddress) {
    isApplication = true;
    forEachWord(aAddress, [&](auto aWord) { fReferences.addApplication(name, aWord, spotOf(aNode)); });
  };
  for (pugi::xml_attribute const attribute : aNode.attributes())
    if (isBase(attribute.name())) add(attribute.value());
  for (pugi::xml_node const child : aNode.children()) {
    if (!isBase(child.name())) continue;
    Head const head = headOf(child);
    add(!head.fIdref.empty() ? head.fIdref : !head.fHref.empty() ? head.fHref : child.text().get());
  }
  if (isApplication) ++fFiles.fReport.fStereotypeCount;
  return isApplication;
}

void Builder::noteStyle(pugi::xml_node aNode, Feature const* aFeature, Metaclass const& aMetaclass) {
  Style& style = fOwn.fStyle;
  bool isTyped = false;
  for (pugi::xml_attribute const attribute : aNode.attributes()) {
    QualifiedName const name(attribute.name());
    Space const space = name.fPrefix.empty() ? Space::None : fPrefixes.find(name.fPrefix);
    if (style.fQuote == 0) style.fQuote = fOwn.fText.utf8()[offsetOf(attribute.value()) - 1];
    if (space != Space::Xmi && space != Space::Xsi) continue;
    if (name.fName == "id" && style.fIdName.empty()) style.fIdName = attribute.name();
    if (name.fName != "type") continue;
    isTyped = true;
    if (style.fTypeName.empty()) style.fTypeName = attribute.name();
    std::string_view const prefix = QualifiedName(attribute.value()).fPrefix;
    if (style.fUmlPrefix.empty() && fPrefixes.find(prefix) == Space::Uml) style.fUmlPrefix = prefix;
  }
  if (aFeature == nullptr) {
    if (style.fUmlPrefix.empty()) style.fUmlPrefix = QualifiedName(aNode.name()).fPrefix;
  } else if (impliedType(*aFeature) == &aMetaclass) {
    ++(isTyped ? style.fTyped : style.fUntyped);
  }
}

std::string_view Builder::lasting(std::string_view aParsed) {
  // It lives in the file's text, unless it stands there in another form.
  std::string_view const text = fOwn.fText.utf8().substr(offsetOf(aParsed.data()), aParsed.size());
  return text == aParsed ? text : fOwn.fDecoded.emplace_back(aParsed);
}

Element& Builder::make(Metaclass const& aMetaclass, pugi::xml_node aNode, Head const& aHead) {
  ++fFound;
  Kelm::ClassObject const made =
      createElement(fModel, Kelm::ImmutableClass(aMetaclass.fClass, Kelm::metaDeviant()));
  Element& element = *made.get();
  fOwn.fMade.push_back({ElementPtr(&element), offsetOf(aNode.name())});
  ++fCounts[&aMetaclass];
  if (!aHead.fId.empty()) {
    // Ids live in the file's text, unless they stand there in another form.
    std::string_view const text = fOwn.fText.utf8();
    std::string_view id = text.substr(offsetOf(aHead.fId.data()), aHead.fId.size());
    if (id != aHead.fId) id = fOwn.fDecoded.emplace_back(aHead.fId);
    if (!fOwn.fIds.insert(id, element))
      fFiles.fReport.fDuplicateIds.emplace_back(id, fFiles.place(spotOf(aNode)));
  }
  readAttributes(element, aMetaclass, aNode);
  if (aMetaclass.fReentrant != nullptr && isReentrantByDefault(fUmlAddress) &&
      !aNode.attribute("isReentrant"))
    setValue(element, *aMetaclass.fReentrant, "true", spotOf(aNode));
  return element;
}

void Builder::own(Element& aOwner, Feature const& aFeature, Element& aPart, pugi::xml_node aNode) {
  try {
    Kelm::ClassObject const part(&aPart, fDeviant);
    if (aFeature.fMany)
      aFeature.fMethods->getSequenceEntry(&aOwner, fDeviant, aFeature.fId)
          ->generic_push_back(fDeviant, Kelm::Generic::RefAccess<Kelm::ClassObject>::make(part));
    else
      aFeature.fMethods->setEntry(&aOwner, fDeviant, aFeature.fId, Kelm::Object(&aPart, fDeviant));
  } catch (Kelm::Exception const& refusal) {
    fault("value refused", std::string(aFeature.fName) + ": " + refusal.what(), kAtTop, spotOf(aNode));
  }
}

void Builder::readAttributes(Element& aElement, Metaclass const& aMetaclass, pugi::xml_node aNode) {
  for (pugi::xml_attribute const attribute : aNode.attributes())
    readAttribute(aElement, aMetaclass, attribute);
}

void Builder::readAttribute(Element& aElement, Metaclass const& aMetaclass, pugi::xml_attribute aAttribute) {
  std::string_view const name = aAttribute.name();
  if (name.find(':') != std::string_view::npos || name == "xmlns") {
    if (isDeclaration(name)) return;
    Space const space = fPrefixes.find(QualifiedName(name).fPrefix);
    if (space == Space::Xmi || space == Space::Xsi) return;
    return keep(&aElement, spotOf(aAttribute.name()), true);
  }
  Spot const spot = spotOf(aAttribute.name());
  Feature const* const feature = featureCalled(aMetaclass, name);
  if (feature == nullptr) {
    fault("feature", in(aMetaclass, name), kKept, spot);
    return keep(&aElement, spot, true);
  }
  if (feature->fKind == Kind::Reference && fIsAgain) fOwn.fStyle.note(*feature, true);
  if (feature->fKind == Kind::Reference)
    return fReferences.addAll(aElement, *feature, aAttribute.value(), spot);
  if (!setValue(aElement, *feature, aAttribute.value(), spot)) keep(&aElement, spot, true);
}

bool Builder::setValue(Element& aElement, Feature const& aFeature, std::string_view aText, Spot aSpot) {
  if (aFeature.fDerived && aFeature.fReadOnly) {
    note("derived feature", aFeature.fName, "follows from others", aSpot);
    return false;
  }
  if (aFeature.fDerived) {
    fDerived.push_back({&aElement, &aFeature, std::string(aText), aSpot});
    return true;
  }
  return assign(aElement, aFeature, aText, aSpot);
}

void Builder::setDerived() {
  for (Derived const& derived : fDerived) {
    Feature const& feature = *derived.fFeature;
    // What stands in the file itself tells more: "upperValue" than "upper".
    Metaclass const& metaclass = Metamodel::instance().metaclassOf(*derived.fElement);
    Feature const* const source = metaclass.feature(std::string(feature.fName) + "Value");
    bool const isTold = source != nullptr && !elementsOf(*derived.fElement, *source, fDeviant).empty();
    Kelm::Object const value = valueOf(feature, derived.fText);
    std::vector<std::string> const texts = textsOf(*derived.fElement, feature, fDeviant);
    bool const isSame =
        !value.isNull() && texts.size() == 1 && texts.front() == files::textOf(feature, value);
    if (!isTold && !isSame) assign(*derived.fElement, feature, derived.fText, derived.fSpot);
  }
  fDerived.clear();
}

bool Builder::assign(Element& aElement, Feature const& aFeature, std::string_view aText, Spot aSpot) {
  Kelm::Object const value = valueOf(aFeature, aText);
  auto const what = [&] { return std::string(aFeature.fName) + " \"" + std::string(aText) + '"'; };
  if (value.isNull()) {
    fault("value", what(), kKept, aSpot);
    return false;
  }
  try {
    if (!aFeature.fMany) {
      aFeature.fMethods->setEntry(&aElement, fDeviant, aFeature.fId, value);
      return true;
    }
    auto& values = *aFeature.fMethods->getSequenceEntry(&aElement, fDeviant, aFeature.fId);
    if (!appendValue(values, aFeature, value, fDeviant)) fault("value", what(), kKept, aSpot);
    return true;
  } catch (Kelm::Exception const& refusal) {
    if (!aFeature.fDerived)
      fault("value refused", what() + ": " + refusal.what(), kKept, aSpot);
    else
      note("derived feature", aFeature.fName, "follows from others", aSpot);
    return false;
  }
}

void Builder::note(std::string_view aKind, std::string_view aWhat, std::string_view aOutcome, Spot aSpot) {
  fFindings.add(Findings::Weight::Note, aKind, aWhat, aOutcome, aSpot, [] { return std::string(); });
}

void Builder::fault(std::string_view aKind, std::string_view aWhat, std::string_view aOutcome, Spot aSpot) {
  fFindings.add(Findings::Weight::Fault, aKind, aWhat, aOutcome, aSpot, [this] { return path(); });
}

std::string Builder::path() const {
  std::string path;
  for (Frame const& frame : fFrames) {
    if (frame.fElement == nullptr) continue;
    if (!path.empty()) path += "::";
    Feature const* const name = frame.fMetaclass->feature("name");
    Kelm::Object const value =
        name == nullptr ? Kelm::Object() : name->fMethods->getEntry(frame.fElement, fDeviant, name->fId);
    path += value.isNull() ? std::string(frame.fMetaclass->fName) : files::textOf(*name, value);
  }
  return path;
}

std::string_view Builder::in(Metaclass const& aMetaclass, std::string_view aName) {
  fScratch.assign(aMetaclass.fName);
  fScratch += '.';
  fScratch += aName;
  return fScratch;
}

}  // namespace umlmm::files
