#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kelm/Model.h"
#include "model_files/dialect/values.h"
#include "model_files/files.h"

/// What the fuzzers of model files have in common.
namespace umlmm::fuzzing {

/// Ends the process, so that the fuzzer keeps what led here.
[[noreturn]] void fail(std::string_view aWhat);

/// A model from bytes; null where they are refused as they may be, by an Error.
Kelm::Model loaded(std::vector<files::Input> aInputs, bool aIsStrict = false);

/// All elements but those that stand for primitive types, owners first.
std::vector<files::Element*> elementsOf(Kelm::Model const& aModel);
/// What files hold of a model: a line an element, sorted, with all values.
std::vector<std::string> told(Kelm::Model const& aModel);

}  // namespace umlmm::fuzzing
