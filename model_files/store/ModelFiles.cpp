#include "model_files/store/ModelFiles.h"

#include <algorithm>

#include "model_files/dialect/values.h"

namespace umlmm::files {

namespace {
constexpr char kKey = 0;
}

ModelFiles::ModelFiles() noexcept = default;
ModelFiles::~ModelFiles() = default;

ModelFiles* ModelFiles::find(Kelm::Model const& aModel) {
  return static_cast<ModelFiles*>(aModel.object().attachment(&kKey));
}

ModelFiles& ModelFiles::of(Kelm::Model const& aModel) {
  if (ModelFiles* const files = find(aModel)) return *files;
  throw Error("The model did not come from a file; save it to one first.");
}

void ModelFiles::attach(Kelm::Model const& aModel, std::unique_ptr<ModelFiles> aFiles) {
  aModel.object().attach(&kKey, std::move(aFiles));
}

void ModelFiles::indexTags() {
  fTags.clear();
  for (std::uint32_t file = 0; file < fFiles.size(); ++file)
    for (Made const& made : fFiles[file].fMade) fTags.emplace(made.fElement.get(), file);
}

int ModelFiles::fileOf(Element const& aElement, Kelm::Deviant const& aDeviant) const {
  for (Element const* at = &aElement; at != nullptr; at = containerOf(*at, aDeviant))
    if (auto const found = fTags.find(at); found != fTags.end()) return static_cast<int>(found->second);
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
