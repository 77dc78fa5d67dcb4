#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "kelm/Model.h"
#include "model_files/store/ModelFiles.h"

namespace umlmm::files {

/// Holds the applied stereotypes of a model against those of its new texts.
class ApplicationCheck {
 public:
  /// The rows of `aRead` name elements of the model.
  ApplicationCheck(Kelm::Model const& aModel, ModelFiles& aFiles, ModelFiles& aRead);

  /// Gives those that were read the numbers of those that were written, in this order; raises Error for one
  /// that is read as another.
  void check(std::uint32_t aFile, std::span<std::uint32_t const> aWritten);

 private:
  using Rows = std::vector<Application*>;
  bool isSame(Application& aWritten, std::span<Application* const> aRead) const;

  ModelFiles& fFiles;
  ModelFiles& fRead;
  Kelm::Deviant fDeviant;
  /// By number, those whose elements are there.
  std::unordered_map<std::uint32_t, Rows> fRows;
  /// By file, in the order of the text.
  std::vector<Rows> fReadRows;
};

}  // namespace umlmm::files
