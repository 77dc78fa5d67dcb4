#include "model_files/ModelFiles.h"

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

}  // namespace umlmm::files
