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

std::filesystem::path locationOf(std::filesystem::path const& aPath) {
  std::error_code error;
  std::filesystem::path const absolute = std::filesystem::absolute(aPath, error);
  std::filesystem::path location = std::filesystem::weakly_canonical(absolute, error);
  return error ? absolute.lexically_normal() : location;
}

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
  for (Element const* at = &aElement; at != nullptr;) {
    Element const* const owner = containerOf(*at, aDeviant);
    auto const tag = tagOf(*at);
    if (tag && (owner == nullptr || fFiles.size() == 1 || isTop(*tag))) return static_cast<int>(tag->fFile);
    at = owner;
  }
  return standIn(aElement) != nullptr ? -1 : 0;
}

bool ModelFiles::isTop(Spot aTag) const {
  return markup::nameAt(fFiles[aTag.fFile].fText.utf8(), aTag.fOffset).find(':') != std::string_view::npos;
}

std::vector<Kept const*> ModelFiles::keptBy(Element const& aElement) const {
  return fKeptOf.rows(fKept, &aElement);
}

std::vector<Dangling const*> ModelFiles::danglingOf(Element const& aElement) const {
  return fDanglingOf.rows(fDangling, &aElement);
}

std::vector<Application const*> ModelFiles::applicationsOf(Element const& aElement) const {
  auto rows = fApplicationsOf.rows(fApplications, &aElement);
  auto const [again, end] = std::ranges::unique(rows, {}, &Application::fNumber);
  rows.erase(again, end);
  if (auto const added = fAddedOf.find(&aElement); added != fAddedOf.end())
    rows.insert(rows.end(), added->second.begin(), added->second.end());
  std::erase_if(rows, [this](Application const* aRow) { return isRemoved(*aRow); });
  return rows;
}

void ModelFiles::add(Application aApplication, ApplicationChange aChange) {
  aApplication.fNumber = fApplicationCount;
  Application const& added = fAdded.emplace_back(std::move(aApplication));
  fAddedOf[added.fElement.get()].push_back(&added);
  fChanges.emplace(added.fNumber, std::move(aChange));
  ++fApplicationCount;
}

std::string ModelFiles::namespaceAt(Spot aSpot, std::string_view aPrefix) {
  return fFiles[aSpot.fFile].declaration(aSpot.fOffset, aPrefix);
}

std::vector<KnownProfile> const& ModelFiles::profiles() {
  if (fProfiles) return *fProfiles;
  std::map<std::pair<std::string, std::string>, KnownProfile> known;
  for (Application const& application : fApplications) {
    if (application.fIsInExtension) continue;
    std::string_view const text = fFiles[application.fSpot.fFile].fText.utf8();
    std::string const prefix(QualifiedName(markup::nameAt(text, application.fSpot.fOffset)).fPrefix);
    std::string const uri = namespaceAt(application.fSpot, prefix);
    KnownProfile& profile = known.try_emplace({uri, prefix}, KnownProfile{prefix, uri, {}}).first->second;
    std::size_t const end = text.find_first_of(" \t\r\n=/>", application.fBase);
    profile.fStereotypes[std::string(application.fName)].emplace(
        text.substr(application.fBase, end - application.fBase));
  }
  fProfiles.emplace();
  for (auto& [key, profile] : known) fProfiles->push_back(std::move(profile));
  return *fProfiles;
}

void ModelFiles::forget() noexcept {
  fTagCount = 0;
  fKeptOf = {};
  fDanglingOf = {};
  fApplicationsOf = {};
  fAddedOf.clear();
  fProfiles.reset();
}

ModelFile* ModelFiles::fileCalled(std::string_view aPath) {
  auto found = std::ranges::find(fFiles, aPath, [](ModelFile const& aFile) { return aFile.fText.name(); });
  if (found == fFiles.end())
    found = std::ranges::find(fFiles, locationOf(aPath),
                              [](ModelFile const& aFile) { return locationOf(aFile.fText.name()); });
  return found == fFiles.end() ? nullptr : &*found;
}

StandIn const* ModelFiles::standIn(Element const& aElement) const {
  for (auto const& [name, standIn] : fStandIns)
    if (standIn.fElement.get() == &aElement) return &standIn;
  return nullptr;
}

}  // namespace umlmm::files
