#pragma once

#include <string>
#include <vector>

#include "model_files/files.h"

/// Answers with structure as JSON. Elements cross beside it, in lists of the same order.
namespace umlmm::files::mi {

/// [[feature, address, file, line, column], ...]
std::string toJson(std::vector<Unresolved> const& aReferences);
/// [[tag, [[name, value], ...], text, [child, ...]], ...]
std::string toJson(std::vector<Unknown> const& aUnknown);
/// [[name, profile, uri, [[name, value], ...]], ...]
std::string toJson(std::vector<StereotypeApplication> const& aApplications);
/// {"kind": "ReadError", "message": ..., "file": ..., "line": ..., "column": ..., "path": ...}
std::string toJson(Error const& aError);

}  // namespace umlmm::files::mi
