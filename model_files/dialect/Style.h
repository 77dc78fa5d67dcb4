#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "model_files/dialect/Metamodel.h"

namespace umlmm::files {

/// How a file writes what may be written in several ways: what is new is written like what stands around it.
struct Style {
  struct Forms {
    std::size_t fAttributes = 0;
    std::size_t fChildren = 0;
  };
  /// References, by feature.
  std::unordered_map<Feature const*, Forms> fReferences;
  Forms fAllReferences;
  /// Elements whose type is the one that would be meant anyway, with and without it.
  std::size_t fTyped = 0;
  std::size_t fUntyped = 0;
  // As written; empty where nothing told.
  std::string fTypeName;
  std::string fIdName;
  std::string fUmlPrefix;
  char fQuote = 0;
  /// A behavior may be entered again unless the file says otherwise.
  bool fReentrant = false;

  void note(Feature const& aFeature, bool aIsAttribute) {
    for (Forms* const forms : {&fReferences[&aFeature], &fAllReferences})
      ++(aIsAttribute ? forms->fAttributes : forms->fChildren);
  }
  bool isWritten(Feature const& aFeature) const { return fReferences.contains(&aFeature); }
  bool asAttribute(Feature const& aFeature) const {
    auto const found = fReferences.find(&aFeature);
    Forms const& forms = found == fReferences.end() ? fAllReferences : found->second;
    return forms.fAttributes >= forms.fChildren;
  }
  /// What nothing told is as most files have it.
  void complete() {
    if (fTypeName.empty()) fTypeName = "xmi:type";
    if (fIdName.empty()) fIdName = "xmi:id";
    if (fUmlPrefix.empty()) fUmlPrefix = "uml";
    if (fQuote == 0) fQuote = '"';
  }
  bool writesTypes() const noexcept { return fTyped > fUntyped; }
};

}  // namespace umlmm::files
