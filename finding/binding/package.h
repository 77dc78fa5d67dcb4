#pragma once

#include "lum/visibility.h"

/// What the host calls when it loads the library, which brings package "umlmm_finding": look-ups for the
/// Python module `umlmm._finding` alone.
extern "C" {
UMLMM_API void SarnInitialize_uml_finding_mi();
}
