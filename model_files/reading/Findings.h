#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "model_files/store/ModelFiles.h"

namespace umlmm::files {

/// Collects what a reading meets, each kind once. Of a strict reading the first that is a fault ends it.
class Findings {
 public:
  enum class Weight {
    Note,  ///< As files have it: extensions, annotations.
    Fault  ///< Something was not understood.
  };

  Findings(ModelFiles& aFiles, bool aIsStrict) noexcept : fFiles(aFiles), fIsStrict(aIsStrict) {}

  /// Raises ReadError for a fault in a strict reading; `aPath` tells then where in the model.
  template <class PathOf>
  void add(Weight aWeight, std::string_view aKind, std::string_view aWhat, std::string_view aOutcome,
           Spot aSpot, PathOf aPath) {
    if (fIsStrict && aWeight == Weight::Fault) [[unlikely]]
      raise(aKind, aWhat, aSpot, aPath());
    add(aKind, aWhat, aOutcome, aSpot);
  }

 private:
  void add(std::string_view aKind, std::string_view aWhat, std::string_view aOutcome, Spot aSpot);
  [[noreturn]] void raise(std::string_view aKind, std::string_view aWhat, Spot aSpot,
                          std::string aPath) const;

  ModelFiles& fFiles;
  bool fIsStrict;
  std::string fKey;
  std::unordered_map<std::string, std::size_t> fByKey;
};

}  // namespace umlmm::files
