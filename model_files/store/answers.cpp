#include <new>
#include <pugixml.hpp>
#include <sstream>

#include "model_files/dialect/extensions.h"
#include "model_files/dialect/namespaces.h"
#include "model_files/files.h"
#include "model_files/store/ModelFiles.h"
#include "model_files/text/markup.h"
#include "uml_metamodel/umlmm/models.h"

namespace umlmm::files {

namespace {

/// The model of an element; raises Error for one that is gone.
Kelm::Model modelOf(Kelm::ClassObject const& aElement) {
  constexpr unsigned kModel = Element::ModelKelm;
  if (!aElement.isvalid()) throw Error("The element is gone from its model.");
  return Kelm::queryHandle<Kelm::Model, Kelm::VisitationDomain>(
      aElement.get()->getKernelEntry(aElement.getDeviant(), kModel));
}

/// A tag of a file, parsed by itself.
class Tag {
 public:
  Tag(SourceText const& aText, std::uint64_t aOffset) {
    std::string_view const text = markup::element(aText.utf8(), aOffset);
    auto const result = fDocument.load_buffer(
        text.data(), text.size(), pugi::parse_default | pugi::parse_fragment, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();
  }
  pugi::xml_node node() const { return fDocument.first_child(); }

 private:
  pugi::xml_document fDocument;
};

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
  if (!aKept.fIsAttribute) return unknownOf(Tag(aText, aKept.fSpot.fOffset).node());
  auto const attribute = markup::attribute(aText.utf8(), aKept.fSpot.fOffset);
  return {std::string(attribute.fName), {}, attribute.value(), {}};
}

StereotypeApplication applicationOf(ModelFile const& aFile, Application const& aApplication) {
  Tag const tag(aFile.fText, aApplication.fSpot.fOffset);
  pugi::xml_node const node = tag.node();
  if (aApplication.fIsInExtension) {
    std::string_view const stereotype = aApplication.fName;
    return {std::string(stereotype), profileIn(node, stereotype), {}, valuesIn(node)};
  }
  QualifiedName const name(node.name());
  StereotypeApplication application{std::string(name.fName), std::string(name.fPrefix), {}, {}};
  application.fProfileUri = aFile.declaration(aApplication.fSpot.fOffset, name.fPrefix);
  for (pugi::xml_attribute const attribute : node.attributes()) {
    std::string_view const text = attribute.name();
    if (text.find(':') == std::string_view::npos && !text.starts_with("base_") && text != "xmlns")
      application.fValues.emplace_back(text, attribute.value());
  }
  for (pugi::xml_node const child : node.children()) {
    std::string_view const text = child.name();
    if (child.type() != pugi::node_element || text.starts_with("base_")) continue;
    pugi::xml_attribute const reference =
        child.attribute("href") ? child.attribute("href") : child.attribute("xmi:idref");
    application.fValues.emplace_back(text, reference ? reference.value() : child.text().get());
  }
  return application;
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
  for (ModelFile const& file : files.fFiles) {
    if (!aFile.empty() && file.fText.name() != aFile) continue;
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
      answer.push_back(unknownOf(Tag(files->fFiles[entry->fSpot.fFile].fText, entry->fSpot.fOffset).node()));
  return answer;
}

std::vector<StereotypeApplication> stereotypes(Kelm::ClassObject const& aElement) {
  std::vector<StereotypeApplication> answer;
  ModelFiles* const files = ModelFiles::find(modelOf(aElement));
  if (files == nullptr) return answer;
  for (Application const* const application : files->applicationsOf(*aElement.get())) {
    answer.push_back(applicationOf(files->fFiles[application->fSpot.fFile], *application));
    if (answer.back().fName.empty() && answer.back().fValues.empty()) answer.pop_back();
  }
  return answer;
}

std::vector<Kelm::ClassObject> stereotyped(Kelm::Model const& aModel, std::string_view aName) {
  std::vector<Kelm::ClassObject> answer;
  for (Application const& application : ModelFiles::of(aModel).fApplications)
    if (application.fName == aName && isThere(application.fElement, aModel))
      answer.emplace_back(application.fElement.get(), aModel.getDeviant());
  return answer;
}

}  // namespace umlmm::files
