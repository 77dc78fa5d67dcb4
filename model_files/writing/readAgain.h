#pragma once

#include <span>
#include <string>

#include "kelm/Model.h"
#include "model_files/store/ModelFiles.h"

namespace umlmm::files {

/// The texts of a model's files, or others in their place, read into a model of its own as they were.
Kelm::Model readAgain(ModelFiles const& aFiles, std::span<std::string const> aTexts = {});

}  // namespace umlmm::files
