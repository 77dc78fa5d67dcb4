#include "model_files/store/ModelFiles.h"

#include <algorithm>

#include "kelm/ModelElementIntf.h"
#include "model_files/dialect/namespaces.h"
#include "model_files/dialect/values.h"
#include "model_files/text/markup.h"

namespace umlmm::files {

namespace {

constexpr char kKey = 0;

/// Whether an attribute of the tag at an offset is the id of XMI there.
bool isId(ModelFile const& aFile, std::string_view aName, std::size_t aOffset) {
  auto const [prefix, name] = QualifiedName(aName);
  if (name != "id" || prefix.empty()) return false;
  if (prefix == "xmi") return true;
  Prefixes prefixes;
  std::string const address = aFile.declaration(aOffset, prefix);
  if (!address.empty()) prefixes.declare(prefix, address);
  Space const space = prefixes.find(prefix);
  return space == Space::Xmi || space == Space::Xsi;
}

}  // namespace

ModelFiles::ModelFiles() = default;
ModelFiles::~ModelFiles() = default;

std::string ModelFile::declaration(std::size_t aOffset, std::string_view aPrefix) const {
  std::string_view const text = fText.utf8();
  if (!fDeclarations) fDeclarations = markup::declarations(text);
  return markup::declaration(text, *fDeclarations, aOffset, aPrefix);
}

ModelFiles* ModelFiles::find(Kelm::Model const& aModel) {
  return static_cast<ModelFiles*>(aModel.object().attachment(&kKey));
}

ModelFiles& ModelFiles::of(Kelm::Model const& aModel) {
  if (ModelFiles* const files = find(aModel)) return *files;
  throw Error("The model did not come from a file; save it to one first.");
}

void ModelFiles::attach(Kelm::Model const& aModel, std::unique_ptr<ModelFiles> aFiles) {
  aModel.object().setExternalIds(aFiles.get());
  aModel.object().attach(&kKey, std::move(aFiles));
}

std::optional<Spot> ModelFiles::tagOf(Element const& aElement) const {
  std::size_t count = 0;
  for (ModelFile const& file : fFiles) count += file.fMade.size();
  if (fTagCount != count || count == 0) {
    fTags = {};
    fTags.reserve(static_cast<std::uint32_t>(count));
    std::uint32_t number = 0;
    for (ModelFile const& file : fFiles)
      for (Made const& made : file.fMade) fTags.insert(made.fElement.get(), number++);
    fTagCount = count;
  }
  if (count == 0) return std::nullopt;
  std::size_t number = fTags.find(&aElement);
  if (number == Kelm::PointerTable::kNotFound) return std::nullopt;
  std::uint32_t file = 0;
  for (; number >= fFiles[file].fMade.size(); ++file) number -= fFiles[file].fMade.size();
  return Spot{file, fFiles[file].fMade[number].fOffset};
}

std::string ModelFiles::idOf(Element const& aElement) const {
  auto const tag = tagOf(aElement);
  if (!tag) return {};
  ModelFile const& file = fFiles[tag->fFile];
  std::string id;
  for (auto const& attribute : markup::attributes(file.fText.utf8(), tag->fOffset))
    if (isId(file, attribute.fName, tag->fOffset)) id = attribute.value();
  return id;
}

Kelm::String ModelFiles::externalId(Kelm::NSInterface::ModelElementIntf const& aElement) const {
  std::string const id = idOf(aElement);
  return id.empty() ? Kelm::String() : Kelm::String(Kelm::toUtf16(id));
}

int ModelFiles::fileOf(Element const& aElement, Kelm::Deviant const& aDeviant) const {
  for (Element const* at = &aElement; at != nullptr; at = containerOf(*at, aDeviant))
    if (auto const tag = tagOf(*at)) return static_cast<int>(tag->fFile);
  return standIn(aElement) != nullptr ? -1 : 0;
}

std::vector<Kept const*> ModelFiles::keptBy(Element const& aElement) const {
  return fKeptOf.rows(fKept, &aElement);
}

std::vector<Dangling const*> ModelFiles::danglingOf(Element const& aElement) const {
  return fDanglingOf.rows(fDangling, &aElement);
}

std::vector<Application const*> ModelFiles::applicationsOf(Element const& aElement) const {
  return fApplicationsOf.rows(fApplications, &aElement);
}

StandIn const* ModelFiles::standIn(Element const& aElement) const {
  for (auto const& [name, standIn] : fStandIns)
    if (standIn.fElement.get() == &aElement) return &standIn;
  return nullptr;
}

}  // namespace umlmm::files
