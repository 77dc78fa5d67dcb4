#pragma once

#include "lum/visibility.h"

/// What the host calls when it loads the library, which brings package "umlmm_files": model files for
/// scripts. Its functions are for the Python module `umlmm.files` alone. Answers with structure are JSON; a
/// failure of `umlmm::files` is raised as "umlmm_files.Failure", whose text is a JSON object with `kind`,
/// `message`, `file`, `line`, `column` and `path`.
extern "C" {
UMLMM_API void SarnInitialize_uml_model_files_mi();
}
