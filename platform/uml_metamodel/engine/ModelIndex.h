#pragma once

#include <algorithm>
#include <vector>

#include "engine/words.h"

namespace umlmm::engine {

/// The elements of a model by metaclass. Made when first asked for, by one walk over
/// the model, and kept up to date from then on; a model that nobody asks pays nothing.
class ModelIndex final : public Kelm::ModelCompanion {
 public:
  /// The index of a model, made if there is none.
  static ModelIndex& of(Kelm::ModelObject& aModel);
  static ModelIndex* find(Kelm::ModelObject const& aModel) noexcept {
    return static_cast<ModelIndex*>(aModel.companion());
  }

  ~ModelIndex() override;

  // Hooks of the engine; cheap while nobody asked.
  static void noteCreated(Element& aElement) {
    if (ModelIndex* const index = find(*aElement.model())) [[unlikely]]
      index->addToExtent(aElement);
  }
  static void noteGone(Element& aElement) {
    if (ModelIndex* const index = find(*aElement.model())) [[unlikely]]
      index->removeFromExtent(aElement);
  }

  /// Living elements of a metaclass and those below it, in the order of `forEachElement`. Costs what is found
  /// and what owns it.
  std::vector<Element*> instancesOf(int aMetaclass) const;

 private:
  explicit ModelIndex(Kelm::ModelObject const& aModel) noexcept : fModel(aModel) {}
  void addToExtent(Element& aElement);
  void removeFromExtent(Element& aElement);
  std::size_t sizeOf(int aConcrete) const noexcept { return ElementList::size(extentOf(aConcrete)); }
  ReferenceList* extentOf(int aConcrete) const noexcept {
    auto const place = static_cast<std::size_t>(aConcrete);
    return place < fExtents.size() ? fExtents[place] : nullptr;
  }

  Kelm::ModelObject const& fModel;
  /// By metaclass, as far as elements came.
  std::vector<ReferenceList*> fExtents = std::vector<ReferenceList*>(kMetaclassCount);
};

/// Calls `aVisit` with every living element of the model in the order of a document: one of the top level
/// with all that it owns before the next, owners before what they own, parts in the order of the features and
/// lists that hold them.
template <class Visit>
void forEachElement(Kelm::ModelObject const& aModel, Visit aVisit) {
  if (aModel.roots() == nullptr) return;
  std::vector<Element*> open;
  for (Element* const root : *aModel.roots()) {
    if (root != nullptr) open.push_back(root);
    while (!open.empty()) {
      Element& element = *open.back();
      open.pop_back();
      aVisit(element);
      auto const parts = static_cast<std::ptrdiff_t>(open.size());
      collectContents(element, open);
      std::reverse(open.begin() + parts, open.end());
    }
  }
}

}  // namespace umlmm::engine
