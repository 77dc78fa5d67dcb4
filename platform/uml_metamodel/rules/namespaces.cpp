#include "operations/queries.h"
#include "rules/rules.h"
#include "rules/texts.h"

namespace umlmm::rules {

engine::Rule const NamedElement::QualifiedName{.fValue = [](Reading aElement) {
  Kelm::StringObject const* const name = queries::qualifiedName(aElement);
  return name == nullptr ? Kelm::Object() : adopt(name);
}};

engine::Rule const Namespace::ImportedMember{
    .fValues = [](Reading aElement, std::vector<engine::Element*>& aOut) {
      auto const imported = queries::importedMembers(aElement);
      aOut.insert(aOut.end(), imported.begin(), imported.end());
    }};

}  // namespace umlmm::rules
