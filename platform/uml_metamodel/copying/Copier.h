#pragma once

#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/Feature.h"
#include "engine/slots.h"
#include "kelm/ModelObject.h"

namespace umlmm::copying {

using engine::Element;
using engine::Feature;

/// Copies elements with all that they own into a model. To be used within a change, which takes all back if a
/// step raises; once.
class Copier {
 public:
  explicit Copier(Kelm::ModelObject& aModel) noexcept : fModel(aModel) {}

  /// The copy of an element and of all that it owns, at the top level, still without what they refer to.
  Element& add(Element const& aElement);
  /// Gives the copies their values and references.
  void finish();
  /// Calls `aVisit` with each element and its copy, owners first.
  template <class Visit>
  void forEach(Visit aVisit) const {
    for (auto const& [original, copy] : fPairs) aVisit(*original, *copy);
  }

 private:
  /// The features of a metaclass that hold values, by kind of slot. Those that hold elements have masks in
  /// its class table.
  struct Slots {
    std::vector<Feature const*> fFlags;
    std::vector<Feature const*> fIntegers;
    std::vector<Feature const*> fTexts;
    std::vector<Feature const*> fSequences;
  };

  Slots const& slotsOf(Element const& aElement);
  Element& create(Element const& aElement);
  void copyParts(Element const& aElement, Element& aCopy);
  void copyPart(Element const& aPart, Feature const& aRoot, Element& aOwner);
  void copyValues(Element const& aElement, Element& aCopy);
  void copyReferences(Element const& aElement, Element& aCopy);
  /// Answers whether the reference leads to a far end outside of what is copied.
  bool copyReference(Feature const& aRoot, Element& aValue, Element& aCopy);
  /// Who refers to an element first is told first.
  void copyReferrersOrder(Element const& aElement, Element& aCopy) const;
  void copyOrder(Feature const& aRoot, std::vector<Element*> const& aOriginals, Element& aCopy) const;
  Element* copyOf(Element const& aElement) const {
    auto const found = fCopies.find(&aElement);
    return found == fCopies.end() ? nullptr : found->second;
  }

  Kelm::ModelObject& fModel;
  std::vector<std::pair<Element const*, Element*>> fPairs;
  std::unordered_map<Element const*, Element*> fCopies;
  std::unordered_map<int, Slots> fSlots;
};

}  // namespace umlmm::copying
