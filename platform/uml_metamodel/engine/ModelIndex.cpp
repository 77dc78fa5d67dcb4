#include "engine/ModelIndex.h"

#include <algorithm>

#include "engine/classes.h"
#include "engine/links.h"

namespace umlmm::engine {

ModelIndex& ModelIndex::of(Kelm::ModelObject& aModel) {
  if (find(aModel) == nullptr) aModel.setCompanion(new ModelIndex(aModel));
  return *find(aModel);
}

ModelIndex::~ModelIndex() {
  for (ElementList* const extent : fExtents) ElementList::destroy(extent);
}

void ModelIndex::addReference(Element& aOwner, FeatureIndex aRoot, Element& aValue) {
  fReferences[&aValue].add({&aOwner, aRoot});
}

void ModelIndex::removeReference(Reference const& aReference, Element const& aValue) {
  auto const found = fReferences.find(&aValue);
  if (found == fReferences.end()) return;
  found->second.remove(aReference);
  if (found->second.empty()) fReferences.erase(found);
}

void ModelIndex::addToExtent(Element& aElement) {
  ElementList::append(fExtents[static_cast<std::size_t>(metaclassOf(aElement))], &aElement, false);
}

void ModelIndex::removeFromExtent(Element& aElement) {
  if (ElementList* const extent = fExtents[static_cast<std::size_t>(metaclassOf(aElement))])
    extent->erase(&aElement, false);
}

void ModelIndex::buildReferences() {
  if (fHasReferences) return;
  std::vector<Element*> values;
  forEachElement(fModel, [&](Element& aElement) {
    for (FeatureIndex const index : storedReferences(aElement)) {
      Feature const& root = feature(index);
      if (root.fOpposite != kNoFeature || ownsHints(root)) continue;
      values.clear();
      collect(aElement, root, values);
      for (Element* const value : values) addReference(aElement, index, *value);
    }
  });
  fHasReferences = true;
}

void ModelIndex::buildExtents() {
  if (fHasExtents) return;
  forEachElement(fModel, [&](Element& aElement) { addToExtent(aElement); });
  fHasExtents = true;
}

std::vector<ModelIndex::Reference> ModelIndex::referencesTo(Element const& aValue) {
  buildReferences();
  auto const found = fReferences.find(&aValue);
  return found == fReferences.end() ? std::vector<Reference>() : found->second.list();
}

void ModelIndex::forgetValue(Element const& aValue) { fReferences.erase(&aValue); }

std::vector<Element*> ModelIndex::instancesOf(int aMetaclass) {
  buildExtents();
  std::vector<Element*> found;
  for (std::uint16_t const concrete : kMetaclasses[aMetaclass].fConcrete)
    if (ElementList const* const extent = fExtents[concrete])
      for (Element* const element : *extent)
        if (element != nullptr) found.push_back(element);
  return found;
}

}  // namespace umlmm::engine
