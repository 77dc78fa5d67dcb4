#include <pugixml.hpp>
#include <sstream>

#include "model_files/files.h"
#include "model_files/store/ModelFiles.h"
#include "model_files/store/ParsedTag.h"
#include "model_files/store/applications.h"
#include "model_files/text/markup.h"

namespace umlmm::files {

namespace {

/// What lies deeper is text, tags and all: nobody reads a tree of such a depth, and some can't.
constexpr int kDeepest = 100;

Unknown unknownOf(pugi::xml_node aNode, int aDepth = 0) {
  Unknown unknown{aNode.name(), {}, {}, {}};
  for (pugi::xml_attribute const attribute : aNode.attributes())
    unknown.fAttributes.emplace_back(attribute.name(), attribute.value());
  for (pugi::xml_node const child : aNode.children()) {
    if (child.type() != pugi::node_element) {
      unknown.fText += child.value();
    } else if (aDepth < kDeepest) {
      unknown.fChildren.push_back(unknownOf(child, aDepth + 1));
    } else {
      std::ostringstream text;
      child.print(text, "", pugi::format_raw, pugi::encoding_utf8);
      unknown.fText += text.view();
    }
  }
  return unknown;
}

Unknown unknownOf(SourceText const& aText, Kept const& aKept) {
  if (!aKept.fIsAttribute) return unknownOf(ParsedTag(aText, aKept.fSpot.fOffset).node());
  auto const attribute = markup::attribute(aText.utf8(), aKept.fSpot.fOffset);
  return {std::string(attribute.fName), {}, attribute.value(), {}};
}

bool isThere(ElementPtr const& aElement, Kelm::Model const& aModel) {
  return aElement != nullptr && aElement->deviant_isValid(aModel.getDeviant());
}

}  // namespace

bool isLoaded(Kelm::Model const& aModel) { return ModelFiles::find(aModel) != nullptr; }

Report const& report(Kelm::Model const& aModel) { return ModelFiles::of(aModel).fReport; }

std::vector<Unresolved> unresolved(Kelm::Model const& aModel) {
  ModelFiles const& files = ModelFiles::of(aModel);
  std::vector<Unresolved> answer;
  for (Dangling const& dangling : files.fDangling)
    if (isThere(dangling.fElement, aModel))
      answer.push_back({Kelm::ClassObject(dangling.fElement.get(), aModel.getDeviant()),
                        std::string(dangling.fFeature->fName), dangling.fAddress,
                        files.place(dangling.fSpot)});
  return answer;
}

Kelm::ClassObject byId(Kelm::Model const& aModel, std::string_view aId, std::string_view aFile) {
  ModelFiles& files = ModelFiles::of(aModel);
  ModelFile const* const only = aFile.empty() ? nullptr : files.fileCalled(aFile);
  if (!aFile.empty() && only == nullptr) return {};
  for (ModelFile const& file : files.fFiles) {
    if (only != nullptr && &file != only) continue;
    Element* const found = file.fIds.find(aId);
    if (found != nullptr && found->deviant_isValid(aModel.getDeviant()))
      return Kelm::ClassObject(found, aModel.getDeviant());
  }
  return {};
}

std::vector<Unknown> unknown(Kelm::ClassObject const& aElement) {
  std::vector<Unknown> answer;
  ModelFiles* const files = ModelFiles::find(modelOf(aElement));
  if (files == nullptr) return answer;
  for (Kept const* const kept : files->keptBy(*aElement.get()))
    answer.push_back(unknownOf(files->fFiles[kept->fSpot.fFile].fText, *kept));
  for (Application const* const entry : files->applicationsOf(*aElement.get()))
    if (entry->fIsInExtension)
      answer.push_back(
          unknownOf(ParsedTag(files->fFiles[entry->fSpot.fFile].fText, entry->fSpot.fOffset).node()));
  return answer;
}

}  // namespace umlmm::files
