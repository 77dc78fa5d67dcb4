#pragma once

#include <chrono>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "model_files/reading/Builder.h"
#include "model_files/reading/Findings.h"
#include "model_files/reading/References.h"
#include "model_files/store/ModelFiles.h"

namespace umlmm::files {

/// Reads texts into a new model, piece by piece.
class Reading {
 public:
  /// `aIsAgain`: for writing, with a look at how the files write things.
  Reading(std::vector<Input> aInputs, LoadOptions aOptions, bool aIsAgain = false);

  /// Works for about so long; true when all is done, and then the model has its `ModelFiles`.
  bool step(std::chrono::milliseconds aTime);
  double progress() const noexcept;
  Kelm::Model model() const { return fIsDone ? fModel : Kelm::Model(); }

 private:
  bool advance();
  void startFile();
  void parse();
  [[noreturn]] void refuse(ModelFile const& aFile, pugi::xml_parse_result const& aResult);
  void endFile();
  void finish();

  std::vector<Input> fInputs;
  LoadOptions fOptions;
  bool fIsAgain;
  Kelm::Model fModel;
  std::unique_ptr<ModelFiles> fFiles = std::make_unique<ModelFiles>();
  Findings fFindings;
  References fReferences;
  /// Seconds of all steps.
  double fTime = 0;
  std::unique_ptr<Builder> fBuilder;
  std::size_t fAt = 0;
  bool fIsDone = false;
};

}  // namespace umlmm::files
