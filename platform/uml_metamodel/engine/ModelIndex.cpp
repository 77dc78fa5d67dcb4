#include "engine/ModelIndex.h"

#include <memory>

namespace umlmm::engine {

ModelIndex& ModelIndex::of(Kelm::ModelObject& aModel) {
  if (find(aModel) == nullptr) {
    std::unique_ptr<ModelIndex> index(new ModelIndex);
    forEachElement(aModel, [&](Element& aElement) { index->addToExtent(aElement); });
    aModel.setCompanion(index.release());
  }
  return *find(aModel);
}

ModelIndex::~ModelIndex() {
  for (ElementList* const extent : fExtents) ElementList::destroy(extent);
}

void ModelIndex::addToExtent(Element& aElement) {
  ElementList::append(fExtents[static_cast<std::size_t>(metaclassOf(aElement))], aElement.fModel->blocks(),
                      &aElement, false);
}

void ModelIndex::removeFromExtent(Element& aElement) {
  if (ElementList* const extent = fExtents[static_cast<std::size_t>(metaclassOf(aElement))])
    extent->erase(&aElement, false);
}

std::vector<Element*> ModelIndex::instancesOf(int aMetaclass) {
  std::vector<Element*> found;
  for (std::uint16_t const concrete : kMetaclasses[aMetaclass].fConcrete)
    if (ElementList const* const extent = fExtents[concrete])
      for (Element* const element : *extent)
        if (element != nullptr) found.push_back(element);
  return found;
}

}  // namespace umlmm::engine
