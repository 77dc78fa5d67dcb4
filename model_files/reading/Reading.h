#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <pugixml.hpp>
#include <set>
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
  /// Raises Error for a text that can't be parsed to its end.
  void checkWhole(ModelFile const& aFile);
  [[noreturn]] void refuse(ModelFile const& aFile, pugi::xml_parse_result const& aResult);
  void endFile();
  /// Takes back a file that nobody asked for and that can't be read.
  void dropFile();
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
  /// Files that were read to their end.
  std::size_t fReadCount = 0;
  /// Files that were asked for; the rest is needed by these.
  std::size_t fAsked;
  std::set<std::filesystem::path> fLocations;
  mutable double fTold = 0;
  bool fIsDone = false;
};

}  // namespace umlmm::files
