#include <algorithm>
#include <cstring>
#include <utility>

#include "engine/Aside.h"
#include "engine/ElementRef.h"
#include "engine/HeldElements.h"
#include "engine/ModelIndex.h"
#include "engine/Referrers.h"
#include "engine/ValueSequence.h"
#include "engine/classTables.h"
#include "engine/engine.h"
#include "engine/kernel_features.h"
#include "engine/links.h"

namespace umlmm::engine {

namespace {

using State = Kelm::ElementState;

void freeTexts(Element& aElement, std::uint64_t aWords) noexcept {
  forEachWord(aWords, [&](unsigned aWord) {
    std::uint64_t& word = State::slots(aElement)[aWord];
    if (word != 0) reinterpret_cast<Kelm::StringObject*>(word)->decRef();
    word = 0;
  });
}

/// The last count is gone: the slots hold no links any more, as the model or the container let go first.
void release(Element* aElement) {
  Kelm::ClassTable const& table = *aElement->classTable();
  freeTexts(*aElement, table.fStringWords);
  forEachWord(table.fListWords, [&](unsigned aWord) {
    if (void* const list = wordAt(*aElement, aWord)) ElementList::destroy(static_cast<ElementList*>(list));
  });
  forEachWord(table.fSequenceWords, [&](unsigned aWord) {
    delete static_cast<Kelm::Generic::SequenceIntf*>(wordAt(*aElement, aWord));
  });
  char* const memory = reinterpret_cast<char*>(aElement) - table.fRootOffset;
  Asides::noteFreed(*aElement);
  destruct(aElement);
  Kelm::Blocks::free(memory, table.fSize);
}

/// Elements that go, one after the other as they were found. They are chained by their containers, which they
/// lose anyway, as there may be no memory for a list of them.
class Dying {
 public:
  void add(Element& aElement) noexcept {
    State::marks(aElement) |= Element::Dying;
    State::container(aElement) = nullptr;
    (fLast == nullptr ? fFirst : State::container(*fLast)) = &aElement;
    fLast = &aElement;
  }
  /// Adds all that the elements own, owners first.
  void addParts() noexcept {
    forEach([&](Element& aElement) {
      if (!hadContents(aElement)) return;
      forEachPart(aElement, [&](Element& aPart) {
        prefetchSlots(aPart);
        add(aPart);
      });
    });
  }
  template <class Visit>
  void forEach(Visit aVisit) const noexcept {
    for (Element* next = fFirst; next != nullptr; next = next->container()) aVisit(*next);
  }
  /// Takes all out, the last found first.
  template <class Visit>
  void take(Visit aVisit) noexcept {
    Element* reversed = nullptr;
    while (fFirst != nullptr) {
      Element* const next = std::exchange(State::container(*fFirst), reversed);
      reversed = std::exchange(fFirst, next);
    }
    while (reversed != nullptr) aVisit(*std::exchange(reversed, reversed->container()));
  }

