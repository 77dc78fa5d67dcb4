#include "engine/ModelIndex.h"

#include <memory>
#include <tuple>
#include <unordered_set>

namespace umlmm::engine {

namespace {

/// An element, and its place among what its owner has: the word of the feature, and the entry in its list.
struct Placed {
  Element const* fOwner;
  unsigned fWord;
  std::uint32_t fEntry;
  Element* fElement;
  bool fIsWanted;

  bool operator<(Placed const& aOther) const noexcept {
    return std::tie(fOwner, fWord, fEntry) < std::tie(aOther.fOwner, aOther.fWord, aOther.fEntry);
  }
};

Placed place(Kelm::ModelObject const& aModel, Element& aElement, bool aIsWanted) {
  Element const* const owner = aElement.container();
  if (owner == nullptr) return {nullptr, 0, aModel.roots()->find(&aElement), &aElement, aIsWanted};
  FeatureIndex const holder = aElement.containerFeature();
  bool const isList = feature(holder).fStorage == Storage::List;
  // What is added stands behind the slots.
  unsigned const word = isAdded(holder) ? holder : slotOf(*owner, holder);
  return {owner, word, isList ? pointerSlot<PartList>(*owner, holder)->find(&aElement) : 0, &aElement,
          aIsWanted};
}

/// The elements as a walk over the whole model would come by them, found by the ways up from them alone.
std::vector<Element*> inDocumentOrder(Kelm::ModelObject const& aModel,
                                      std::vector<Element*> const& aElements) {
  std::unordered_set<Element const*> seen(aElements.begin(), aElements.end());
  std::vector<Placed> tree;
  for (Element* const element : aElements) {
    tree.push_back(place(aModel, *element, true));
    for (Element* owner = element->container(); owner != nullptr && seen.insert(owner).second;
         owner = owner->container())
      tree.push_back(place(aModel, *owner, false));
  }
  std::sort(tree.begin(), tree.end());
  std::vector<Element*> ordered;
  std::vector<Placed const*> open;
  auto const openParts = [&](Element const* aOwner) {
    auto const isBefore = [](Placed const& aPlaced, Element const* aWanted) {
      return std::less<>()(aPlaced.fOwner, aWanted);
    };
    auto part = std::lower_bound(tree.begin(), tree.end(), aOwner, isBefore);
    auto const start = static_cast<std::ptrdiff_t>(open.size());
    for (; part != tree.end() && part->fOwner == aOwner; ++part) open.push_back(&*part);
    std::reverse(open.begin() + start, open.end());
  };
  openParts(nullptr);
  while (!open.empty()) {
    Placed const& next = *open.back();
    open.pop_back();
    if (next.fIsWanted) ordered.push_back(next.fElement);
    openParts(next.fElement);
  }
  return ordered;
}

}  // namespace

ModelIndex& ModelIndex::of(Kelm::ModelObject& aModel) {
  if (find(aModel) == nullptr) {
    std::unique_ptr<ModelIndex> index(new ModelIndex(aModel));
    forEachElement(aModel, [&](Element& aElement) { index->addToExtent(aElement); });
    aModel.setCompanion(index.release());
  }
  return *find(aModel);
}

ModelIndex::~ModelIndex() {
  for (ElementList* const extent : fExtents) ElementList::destroy(extent);
}

void ModelIndex::addToExtent(Element& aElement) {
  auto const metaclass = static_cast<std::size_t>(metaclassOf(aElement));
  if (metaclass >= fExtents.size()) fExtents.resize(metaclass + 1);
  ReferenceList::append(fExtents[metaclass], aElement.model()->blocks(), &aElement);
}

void ModelIndex::removeFromExtent(Element& aElement) {
  if (ReferenceList* const extent = fExtents[static_cast<std::size_t>(metaclassOf(aElement))])
    extent->erase(&aElement);
}

std::vector<Element*> ModelIndex::instancesOf(int aMetaclass) const {
  // A walk over the model costs less for each element than the way up from what is found.
  constexpr std::size_t kWalkShare = 8;
  std::size_t all = 0;
  for (int index = 0; index < metaclassCount(); ++index) all += sizeOf(index);
  std::vector<Element*> found;
  std::size_t count = 0;
  for (std::uint16_t const concrete : metaclass(aMetaclass).fConcrete) count += sizeOf(concrete);
  if (count * kWalkShare >= all) {
    forEachElement(fModel, [&](Element& aElement) {
      if (isA(aElement, aMetaclass)) found.push_back(&aElement);
    });
    return found;
  }
  for (std::uint16_t const concrete : metaclass(aMetaclass).fConcrete)
    if (ElementList const* const extent = extentOf(concrete))
      for (Element* const element : *extent)
        if (element != nullptr) found.push_back(element);
  return inDocumentOrder(fModel, found);
}

}  // namespace umlmm::engine
