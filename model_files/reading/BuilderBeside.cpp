// What stands beside the elements that the metaclasses cover: extensions of tools, applied stereotypes, other
// namespaces.
#include "model_files/dialect/extensions.h"
#include "model_files/dialect/older.h"
#include "model_files/dialect/values.h"
#include "model_files/reading/Builder.h"

namespace umlmm::files {

void Builder::handlePrefixed(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName,
                             Head const& aHead) {
  Spot const spot = spotOf(aNode);
  switch (fTags.space(aName.fPrefix)) {
    case Space::Xmi:
    case Space::Xsi: {
      bool const isDocumentation = aName.fName == "Documentation" || aName.fName == "documentation";
      if (isDocumentation && waitsForRest(aNode)) return;
      keep(aFrame.fElement, spot);
      if (isDocumentation) return noteTool(aNode);
      note("extension", aNode.name(), kKept, spot);
      return enter(aNode, aFrame.fElement, aFrame.fMetaclass,
                   hasEntries(aNode) ? Content::Entries : Content::Extension);
    }
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
      if (waitsForRest(aNode) || handleApplication(aNode, aName)) return;
      break;
  }
  keep(aFrame.fElement, spot);
  note("namespace", aNode.name(), kKept, spot);
}

void Builder::handleBeside(Frame const& aFrame, pugi::xml_node aNode) {
  // One tool keeps parts of the element itself there.
  bool const isUncovered = aFrame.fContent == Content::UncoveredExtension;
  bool const isInside = isUncovered || (aFrame.fContent != Content::Nothing && aFrame.fElement != nullptr);
  if (isInside && std::string_view(aNode.name()) == "modelExtension")
    return enter(aNode, aFrame.fElement, aFrame.fMetaclass,
                 isUncovered ? Content::Uncovered : Content::Covered);
  if (aFrame.fContent != Content::Entries) return;
  if (holdsEntries(aNode)) return enter(aNode, nullptr, nullptr, Content::Entries);
  if (waitsForRest(aNode)) return;
  forEachEntry(aNode, [&](pugi::xml_node aEntry, std::string_view aId) {
    std::string_view const stereotype = stereotypeIn(aEntry).value();
    fReferences.addEntry(fPieces.lasting(stereotype), fPieces.lasting(aId), spotOf(aEntry));
  });
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
  std::string_view const name = fPieces.lasting(aName.fName);
  auto const add = [&](std::string_view aAddress, char const* aBase) {
    isApplication = true;
    forEachWord(fPieces.lasting(aAddress), [&](auto aWord) {
      fReferences.addApplication(name, aWord, spotOf(aNode), fPieces.offsetOf(aBase));
    });
  };
  for (pugi::xml_attribute const attribute : aNode.attributes())
    if (isBase(attribute.name())) add(attribute.value(), attribute.name());
  for (pugi::xml_node const child : aNode.children()) {
    if (!isBase(child.name())) continue;
    Head const head = fTags.headOf(child);
    add(!head.fIdref.empty()  ? head.fIdref
        : !head.fHref.empty() ? head.fHref
                              : child.text().get(),
        child.name());
  }
  if (isApplication) ++fFiles.fReport.fStereotypeCount;
  return isApplication;
}

}  // namespace umlmm::files
