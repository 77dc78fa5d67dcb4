#include "model_files/writing/readAgain.h"

#include "model_files/reading/Reading.h"

namespace umlmm::files {

Kelm::Model readAgain(ModelFiles const& aFiles, std::span<std::string const> aTexts) {
  std::vector<Input> inputs;
  for (std::size_t file = 0; file < aFiles.fFiles.size(); ++file) {
    SourceText const& text = aFiles.fFiles[file].fText;
    inputs.push_back({text.name(), text.encoded(aTexts.empty() ? text.utf8() : aTexts[file])});
  }
  LoadOptions options;
  options.fPaths = aFiles.fPlaces;
  Reading reading(std::move(inputs), std::move(options), true);
  while (!reading.step(std::chrono::hours(1))) {
  }
  return reading.model();
}

}  // namespace umlmm::files
