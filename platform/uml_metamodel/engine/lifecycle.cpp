#include <cstring>
#include <string>

#include "engine/FeatureSequence.h"
#include "engine/ModelIndex.h"
#include "engine/classes.h"
#include "engine/engine.h"
#include "engine/kernel_features.h"
#include "engine/links.h"
#include "engine/memory.h"
#include "reflection/meta.h"

namespace umlmm::engine {

namespace {

std::size_t sLiving = 0;

template <class Action>
void forEachWord(Element& aElement, std::uint64_t aMask, Action aAction) {
  for (; aMask != 0; aMask &= aMask - 1)
    aAction(reinterpret_cast<void**>(aElement.slots())[__builtin_ctzll(aMask)]);
}

void freeTexts(Element& aElement) {
  forEachWord(aElement, aElement.fClass->fStringWords, [](void*& aWord) {
    if (aWord != nullptr) static_cast<Kelm::StringObject*>(aWord)->decRef();
    aWord = nullptr;
  });
}

/// The last count is gone: the slots hold no links any more, as the model or the container let go first.
void release(Element* aElement) {
  Kelm::ClassTable const& table = *aElement->fClass;
  freeTexts(*aElement);
  forEachWord(*aElement, table.fListWords,
              [](void*& aWord) { ElementList::destroy(static_cast<ElementList*>(aWord)); });
  forEachWord(*aElement, table.fSequenceWords,
              [](void*& aWord) { delete static_cast<Kelm::Generic::SequenceIntf*>(aWord); });
  char* const memory = reinterpret_cast<char*>(aElement) - table.fRootOffset;
  if ((aElement->fMarks & Element::HasComputed) != 0) FeatureSequence::forget(*aElement);
  if ((aElement->fMarks & Element::HasToolTexts) != 0) forgetToolTexts(*aElement);
  destruct(aElement);
  freeElement(memory, table.fSize);
  --sLiving;
}

/// An element and all below it, owners first.
std::vector<Element*> subtree(Element& aElement) {
  std::vector<Element*> all{&aElement};
  for (std::size_t next = 0; next < all.size(); ++next) {
    all[next]->fMarks |= Element::Dying;
    collectContents(*all[next], all);
  }
  return all;
}

bool isDying(Element const& aElement) noexcept { return (aElement.fMarks & Element::Dying) != 0; }

/// Takes the element out of the features of elements that stay.
void leaveOthers(Element& aElement, ModelIndex& aIndex) {
  if (aElement.fWasReferenced) {
    for (ModelIndex::Reference const& reference : aIndex.referencesTo(aElement))
      if (!isDying(*reference.fOwner)) unlink(*reference.fOwner, feature(reference.fFeature), aElement);
    aIndex.forgetValue(aElement);
  }
  std::vector<Element*> values;
  for (FeatureIndex const index : storedReferences(aElement)) {
    Feature const& root = feature(index);
    if (ownsHints(root)) continue;
    values.clear();
    collect(aElement, root, values);
    for (Element* const value : values) {
      if (root.fOpposite == kNoFeature)
        ModelIndex::forgetReference(aElement, root, *value);
      else if (!isDying(*value))
        unlink(aElement, root, *value);
    }
  }
}

/// Empties a list but keeps what scripts hold of it; what the slot held is gone with the subtree.
void emptySlots(Element& aElement) {
  freeTexts(aElement);
  forEachWord(aElement, aElement.fClass->fReferenceWords, [](void*& aWord) { aWord = nullptr; });
  forEachWord(aElement, aElement.fClass->fListWords, [](void*& aWord) {
    auto*& list = reinterpret_cast<ElementList*&>(aWord);
    if (list != nullptr) list->clear();
  });
}

void letGo(Element& aElement) {
  emptySlots(aElement);
  ModelIndex::noteGone(aElement);
  aElement.fContainer = nullptr;
  aElement.fModel = nullptr;
  aElement.decRef();
}

}  // namespace

Element& create(int aMetaclass, Kelm::ModelObject& aModel) {
  Kelm::ClassTable const* const table = classTable(aMetaclass);
  auto* const memory = static_cast<char*>(allocateElement(table->fSize));
  std::size_t const head = table->fRootOffset + table->fSlotOffset;
  std::memset(memory + head, 0, table->fSize - head);
  Element& element = *kElementClasses[table->fIndex].fConstruct(memory);
  element.fClass = table;
  element.fFlags = table->fDefaultFlags;
  element.fModel = &aModel;
  element.fCount = 1;
  ++sLiving;
  try {
    aModel.addRoot(&element);
  } catch (...) {
    element.fModel = nullptr;
    element.decRef();
    throw;
  }
  ModelIndex::noteCreated(element);
  aModel.noteChange();
  return element;
}

void destroy(Element& aElement, Deviant const& aDeviant) {
  checkWritable(aElement, aDeviant);
  Kelm::ModelObject& model = *aElement.fModel;
  ModelIndex& index = ModelIndex::of(model);
  leaveContainer(aElement);
  std::vector<Element*> const dying = subtree(aElement);
  for (Element* const element : dying) leaveOthers(*element, index);
  model.removeRoot(&aElement);
  model.noteChange();
  // Innermost first: an element is let go when nothing that it owns is left.
  for (auto next = dying.rbegin(); next != dying.rend(); ++next) letGo(**next);
}

void dropAll(Kelm::ModelObject& aModel) {
  std::vector<Element*> all;
  forEachElement(aModel, [&](Element& aElement) { all.push_back(&aElement); });
  for (auto next = all.rbegin(); next != all.rend(); ++next) letGo(**next);
}

std::size_t livingElements() noexcept { return sLiving; }

Kelm::ElementEngine const kElementEngine{
    release,        [](Element* aElement, Deviant const& aDeviant) { destroy(*aElement, aDeviant); },
    kernelEntry,    setKernelEntry,
    kernelSequence,
};

void collectContents(Element const& aElement, std::vector<Element*>& aOut) {
  if ((aElement.fMarks & Element::HasContents) == 0) return;
  for (FeatureIndex const index : containments(aElement)) collect(aElement, feature(index), aOut);
}

}  // namespace umlmm::engine
