#include "model_files/reading/Builder.h"

#include <span>
#include <utility>

#include "kelm/kernel/containers/Ref.h"
#include "model_files/dialect/older.h"
#include "model_files/dialect/values.h"
#include "model_files/reading/tree.h"
#include "model_files/text/markup.h"
#include "uml_metamodel/umlmm/MetamodelExtension.h"

namespace umlmm::files {

namespace {

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

}  // namespace

Builder::Builder(ModelFiles& aFiles, std::uint32_t aFile, Kelm::Model const& aModel, Findings& aFindings,
                 References& aReferences, bool aIsAgain)
    : fFiles(aFiles),
      fOwn(aFiles.fFiles[aFile]),
      fFile(aFile),
      fModel(aModel),
      fDeviant(aModel.getDeviant()),
      fFindings(aFindings),
      fReferences(aReferences),
      fPieces(fOwn.fText.utf8(), fOwn.fDecoded),
      fCounts(Metamodel::instance().size()),
      fIsAgain(aIsAgain) {
  // Hardly a text has more, and what is not used takes no memory.
  constexpr std::size_t kLeastTag = 64;
  std::size_t const tags = fPieces.text().size() / kLeastTag;
  fOwn.fMade.reserve(tags);
  fOwn.fIds.reserve(tags);
  fReferences.reserve(tags);
  fFrames.push_back({{}, nullptr, nullptr, 0, Content::Covered, 0});
}

pugi::xml_parse_result Builder::parse() {
  std::vector<std::string_view> names;
  for (Frame const& frame : std::span(fFrames).subspan(1)) {
    std::string_view const name = fPieces.text().substr(frame.fOffset);
    names.push_back(name.substr(0, name.find_first_of(" \t\r\n/>")));
  }
  pugi::xml_parse_result const result = fPieces.parse(fFrom, fLength, names);
  // Each goes on behind the next inner one, the innermost with what the piece begins with.
  pugi::xml_node at = fPieces.tree().first_child();
  for (std::size_t depth = 0; result && depth < fFrames.size(); ++depth) {
    bool const isInnermost = depth + 1 == fFrames.size();
    fFrames[depth].fNext = isInnermost ? at : at.next_sibling();
    if (!isInnermost) at = at.first_child();
  }
  return result;
}

Builder::Progress Builder::step(std::size_t aCount) {
  while (!fFrames.empty()) {
    if (aCount-- == 0) return Progress::Going;
    Frame& frame = fFrames.back();
    pugi::xml_node const node = frame.fNext;
    if (!isThere(node)) {
      fTags.close(frame.fOpen);
      fFrames.pop_back();
      continue;
    }
    if (node == fPieces.end()) {
      fFrom = fPieces.endOffset();
      fLength = 0;
      return Progress::NeedsPiece;
    }
    frame.fNext = node.next_sibling();
    if (node.type() != pugi::node_element) continue;
    handle(node);
    if (std::exchange(fIsWaiting, false)) return Progress::NeedsPiece;
  }
  setDerived();
  return Progress::Done;
}

bool Builder::goesOn(pugi::xml_node aNode) const noexcept {
  // Each tag that goes on is entered.
  std::size_t const depth = fFrames.size() - 1;
  return depth < fPieces.open().size() && fPieces.open()[depth] == aNode;
}

bool Builder::waitsForRest(pugi::xml_node aNode) {
  if (!goesOn(aNode)) return false;
  fFrom = fPieces.offsetOf(aNode.name()) - 1;
  fLength = fPieces.longerFrom(fFrom);
  return fIsWaiting = true;
}

void Builder::finish() {
  auto made = fOwn.fMade.begin();
  fOwn.fIds.enter([&](std::string_view aId, Element const& aElement) {
    while (made->fElement.get() != &aElement) ++made;
    fFiles.fReport.fDuplicateIds.emplace_back(aId, fFiles.place({fFile, made->fOffset}));
  });
  Metamodel::instance().forEach([this](Metaclass const& aMetaclass) {
    std::size_t const count = fCounts[aMetaclass.fNumber];
    if (count == 0) return;
    fFiles.fReport.fElements[std::string(aMetaclass.fName)] += count;
    fFiles.fReport.fElementCount += count;
  });
}

void Builder::handle(pugi::xml_node aNode) {
  fOffset = fPieces.offsetOf(aNode.name());
  std::size_t const open = fTags.open();
  std::size_t const depth = fFrames.size();
  Frame const frame = fFrames.back();
  if (frame.fContent > Content::Uncovered) {
    handleBeside(frame, aNode);
  } else {
    QualifiedName const name(aNode.name());
    Head const head = fTags.read(aNode);
    if (frame.fContent == Content::Uncovered)
      handleUncovered(frame, aNode, name, head);
    else if (frame.fElement == nullptr)
      handleTop(aNode, name, head);
    else
      handleInside(frame, aNode, name, head);
  }
  // What the tag declares holds as long as its children are being handled.
  if (fFrames.size() > depth)
    fFrames.back().fOpen = open;
  else
    fTags.close(open);
  if (fFrames.size() == depth && !fIsWaiting && goesOn(aNode))
    enter(aNode, nullptr, nullptr, Content::Nothing);
}

void Builder::enter(pugi::xml_node aNode, Element* aElement, Metaclass const* aMetaclass, Content aContent) {
  pugi::xml_node const first = aNode.first_child();
  if (!isThere(first)) return;
  std::uint64_t const offset = fPieces.offsetOf(aNode.name());
  fFrames.push_back({first, aElement, aMetaclass, fTags.open(), aContent, offset});
}

void Builder::handleTop(pugi::xml_node aNode, QualifiedName aName, Head const& aHead) {
  Space const space = fTags.space(aName.fPrefix);
  // The frame of XMI 1 holds nothing of UML 2, whatever it says.
  if (aName.fName == "XMI" && aNode.attribute("xmi.version")) return;
  if (aName.fName == "XMI") return enter(aNode, nullptr, nullptr);
  bool const isElsewhere = !aHead.fHref.empty() || !aHead.fIdref.empty();
  if (!isElsewhere && (space == Space::Uml || aHead.fTypeSaid.fSpace == Space::Uml)) {
    ++fFound;
    std::string_view const type =
        aHead.fTypeSaid.fSpace == Space::Uml ? QualifiedName(aHead.fType).fName : aName.fName;
    Metaclass const* const metaclass =
        aHead.fTypeSaid.fSpace == Space::Uml ? aHead.fTypeSaid.fMetaclass : metaclassCalled(type);
    if (metaclass != nullptr && !metaclass->fAbstract) {
      if (fIsAgain) noteStyle(aNode, nullptr, *metaclass);
      Element& element = make(*metaclass, aNode, aHead);
      return enter(aNode, &element, metaclass);
    }
    fault("metaclass", type, kKept, spotOf(aNode));
    keep(nullptr, spotOf(aNode));
    return enter(aNode, nullptr, nullptr, Content::Uncovered);
  }
  if (aName.fPrefix.empty() && aName.fName == "documentation") {
    if (waitsForRest(aNode)) return;
    noteTool(aNode);
  }
  handlePrefixed({{}, nullptr, nullptr, 0, Content::Covered, 0}, aNode, aName, aHead);
}

void Builder::handleInside(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName,
                           Head const& aHead) {
  if (!aName.fPrefix.empty()) return handlePrefixed(aFrame, aNode, aName, aHead);
  Feature const* const feature = featureOf(*aFrame.fMetaclass, aName.fName, fTags.meaningOf(aName.fName));
  if (feature != nullptr) {
    if (aHead.fIsNil) {
      // What has a default is written so when it has no value.
      if (!feature->fMany && !feature->fDerived && feature->fKind != Kind::Reference)
        feature->fMethods->unsetEntry(aFrame.fElement, fDeviant, feature->fId);
      return;
    }
    if (feature->fKind == Kind::Reference)
      return handleReference(aFrame, *feature, aNode, aName.fName, aHead);
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
  Space const space = fTags.space(aName.fPrefix);
  Metaclass const* metaclass = nullptr;
  if (aHead.fTypeSaid.fSpace == Space::Uml)
    metaclass = aHead.fTypeSaid.fMetaclass;
  else if (aHead.fType.empty() && space == Space::Uml)
    metaclass = metaclassCalled(aName.fName);
  // Parameters of templates are something else than those of behaviors.
  bool const isTemplate = std::string_view(aNode.parent().name()) == "ownedTemplateSignature";
  bool const isPlain = aHead.fType.empty() && aName.fPrefix.empty() && aNode.first_attribute();
  if (metaclass == nullptr && isPlain && !isTemplate)
    metaclass = aFrame.fMetaclass != nullptr ? impliedType(aFrame.fMetaclass, aName.fName)
                                             : impliedType(nullptr, aName.fName, typeSaidOf(aFrame));
  if (metaclass != nullptr && !metaclass->fAbstract) {
    note("element of an owner that is not covered", metaclass->fName, kAtTop, spotOf(aNode));
    Element& element = make(*metaclass, aNode, aHead);
    return enter(aNode, &element, metaclass);
  }
  if (space == Space::Xmi) return enter(aNode, nullptr, nullptr, Content::UncoveredExtension);
  if (space != Space::Other && aNode.first_child()) enter(aNode, nullptr, nullptr, Content::Uncovered);
}

std::string Builder::typeSaidOf(Frame const& aFrame) const {
  // In a further piece the tag stands without its attributes.
  std::string_view const text = fPieces.text();
  for (markup::Attribute const& attribute : markup::attributes(text, aFrame.fOffset))
    if (fTags.roleOf(attribute.fName) == TagReader::Role::Type)
      return std::string(QualifiedName(attribute.fRaw).fName);
  return std::string(QualifiedName(markup::nameAt(text, aFrame.fOffset)).fName);
}

void Builder::handleValue(Frame const& aFrame, Feature const& aFeature, pugi::xml_node aNode,
                          Head const& aHead) {
  if (waitsForRest(aNode)) return;
  Spot const spot = spotOf(aNode);
  if (!aHead.fHref.empty() || !aHead.fIdref.empty() ||
      !setValue(*aFrame.fElement, aFeature, contentOf(aNode, fScratch), spot))
    keep(aFrame.fElement, spot);
}

void Builder::handleReference(Frame const& aFrame, Feature const& aFeature, pugi::xml_node aNode,
                              std::string_view aName, Head const& aHead) {
  Spot const spot = spotOf(aNode);
  std::string_view address = aHead.fIdref.empty() ? aHead.fHref : aHead.fIdref;
  bool const isText =
      address.empty() && aHead.fType.empty() && !aFeature.fComposite && !aNode.first_attribute();
  bool const isUml = aHead.fType.empty() || aHead.fTypeSaid.fSpace == Space::Uml;
  if ((!address.empty() || isText) && waitsForRest(aNode)) return;
  address = fPieces.lasting(address);
  if (!address.empty() && fIsAgain) fOwn.fStyle.note(aFeature, false);
  if (!address.empty()) {
    if (pugi::xml_node const more = aNode.first_child())
      fReferences.addPath(
          address, fPieces.lasting(more.child("referenceExtension").attribute("referentPath").value()));
    if (!aHead.fIdref.empty()) return fReferences.addAll(*aFrame.fElement, aFeature, address, spot);
    return fReferences.add(*aFrame.fElement, aFeature, address, spot);
  }
  if (isText) {
    // An id as the text of a tag.
    fReferences.addAll(*aFrame.fElement, aFeature, fPieces.lasting(aNode.text().get()), spot);
    return;
  }
  // A name that tells no place of its own may tell the type.
  bool const isOwnName = aFeature.fName == aName;
  Feature const* const written = isOwnName ? &aFeature : aFrame.fMetaclass->feature(aName);
  Feature const& named = written == nullptr || impliedType(*written) == nullptr ? aFeature : *written;
  if (!isUml) {
    keep(aFrame.fElement, spot);
    return note("namespace", aHead.fType, kKept, spot);
  }
  Metaclass const* metaclass = aHead.fType.empty() ? impliedType(named) : aHead.fTypeSaid.fMetaclass;
  if (metaclass == nullptr && aHead.fType.empty() && !isOwnName)
    metaclass = impliedType(aFrame.fMetaclass, aName);
  if (metaclass == nullptr || metaclass->fAbstract) {
    keep(aFrame.fElement, spot);
    if (aHead.fType.empty())
      fault("type left out", in(*aFrame.fMetaclass, aFeature.fName), kKept, spot);
    else
      fault("metaclass", QualifiedName(aHead.fType).fName, kKept, spot);
    ++fFound;
    return enter(aNode, nullptr, nullptr, Content::Uncovered);
  }
  if (fIsAgain) noteStyle(aNode, &aFeature, *metaclass);
  Element& part = make(*metaclass, aNode, aHead);
  bool const isOfAnotherKind =
      aFeature.fComposite && metaclass != aFeature.fType && !metaclass->isA(*aFeature.fType);
  Feature const* place = &aFeature;
  if (aFeature.fDerived || isOfAnotherKind) place = placeOf(*aFrame.fMetaclass, *metaclass);
  if (place == nullptr && isOfAnotherKind) place = &aFeature;
  if (place != &aFeature && !aFeature.fDerived)
    note("part of another kind", in(*aFrame.fMetaclass, aNode.name()),
         "taken as " + std::string(place->fName), spot);
  if (place != nullptr && (aFeature.fComposite || !aFeature.fDerived))
    own(*aFrame.fElement, *place, part, aNode);
  else if (!aFeature.fComposite)
    note("derived feature", aFeature.fName, kAtTop, spot);
  else
    fault("element without a feature", in(*aFrame.fMetaclass, aNode.name()), kAtTop, spot);
  enter(aNode, &part, metaclass);
}

void Builder::noteStyle(pugi::xml_node aNode, Feature const* aFeature, Metaclass const& aMetaclass) {
  Style& style = fOwn.fStyle;
  bool isTyped = false;
  for (pugi::xml_attribute const attribute : aNode.attributes()) {
    QualifiedName const name(attribute.name());
    Space const space = name.fPrefix.empty() ? Space::None : fTags.space(name.fPrefix);
    if (style.fQuote == 0) style.fQuote = fPieces.text()[fPieces.offsetOf(attribute.value()) - 1];
    if (space != Space::Xmi && space != Space::Xsi) continue;
    if (name.fName == "id" && style.fIdName.empty()) style.fIdName = attribute.name();
    if (name.fName != "type") continue;
    isTyped = true;
    if (style.fTypeName.empty()) style.fTypeName = attribute.name();
    std::string_view const prefix = QualifiedName(attribute.value()).fPrefix;
    if (style.fUmlPrefix.empty() && fTags.space(prefix) == Space::Uml) style.fUmlPrefix = prefix;
  }
  if (aFeature == nullptr) {
    if (style.fUmlPrefix.empty()) style.fUmlPrefix = QualifiedName(aNode.name()).fPrefix;
  } else if (impliedType(*aFeature) == &aMetaclass) {
    ++(isTyped ? style.fTyped : style.fUntyped);
  }
}

Feature const* Builder::featureOf(Metaclass const& aMetaclass, std::string_view aName,
                                  TagReader::Name const& aMeaning) {
  return fFeatures.get(static_cast<std::uint32_t>(aMetaclass.fNumber), aMeaning.fNumber,
                       [&] { return featureCalled(aMetaclass, aName); });
}

Element& Builder::make(Metaclass const& aMetaclass, pugi::xml_node aNode, Head const& aHead) {
  ++fFound;
  Kelm::ClassObject const made =
      createElement(fModel, Kelm::ImmutableClass(aMetaclass.fClass, Kelm::metaDeviant()));
  Element& element = *made.get();
  fOwn.fMade.push_back({ElementPtr(&element), fOffset});
  ++fCounts[aMetaclass.fNumber];
  if (!aHead.fId.empty()) fOwn.fIds.add(fPieces.lasting(aHead.fId), element);
  if (!aHead.fUuid.empty()) fReferences.addUuid(fPieces.lasting(aHead.fUuid), element);
  for (TagReader::Attribute const& attribute : fTags.attributes())
    readAttribute(element, aMetaclass, attribute);
  if (aMetaclass.fReentrant != nullptr && isReentrantByDefault(umlAddress()) &&
      !aNode.attribute("isReentrant"))
    setValue(element, *aMetaclass.fReentrant, "true", spotOf(aNode));
  return element;
}

void Builder::own(Element& aOwner, Feature const& aFeature, Element& aPart, pugi::xml_node aNode) {
  try {
    addElement(aOwner, aFeature, aPart, fDeviant);
  } catch (Kelm::Exception const& refusal) {
    fault("value refused", std::string(aFeature.fName) + ": " + refusal.what(), kAtTop, spotOf(aNode));
  }
}

void Builder::readAttribute(Element& aElement, Metaclass const& aMetaclass,
                            TagReader::Attribute const& aAttribute) {
  using Role = TagReader::Role;
  Role const role = aAttribute.fMeaning.fRole;
  if (role != Role::Plain && role != Role::Foreign) return;
  Spot const spot = spotOf(aAttribute.fName.data());
  if (role == Role::Foreign) return keep(&aElement, spot, true);
  Feature const* const feature = featureOf(aMetaclass, aAttribute.fName, aAttribute.fMeaning);
  if (feature == nullptr) {
    fault("feature", in(aMetaclass, aAttribute.fName), kKept, spot);
    return keep(&aElement, spot, true);
  }
  if (feature->fKind == Kind::Reference && fIsAgain) fOwn.fStyle.note(*feature, true);
  if (feature->fKind == Kind::Reference)
    return fReferences.addAll(aElement, *feature, fPieces.lasting(aAttribute.fValue), spot);
  if (!setValue(aElement, *feature, aAttribute.fValue, spot)) keep(&aElement, spot, true);
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
  auto const what = [&] { return std::string(aFeature.fName) + " \"" + std::string(aText) + '"'; };
  try {
    if (files::setValue(aElement, aFeature, aText, fDeviant)) return true;
    fault("value", what(), kKept, aSpot);
    return false;
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
  Element const* last = nullptr;
  for (Frame const& frame : fFrames) {
    if (frame.fElement == nullptr || std::exchange(last, frame.fElement) == frame.fElement) continue;
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
