#include "derivations/derivations.h"
#include "derivations/texts.h"
#include "queries/queries.h"

namespace umlmm::derivations {

engine::Derivation const NamedElement::QualifiedName{.fValue = [](Reading aElement) {
  Kelm::StringObject const* const name = queries::qualifiedName(aElement);
  return name == nullptr ? Kelm::Object() : adopt(name);
}};

engine::Derivation const Namespace::ImportedMember{
    .fValues = [](Reading aElement, std::vector<engine::Element*>& aOut) {
      auto const imported = queries::importedMembers(aElement);
      aOut.insert(aOut.end(), imported.begin(), imported.end());
    }};

}  // namespace umlmm::derivations
