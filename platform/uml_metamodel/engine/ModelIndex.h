#pragma once

#include <array>
#include <vector>

#include "engine/words.h"

namespace umlmm::engine {

/// The elements of a model by metaclass, in order of creation. Made when first asked for, by one walk over
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
    if (ModelIndex* const index = find(*aElement.fModel)) [[unlikely]]
      index->addToExtent(aElement);
  }
  static void noteGone(Element& aElement) {
    if (ModelIndex* const index = find(*aElement.fModel)) [[unlikely]]
      index->removeFromExtent(aElement);
  }

  /// Living elements of a metaclass and those below it.
  std::vector<Element*> instancesOf(int aMetaclass);

 private:
  ModelIndex() noexcept = default;
  void addToExtent(Element& aElement);
  void removeFromExtent(Element& aElement);

  std::array<ElementList*, kMetaclassCount> fExtents{};
};

/// Calls `aVisit` with every living element of the model, owners before what they own.
template <class Visit>
void forEachElement(Kelm::ModelObject const& aModel, Visit aVisit) {
  std::vector<Element*> open;
  if (aModel.roots() == nullptr) return;
  for (Element* const root : *aModel.roots())
    if (root != nullptr) open.push_back(root);
  for (std::size_t next = 0; next < open.size(); ++next) {
    aVisit(*open[next]);
    collectContents(*open[next], open);
  }
}

}  // namespace umlmm::engine
