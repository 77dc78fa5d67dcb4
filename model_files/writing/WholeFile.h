#pragma once

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "model_files/store/ModelFiles.h"

namespace umlmm::files {

class Tags;

/// A form in which a model is written from scratch.
struct Dialect {
  std::string_view fName;
  std::string_view fUmlAddress;
  std::string_view fXmiAddress;
  std::string_view fXmiVersion;
  /// Before and behind the name of a primitive type of the standard.
  std::string_view fPrimitives;
  /// References as attributes, and types only where they have to be said.
  bool fIsTerse;
};

/// Raises Error, with the names that there are, for another one. An empty name is that of the standard's own
/// form.
Dialect const& dialectCalled(std::string_view aName);

/// The text of a whole model in a dialect, in UTF-8. What stands with its elements beside the metaclasses
/// goes along where the dialect has a place for it: applied stereotypes, what no metaclass covers, references
/// that lead nowhere.
class WholeFile {
 public:
  WholeFile(Kelm::Model const& aModel, Dialect const& aDialect);

  /// `aOrder` receives the elements in the order of their tags.
  std::string write(std::vector<Element*>& aOrder);

 private:
  std::vector<std::string> keptBy(Element const& aElement, Tags& aTags) const;
  /// Roots of the model that stand in what no metaclass covers, and are written there.
  std::unordered_set<Element const*> inUncovered() const;
  bool isRoot(Element const& aElement) const;
  /// Sees to it that the text of an application has its namespace, there or in the root.
  void declare(Application const& aApplication, std::string& aText,
               std::map<std::string, std::string>& aPrefixes);

  Kelm::Model fModel;
  Dialect const& fDialect;
  ModelFiles* fFiles;
};

}  // namespace umlmm::files
