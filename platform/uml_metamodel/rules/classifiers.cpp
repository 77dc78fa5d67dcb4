#include "engine/engine.h"
#include "engine/links.h"
#include "operations/queries.h"
#include "rules/rules.h"

namespace umlmm::rules {

namespace {

engine::Feature const& generalizations() noexcept { return engine::feature(ids::Classifier::Generalization); }

void readGeneral(engine::Element const& aElement, std::vector<engine::Element*>& aOut) {
  auto const general = queries::parents(aElement);
  aOut.insert(aOut.end(), general.begin(), general.end());
}

void readSuperClass(engine::Element const& aElement, std::vector<engine::Element*>& aOut) {
  for (engine::Element* const general : queries::parents(aElement))
    if (queries::isA(*general, ids::metaclass::Class)) aOut.push_back(general);
}

/// Generalizations of a classifier that lead to another one.
std::vector<engine::Element*> leadingTo(engine::Element const& aSpecific, engine::Element const& aGeneral) {
  std::vector<engine::Element*> found;
  for (engine::Element* const entry : values::elements(aSpecific, ids::Classifier::Generalization))
    if (queries::kToGeneral.target(*entry) == &aGeneral) found.push_back(entry);
  return found;
}

void insertGeneral(engine::Element& aElement, engine::Element& aValue, engine::Element* aBefore) {
  std::uint32_t position = engine::kAtEnd;
  if (aBefore != nullptr) {
    auto* const list = engine::pointerSlot<engine::ElementList>(aElement, ids::Classifier::Generalization);
    position = list->positionOf(leadingTo(aElement, *aBefore).front(), true);
  }
  auto& generalization = engine::create(ids::metaclass::Generalization, *aElement.fModel);
  engine::link(generalization, engine::feature(ids::Generalization::General), aValue);
  engine::link(aElement, generalizations(), generalization, position);
}

void eraseGeneral(engine::Element& aElement, engine::Element& aValue) {
  for (engine::Element* const generalization : leadingTo(aElement, aValue))
    engine::destroy(*generalization, aElement.fModel->baseDeviant());
}

}  // namespace

engine::Rule const Classifier::General{
    .fValues = readGeneral, .fInsert = insertGeneral, .fErase = eraseGeneral};

engine::Rule const Class::SuperClass{
    .fValues = readSuperClass, .fInsert = insertGeneral, .fErase = eraseGeneral};

engine::Rule const Classifier::InheritedMember{
    .fValues = [](engine::Element const& aElement, std::vector<engine::Element*>& aOut) {
      auto const inherited = queries::inheritedMembers(aElement);
      aOut.insert(aOut.end(), inherited.begin(), inherited.end());
    }};

}  // namespace umlmm::rules
