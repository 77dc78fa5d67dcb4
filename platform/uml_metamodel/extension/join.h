#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/rows.h"
#include "kelm/meta.h"

/// How rows that come at run time join the records that the engine reads.
namespace umlmm::extension {

/// The rows of one extension with their texts. Records point at them.
struct Rows {
  std::deque<std::string> fTexts;
  char const* fName = "";
  std::vector<catalogue::MetaclassRow> fMetaclasses;
  std::vector<catalogue::AddedFeature> fFeatures;

  char const* keep(std::string_view aText) { return fTexts.emplace_back(aText).c_str(); }
};

/// The rows become records behind those that are there; they are kept as long as the process lives. Raises
/// with nothing changed: a failure for rows that the derivation can't make records of. The answer is their
/// package.
Kelm::NSInterface::PackageIntf const* join(std::shared_ptr<Rows const> aRows);

}  // namespace umlmm::extension
