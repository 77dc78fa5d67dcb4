#include <cstring>

#include "engine/ElementNotes.h"
#include "engine/ElementRef.h"
#include "engine/HeldElements.h"
#include "engine/ModelIndex.h"
#include "engine/Referrers.h"
#include "engine/classes.h"
#include "engine/engine.h"
#include "engine/kernel_features.h"
#include "engine/links.h"
#include "reflection/meta.h"

namespace umlmm::engine {

namespace {

void freeTexts(Element& aElement, std::uint64_t aWords) {
  forEachWord(aWords, [&](unsigned aWord) {
    void*& word = wordAt(aElement, aWord);
    if (word != nullptr) static_cast<Kelm::StringObject*>(word)->decRef();
    word = nullptr;
  });
}

/// The last count is gone: the slots hold no links any more, as the model or the container let go first.
void release(Element* aElement) {
  Kelm::ClassTable const& table = *aElement->fClass;
  freeTexts(*aElement, table.fStringWords);
  forEachWord(table.fListWords, [&](unsigned aWord) {
    if (void* const list = wordAt(*aElement, aWord)) ElementList::destroy(static_cast<ElementList*>(list));
  });
  forEachWord(table.fSequenceWords, [&](unsigned aWord) {
    delete static_cast<Kelm::Generic::SequenceIntf*>(wordAt(*aElement, aWord));
  });
  char* const memory = reinterpret_cast<char*>(aElement) - table.fRootOffset;
  ElementNotes::noteFreed(*aElement);
  destruct(aElement);
  Kelm::Blocks::free(memory, table.fSize);
}

/// An element and all below it, owners first.
std::vector<Element*> subtree(Element& aElement) {
  std::vector<Element*> all;
  all.reserve(32);
  all.push_back(&aElement);
  for (std::size_t next = 0; next < all.size(); ++next) {
    all[next]->fMarks |= Element::Dying;
    if (!hadContents(*all[next])) continue;
    forEachPart(*all[next], [&](Element& aPart) {
      prefetchSlots(aPart);
      all.push_back(&aPart);
    });
  }
  return all;
}

bool isDying(Element const& aElement) noexcept { return (aElement.fMarks & Element::Dying) != 0; }

void leaveReferrers(Element& aElement) {
  if (aElement.fReferrers == 0) return;
  Referrers::take(aElement, [&](Reference aReference) {
    if (!isDying(*aReference.fOwner)) unlink(*aReference.fOwner, feature(aReference.fFeature), aElement);
  });
}

/// The far ends of what a word refers to lose the element.
void leaveReferred(Element& aElement, unsigned aWord) {
  Feature const& root = feature(aElement.fClass->fFeatureOfWord[aWord]);
  if (root.fOpposite == kNoFeature) {
    forEachIn(aElement, aWord, [&](Element& aValue) {
      if (!isDying(aValue)) Referrers::remove(aValue, {&aElement, indexOf(root)});
    });
    return;
  }
  std::vector<Element*> staying;
  forEachIn(aElement, aWord, [&](Element& aValue) {
    if (!isDying(aValue)) staying.push_back(&aValue);
  });
  for (Element* const value : staying) unlink(aElement, root, *value);
}

void leaveOthers(Element& aElement) {
  leaveReferrers(aElement);
  Kelm::ClassTable const& table = *aElement.fClass;
  forEachWord((table.fReferenceWords | table.fListWords) & ~table.fContentWords, [&](unsigned aWord) {
    if (wordAt(aElement, aWord) != nullptr) leaveReferred(aElement, aWord);
  });
}

/// Empties a list but keeps what scripts hold of it; what the slot held is gone with the subtree. The name
/// stays, so that failures can tell which element is gone.
void emptySlots(Element& aElement) {
  FeatureIndex const naming = namingFeature(aElement);
  std::uint64_t const name = naming != kNoFeature ? std::uint64_t{1} << slotOf(aElement, naming) : 0;
  freeTexts(aElement, aElement.fClass->fStringWords & ~name);
  forEachWord(aElement.fClass->fReferenceWords, [&](unsigned aWord) { wordAt(aElement, aWord) = nullptr; });
  forEachWord(aElement.fClass->fListWords, [&](unsigned aWord) {
    if (auto* const list = static_cast<ElementList*>(wordAt(aElement, aWord))) list->clear();
  });
}

void letGo(Element& aElement) {
  // Nobody sees the slots of an element that nobody else holds.
  if (aElement.fCount > 1) emptySlots(aElement);
  if (aElement.fReferrers != 0) Referrers::clear(aElement);
  ModelIndex::noteGone(aElement);
  ElementNotes::noteGone(aElement);
  aElement.fContainer = nullptr;
  aElement.fModel = nullptr;
  aElement.decRef();
}

}  // namespace

Element& create(int aMetaclass, Kelm::ModelObject& aModel) {
  Kelm::ClassTable const* const table = classTable(aMetaclass);
  auto* const memory = static_cast<char*>(aModel.blocks().allocate(table->fSize));
  std::size_t const head = table->fRootOffset + table->fSlotOffset;
  std::memset(memory + head, 0, table->fSize - head);
  Element& element = *kElementClasses[table->fIndex].fConstruct(memory);
  element.fClass = table;
  element.fFlags = table->fDefaultFlags;
  element.fModel = &aModel;
  element.fCount = 1;
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
  checkWritable(aElement, aDeviant, "uml_metamodel/engine/lifecycle");
  Kelm::ModelObject& model = *aElement.fModel;
  HeldElements::countAll(model);
  leaveContainer(aElement);
  std::vector<Element*> const dying = subtree(aElement);
  for (Element* const element : dying) leaveOthers(*element);
  model.removeRoot(&aElement);
  model.noteChange();
  // Innermost first: an element is let go when nothing that it owns is left.
  for (auto next = dying.rbegin(); next != dying.rend(); ++next) letGo(**next);
}

void dropAll(Kelm::ModelObject& aModel) {
  HeldElements::countAll(aModel);
  aModel.setCompanion(nullptr);
  std::vector<Element*> all;
  forEachElement(aModel, [&](Element& aElement) { all.push_back(&aElement); });
  for (auto next = all.rbegin(); next != all.rend(); ++next) letGo(**next);
}

Kelm::ElementEngine const kElementEngine{
    release,        [](Element* aElement, Deviant const& aDeviant) { destroy(*aElement, aDeviant); },
    kernelEntry,    setKernelEntry,
    kernelSequence,
};

}  // namespace umlmm::engine
