#include <algorithm>
#include <unordered_map>

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
    auto* const list = engine::pointerSlot<engine::PartList>(aElement, ids::Classifier::Generalization);
    position = list->positionOf(leadingTo(aElement, *aBefore).front());
  }
  auto& generalization = engine::Change::create(ids::metaclass::Generalization, *aElement.model());
  engine::link(generalization, engine::feature(ids::Generalization::General), aValue);
  engine::link(aElement, generalizations(), generalization, position);
}

void eraseGeneral(engine::Element& aElement, engine::Element& aValue) {
  for (engine::Element* const generalization : leadingTo(aElement, aValue))
    engine::destroy(*generalization, aElement.model()->baseDeviant());
}

void arrangeGeneral(engine::Element& aElement, std::vector<engine::Element*> const& aOrder) {
  std::unordered_map<engine::Element const*, std::size_t> ranks;
  for (std::size_t rank = 0; rank < aOrder.size(); ++rank) ranks.emplace(aOrder[rank], rank);
  auto const rankOf = [&](engine::Element* aEntry) {
    return ranks.find(queries::kToGeneral.target(*aEntry));
  };
  std::vector<engine::Element*> entries;
  for (engine::Element* const entry : values::elements(aElement, ids::Classifier::Generalization))
    if (rankOf(entry) != ranks.end()) entries.push_back(entry);
  std::stable_sort(entries.begin(), entries.end(), [&](engine::Element* aLeft, engine::Element* aRight) {
    return rankOf(aLeft)->second < rankOf(aRight)->second;
  });
  engine::arrangeValues(aElement, generalizations(), entries);
}

}  // namespace

engine::Rule const Classifier::General{
    .fValues = readGeneral, .fInsert = insertGeneral, .fErase = eraseGeneral, .fArrange = arrangeGeneral};

engine::Rule const Class::SuperClass{
    .fValues = readSuperClass, .fInsert = insertGeneral, .fErase = eraseGeneral, .fArrange = arrangeGeneral};

engine::Rule const Classifier::InheritedMember{
    .fValues = [](engine::Element const& aElement, std::vector<engine::Element*>& aOut) {
      auto const inherited = queries::inheritedMembers(aElement);
      aOut.insert(aOut.end(), inherited.begin(), inherited.end());
    }};

}  // namespace umlmm::rules
