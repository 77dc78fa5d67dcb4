#include "operations/queries.h"
#include "rules/rules.h"

namespace umlmm::rules {

engine::Rule const NamedElement::QualifiedName{
    .fValue = [](engine::Element const& aElement, Kelm::Deviant const&) {
      Kelm::StringObject const* const name = queries::qualifiedName(aElement);
      return name == nullptr ? Kelm::Object() : values::adopt(name);
    }};

engine::Rule const Namespace::ImportedMember{
    .fValues = [](engine::Element const& aElement, std::vector<engine::Element*>& aOut) {
      auto const imported = queries::importedMembers(aElement);
      aOut.insert(aOut.end(), imported.begin(), imported.end());
    }};

}  // namespace umlmm::rules