 private:
  Element* fFirst = nullptr;
  Element* fLast = nullptr;
};

bool isDying(Element const& aElement) noexcept { return (aElement.marks() & Element::Dying) != 0; }

void leaveReferrer(Element& aElement, Reference aReference) {
  if (!isDying(*aReference.fOwner)) unlink(*aReference.fOwner, feature(aReference.fFeature), aElement);
}

void leaveReferrers(Element& aElement) {
  if (!aElement.hasReferrers()) return;
  if (aElement.model()->record() == nullptr) {
    Referrers::take(aElement, [&](Reference aReference) { leaveReferrer(aElement, aReference); });
  } else {
    for (Reference const& reference : Referrers::of(aElement)) leaveReferrer(aElement, reference);
  }
}

/// The far ends of what a slot refers to lose the element.
void leaveReferred(Element& aElement, Feature const& aRoot, void* aHeld) {
  if (aRoot.fStorage != Storage::List) {
    auto& value = *static_cast<Element*>(aHeld);
    if (isDying(value)) return;
    return aRoot.fOpposite == kNoFeature ? Change::forget(aElement, aRoot, value)
                                         : unlink(aElement, aRoot, value);
  }
  auto& list = *static_cast<ElementList*>(aHeld);
  if (aRoot.fOpposite == kNoFeature) {
    for (Element* const value : list)
      if (value != nullptr && !isDying(*value)) Change::forget(aElement, aRoot, *value);
    return;
  }
  // From the end: values that stay only move towards the front while others go.
  for (auto at = list.end() - list.begin(); at > 0;) {
    at = std::min(at, list.end() - list.begin()) - 1;
    Element* const value = at < 0 ? nullptr : list.begin()[at];
    if (value != nullptr && !isDying(*value)) unlink(aElement, aRoot, *value);
  }
}

void leaveOthers(Element& aElement) {
  leaveReferrers(aElement);
  Kelm::ClassTable const& table = *aElement.classTable();
  forEachWord((table.fReferenceWords | table.fListWords) & ~table.fContentWords, [&](unsigned aWord) {
    if (void* const held = wordAt(aElement, aWord))
      leaveReferred(aElement, feature(table.fFeatureOfWord[aWord]), held);
  });
  forEachAdded(aElement, [&](Feature const& aAdded, std::uint64_t aWord) {
    bool const refers = aAdded.isReference() && !ownsParts(aAdded);
    if (refers && aWord != 0) leaveReferred(aElement, aAdded, reinterpret_cast<void*>(aWord));
  });
}

/// Empties a list but keeps what scripts hold of it; what the slot held is gone with the subtree. The name
/// stays, so that failures can tell which element is gone.
void emptySlots(Element& aElement) noexcept {
  FeatureIndex const naming = namingFeature(aElement);
  std::uint64_t const name = naming != kNoFeature ? std::uint64_t{1} << slotOf(aElement, naming) : 0;
  freeTexts(aElement, aElement.classTable()->fStringWords & ~name);
  forEachWord(aElement.classTable()->fReferenceWords,
              [&](unsigned aWord) { State::slots(aElement)[aWord] = 0; });
  forEachWord(aElement.classTable()->fListWords, [&](unsigned aWord) {
    if (auto* const list = static_cast<ElementList*>(wordAt(aElement, aWord))) list->clear();
  });
  forEachWord(aElement.classTable()->fSequenceWords, [&](unsigned aWord) {
    if (void* const values = wordAt(aElement, aWord))
      forgetValues(*static_cast<Kelm::Generic::SequenceIntf*>(values));
  });
  forEachAdded(aElement, [](Feature const& aAdded, std::uint64_t& aWord) {
    if (aAdded.fStorage == Storage::Reference) aWord = 0;
    if (aWord == 0) return;
    if (aAdded.fStorage == Storage::List) reinterpret_cast<ElementList*>(aWord)->clear();
    if (aAdded.fStorage == Storage::PrimitiveList)
      forgetValues(*reinterpret_cast<Kelm::Generic::SequenceIntf*>(aWord));
  });
}

}  // namespace

void Change::letGo(Element& aElement) noexcept {
  // Nobody sees the slots of an element that nobody else holds.
  if (aElement.numRef() > 1) emptySlots(aElement);
  if (aElement.hasReferrers()) Referrers::clear(aElement);
  ModelIndex::noteGone(aElement);
  Asides::noteGone(aElement);
  State::container(aElement) = nullptr;
  State::model(aElement) = nullptr;
  aElement.decRef();
}

void Change::revive(Element& aElement, Kelm::ModelObject& aModel) noexcept {
  State::model(aElement) = &aModel;
  State::marks(aElement) = static_cast<std::uint8_t>(aElement.marks() & ~Element::Dying);
}

Element& Change::create(int aMetaclass, Kelm::ModelObject& aModel) {
  Kelm::ClassTable const* const table = classTable(aMetaclass);
  Kelm::ChangeRecord* const open = aModel.record();
  if (open != nullptr) [[unlikely]] {
    if (open->isIdle()) {
      Change change(aModel);
      Element& made = create(aMetaclass, aModel);
      change.commit();
      return made;
    }
    open->reserve();
  }
  aModel.reserveRoots(1);
  auto* const memory = static_cast<char*>(aModel.blocks().allocate(table->fSize));
  std::size_t const head = table->fRootOffset + table->fSlotOffset;
  std::memset(memory + head, 0, table->fSize - head);
  Element& element = *kElementClasses[table->fIndex].fConstruct(memory);
  State::begin(element, *table, aModel);
  try {
    ModelIndex::noteCreated(element);
  } catch (...) {
    State::model(element) = nullptr;
    element.decRef();
    throw;
  }
  aModel.addRoot(&element);
  if (open != nullptr) open->note({Step::Kind::Created, kNoFeature, 0, &element, nullptr, nullptr});
  return element;
}

void Change::destroy(Element& aElement) {
  Kelm::ModelObject& model = *aElement.model();
  HeldElements::countAll(model);
  if (model.record() != nullptr) return together(aElement, [&] { destroyNoted(aElement); });
  State::marks(aElement) |= Element::Dying;
  if (aElement.container() != nullptr)
    leaveContainer(aElement);
  else
    model.removeRoot(&aElement);
  Dying dying;
  dying.add(aElement);
  dying.addParts();
  dying.forEach(leaveOthers);
  model.noteChange();
  // An element is let go when nothing that it owns is left.
  dying.take(letGo);
}

void Change::destroyNoted(Element& aElement) {
  Kelm::ModelObject& model = *aElement.model();
  Kelm::ChangeRecord& open = *model.record();
  leaveContainer(aElement);
  std::vector<Element*> dying{&aElement};
  for (std::size_t next = 0; next < dying.size(); ++next) collectContents(*dying[next], dying);
  // All are marked before any is left, and marks are taken back like the rest.
  for (Element* const element : dying) {
    open.note({Step::Kind::Marked, kNoFeature, 0, element, &model, nullptr});
    State::marks(*element) |= Element::Dying;
  }
  for (Element* const element : dying) leaveOthers(*element);
  leaveRoots(aElement, &open);
  for (Element* const element : dying) {
    open.note({Step::Kind::Destroyed, kNoFeature, 0, element, &model, nullptr});
    State::model(*element) = nullptr;
  }
  model.noteChange();
}

void Change::dropAll(Kelm::ModelObject& aModel) noexcept {
  HeldElements::countAll(aModel);
  aModel.setCompanion(nullptr);
  if (aModel.roots() == nullptr) return;
  Dying all;
  for (Element* const root : *aModel.roots())
    if (root != nullptr) all.add(*root);
  all.addParts();
  all.take(letGo);
}

void destroy(Element& aElement, Deviant const& aDeviant) {
  checkWritable(aElement, aDeviant, "uml_metamodel/engine/lifecycle");
  Change::destroy(aElement);
}

Kelm::ElementEngine const kElementEngine{
    release,        [](Element* aElement, Deviant const& aDeviant) { destroy(*aElement, aDeviant); },
    kernelEntry,    setKernelEntry,
    kernelSequence,
};

}  // namespace umlmm::engine
