#include <algorithm>
#include <unordered_map>

#include "derivations/derivations.h"
#include "engine/engine.h"
#include "engine/links.h"
#include "queries/queries.h"

namespace umlmm::derivations {

namespace {

engine::Feature const& generalizations() noexcept { return engine::feature(ids::Classifier::Generalization); }

void readGeneral(Reading aElement, std::vector<engine::Element*>& aOut) {
  auto const general = queries::parents(aElement);
  aOut.insert(aOut.end(), general.begin(), general.end());
}

void readSuperClass(Reading aElement, std::vector<engine::Element*>& aOut) {
  for (engine::Element* const general : queries::parents(aElement))
    if (aElement.on(*general).isA(ids::metaclass::Class)) aOut.push_back(general);
}

/// Generalizations of a classifier that lead to another one.
std::vector<engine::Element*> leadingTo(Reading aSpecific, engine::Element const& aGeneral) {
  std::vector<engine::Element*> found;
  for (Reading const entry : aSpecific.list(ids::Classifier::Generalization))
    if (queries::kToGeneral.target(entry).element() == &aGeneral) found.push_back(entry.element());
  return found;
}

void insertGeneral(Reading aElement, engine::Element& aValue, engine::Element* aBefore) {
  std::uint32_t position = engine::kAtEnd;
  if (aBefore != nullptr)
    position = aElement.positionOf(ids::Classifier::Generalization, *leadingTo(aElement, *aBefore).front());
  auto& generalization = engine::Change::create(ids::metaclass::Generalization, aElement.model());
  engine::link(generalization, engine::feature(ids::Generalization::General), aValue);
  engine::link(*aElement, generalizations(), generalization, position);
}

void eraseGeneral(Reading aElement, engine::Element& aValue) {
  for (engine::Element* const generalization : leadingTo(aElement, aValue))
    engine::destroy(*generalization, aElement.deviant());
}

void arrangeGeneral(Reading aElement, std::vector<engine::Element*> const& aOrder) {
  std::unordered_map<engine::Element const*, std::size_t> ranks;
  for (std::size_t rank = 0; rank < aOrder.size(); ++rank) ranks.emplace(aOrder[rank], rank);
  auto const rankOf = [&](engine::Element* aEntry) {
    return ranks.find(queries::kToGeneral.target(aElement.on(*aEntry)).element());
  };
  std::vector<engine::Element*> entries;
  for (Reading const entry : aElement.list(ids::Classifier::Generalization))
    if (rankOf(entry.element()) != ranks.end()) entries.push_back(entry.element());
  std::stable_sort(entries.begin(), entries.end(), [&](engine::Element* aLeft, engine::Element* aRight) {
    return rankOf(aLeft)->second < rankOf(aRight)->second;
  });
  engine::arrangeValues(*aElement, generalizations(), entries);
}

}  // namespace

engine::Derivation const Classifier::General{
    .fValues = readGeneral, .fInsert = insertGeneral, .fErase = eraseGeneral, .fArrange = arrangeGeneral};

engine::Derivation const Class::SuperClass{
    .fValues = readSuperClass, .fInsert = insertGeneral, .fErase = eraseGeneral, .fArrange = arrangeGeneral};

engine::Derivation const Classifier::InheritedMember{
    .fValues = [](Reading aElement, std::vector<engine::Element*>& aOut) {
      auto const inherited = queries::inheritedMembers(aElement);
      aOut.insert(aOut.end(), inherited.begin(), inherited.end());
    }};

}  // namespace umlmm::derivations
