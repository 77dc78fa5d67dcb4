#include "model_files/store/applications.h"

#include <algorithm>
#include <unordered_set>

#include "model_files/dialect/extensions.h"
#include "model_files/dialect/namespaces.h"
#include "model_files/files.h"
#include "model_files/store/ParsedTag.h"

namespace umlmm::files {

bool isValue(std::string_view aName) noexcept {
  return !isBase(aName) && aName != "xmlns" && aName.find(':') == std::string_view::npos;
}

std::string_view valueOf(pugi::xml_node aChild) {
  for (char const* const name : {"href", "xmi:idref"})
    if (pugi::xml_attribute const reference = aChild.attribute(name)) return reference.value();
  return aChild.text().get();
}

namespace {

using Values = std::vector<std::pair<std::string, std::string>>;

/// As the text has them.
Values valuesOf(pugi::xml_node aTag) {
  Values values;
  for (pugi::xml_attribute const attribute : aTag.attributes())
    if (isValue(attribute.name())) values.emplace_back(attribute.name(), attribute.value());
  for (pugi::xml_node const child : aTag.children())
    if (child.type() == pugi::node_element && isValue(child.name()))
      values.emplace_back(child.name(), valueOf(child));
  return values;
}

void apply(ApplicationChange const& aChange, Values& aValues) {
  for (auto const& [tag, values] : aChange.fValues) {
    std::size_t const at = static_cast<std::size_t>(
        std::ranges::find(aValues, tag, &Values::value_type::first) - aValues.begin());
    std::erase_if(aValues, [&](auto const& aValue) { return aValue.first == tag; });
    Values added;
    for (std::string const& value : values) added.emplace_back(tag, value);
    aValues.insert(aValues.begin() + static_cast<std::ptrdiff_t>(at), added.begin(), added.end());
  }
}

/// Of one that stands in a text.
StereotypeApplication written(ModelFiles& aFiles, Application const& aApplication) {
  ParsedTag const tag(aFiles.fFiles[aApplication.fSpot.fFile].fText, aApplication.fSpot.fOffset);
  pugi::xml_node const node = tag.node();
  if (aApplication.fIsInExtension) {
    std::string_view const stereotype = aApplication.fName;
    return {std::string(stereotype), profileIn(node, stereotype), {}, valuesIn(node)};
  }
  QualifiedName const name(node.name());
  return {std::string(name.fName), std::string(name.fPrefix),
          aFiles.namespaceAt(aApplication.fSpot, name.fPrefix), valuesOf(node)};
}

}  // namespace

StereotypeApplication told(ModelFiles& aFiles, Application const& aApplication) {
  ApplicationChange const* const change = aFiles.changeOf(aApplication);
  StereotypeApplication application;
  if (aApplication.fSpot.fOffset != 0)
    application = written(aFiles, aApplication);
  else if (change != nullptr)
    application = {std::string(aApplication.fName), change->fProfile, change->fProfileUri, {}};
  application.fNumber = aApplication.fNumber;
  if (change != nullptr) apply(*change, application.fValues);
  return application;
}

Kelm::Model modelOf(Kelm::ClassObject const& aElement) {
  constexpr unsigned kModel = Element::ModelKelm;
  if (!aElement.isvalid()) throw Error("The element is gone from its model.");
  return Kelm::queryHandle<Kelm::Model, Kelm::VisitationDomain>(
      aElement.get()->getKernelEntry(aElement.getDeviant(), kModel));
}

std::vector<StereotypeApplication> stereotypes(Kelm::ClassObject const& aElement) {
  std::vector<StereotypeApplication> answer;
  ModelFiles* const files = ModelFiles::find(modelOf(aElement));
  if (files == nullptr) return answer;
  for (Application const* const application : files->applicationsOf(*aElement.get())) {
    answer.push_back(told(*files, *application));
    if (answer.back().fName.empty() && answer.back().fValues.empty()) answer.pop_back();
  }
  return answer;
}

std::vector<Kelm::ClassObject> stereotyped(Kelm::Model const& aModel, std::string_view aName) {
  std::vector<Kelm::ClassObject> answer;
  std::unordered_set<Element const*> known;
  ModelFiles::of(aModel).forEachApplication([&](Application const& aApplication) {
    Element* const element = aApplication.fElement.get();
    if (aApplication.fName == aName && element->deviant_isValid(aModel.getDeviant()) &&
        known.insert(element).second)
      answer.emplace_back(element, aModel.getDeviant());
  });
  return answer;
}

}  // namespace umlmm::files
