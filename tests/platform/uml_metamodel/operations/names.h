#pragma once

#include <string>

#include "platform/uml_metamodel/engine/models.h"

/// Short ways to build models in which elements are told by their names, and to read them back as text.
class NamedModelTest : public ModelTest {
 protected:
  /// A new package in another one.
  umlmm::Package package(char16_t const* aName, umlmm::Package const& aOwner = {}) const {
    auto const made = named<umlmm::Package>(aName);
    if (aOwner) aOwner.getPackagedElement().push_back(made);
    return made;
  }
  template <class X>
  X packaged(umlmm::Package const& aOwner, char16_t const* aName) const {
    X const made = named<X>(aName);
    aOwner.getPackagedElement().push_back(made);
    return made;
  }
  template <class Owner>
  umlmm::Property attribute(Owner const& aOwner, char16_t const* aName) const {
    auto const made = named<umlmm::Property>(aName);
    aOwner.getOwnedAttribute().push_back(made);
    return made;
  }
  umlmm::Generalization generalize(umlmm::Classifier const& aSpecific,
                                   umlmm::Classifier const& aGeneral) const {
    return umlmm::Generalization::create(fModel, aSpecific, aGeneral);
  }
  umlmm::PackageImport import(umlmm::Namespace const& aImporting, umlmm::Package const& aImported) const {
    return umlmm::PackageImport::create(fModel, aImporting, aImported);
  }
};

template <class Reference>
std::string nameOf(Reference const& aElement) {
  if (aElement.get() == nullptr) return "null";
  auto const named = Kelm::queryHandle<umlmm::ImmutableNamedElement, umlmm::VisitationDomain>(aElement);
  return named.isNull() ? "unnamed" : named.getName().to_string();
}

/// The names of the elements, or the texts, of a sequence in order, with blanks between.
template <class Sequence>
std::string listOf(Sequence const& aSequence) {
  std::string list;
  for (auto const& value : aSequence.values()) {
    if (!list.empty()) list += ' ';
    if constexpr (std::same_as<typename Sequence::Value, umlmm::String>)
      list += value.to_string();
    else
      list += nameOf(value);
  }
  return list;
}
