#pragma once

#include <memory>
#include <optional>
#include <span>
#include <type_traits>

#include "engine/Aside.h"
#include "engine/ChangeRecord.h"
#include "engine/slots.h"
#include "kelm/String.h"

namespace umlmm::engine {

inline constexpr std::uint32_t kAtEnd = UINT32_MAX;

/// The gate through which everything changes that elements hold. Its steps are all there are: each is made as
/// a whole or not at all, takes the model to its next revision and keeps the books of who refers to whom.
/// Checks, and what follows from a step at far ends and in supersets, are the business of `links.h` and
/// `featureAccess.h`.
///
/// A change of several steps that may fail in the middle is a `Change` object: it notes what was there before
/// each step, and takes all of them back when it ends without `commit`. One that is made while another is
/// open in the model joins it. While none is open, a step notes nothing and costs nothing more; `destroy`
/// needs no memory then. Not noted is what sequences of values hold (ValueSequence.h), and texts of other
/// tools: a change that writes them in an element which was there before does so last.
class Change {
  using State = Kelm::ElementState;

  template <class T>
  static T*& pointer(Element& aElement, FeatureIndex aRoot) {
    if (isAdded(aRoot)) [[unlikely]]
      return reinterpret_cast<T*&>(Asides::word(aElement, aRoot));
    return reinterpret_cast<T**>(State::slots(aElement))[slotOf(aElement, aRoot)];
  }
  /// Calls `aVisit` with the slot of a list, which may be null, as the kind of list that it is.
  template <class Visit>
  static decltype(auto) withSlot(Element& aOwner, Feature const& aRoot, Visit aVisit) {
    if (ownsParts(aRoot)) return aVisit(pointer<PartList>(aOwner, indexOf(aRoot)));
    return aVisit(pointer<ReferenceList>(aOwner, indexOf(aRoot)));
  }

 public:
  /// Opens a change of an open model; takes no memory. Changes end in the opposite order of their opening.
  explicit Change(Kelm::ModelObject& aModel);
  Change(Change const&) = delete;
  Change& operator=(Change const&) = delete;
  /// Takes back, without memory, what was not committed. The end of the outermost change lets go of what it
  /// destroyed.
  ~Change();

  /// All steps stay. If the change has joined another one, that one decides in the end.
  void commit() noexcept { fIsCommitted = true; }

  // Values. `aRoot` is the feature with the slot, which the element's metaclass has; the element is in a
  // model. While a change is open each may raise std::bad_alloc, with nothing changed.

  static void setText(Element& aElement, Feature const& aRoot, Kelm::StringObject const* aText) {
    Kelm::StringObject* const text = const_cast<Kelm::StringObject*>(aText);
    auto*& slot = pointer<Kelm::StringObject>(aElement, indexOf(aRoot));
    if (record(aElement) != nullptr) [[unlikely]]
      return noteText(aElement, aRoot, text);
    if (text != nullptr) text->incRef();
    if (slot != nullptr) slot->decRef();
    slot = text;
    aElement.model()->noteChange();
  }
  /// `aWidth` bits of the flag word from the slot's position on.
  static void setFlags(Element& aElement, FeatureIndex aRoot, unsigned aWidth, std::uint32_t aBits) {
    if (isAdded(aRoot)) [[unlikely]]
      return setInteger(aElement, aRoot, aBits);
    unsigned const position = slotOf(aElement, aRoot);
    std::uint32_t const mask = ((1U << aWidth) - 1) << position;
    std::uint32_t const flags = (aElement.flags() & ~mask) | (aBits << position & mask);
    if (record(aElement) != nullptr) [[unlikely]]
      return noteFlags(aElement, aRoot, flags);
    State::flags(aElement) = flags;
    aElement.model()->noteChange();
  }
  static void setInteger(Element& aElement, FeatureIndex aRoot, std::uint32_t aValue) {
    if (record(aElement) != nullptr) [[unlikely]]
      return noteInteger(aElement, aRoot, aValue);
    integer(aElement, aRoot) = aValue;
    aElement.model()->noteChange();
  }
  /// The sequence of a feature of values, made when first asked for by `aMake(slot)`.
  template <class Make>
  static Kelm::Generic::SequenceIntf& values(Element& aElement, FeatureIndex aRoot, Make aMake) {
    auto*& slot = pointer<Kelm::Generic::SequenceIntf>(aElement, aRoot);
    if (slot == nullptr) slot = aMake();
    return *slot;
  }
  /// Before the values of such a sequence change: `aKeep()` answers what brings them back, should the change
  /// be taken back. Once for a sequence in each change; `aPlace` tells it where it was noted last.
  template <class Keep>
  static void noteValues(Element& aElement, FeatureIndex aRoot, std::size_t& aPlace, Keep aKeep) {
    Kelm::ChangeRecord* const open = record(aElement);
    if (open == nullptr) [[likely]]
      return;
    if (!isNotedValues(*open, aElement, aRoot, aPlace)) aPlace = addValues(*open, aElement, aRoot, aKeep());
  }
  /// Whether steps are noted: somebody observes the model, or a change is open.
  static bool isNoted(Element const& aElement) noexcept { return record(aElement) != nullptr; }
  /// Whether somebody observes the model and no change is open: steps that belong together need one.
  static bool isObserved(Element const& aElement) noexcept {
    return record(aElement) != nullptr && record(aElement)->isIdle();
  }
  /// Makes steps a change of their own.
  template <class Steps>
  [[gnu::noinline, gnu::cold]] static auto together(Element const& aElement, Steps aSteps) {
    Change change(*aElement.model());
    if constexpr (std::is_void_v<decltype(aSteps())>) {
      aSteps();
      change.commit();
    } else {
      auto& result = aSteps();
      change.commit();
      return &result;
    }
  }
  /// The list of a feature, made when first asked for.
  static ElementList& list(Element& aElement, Feature const& aRoot) {
    return withSlot(aElement, aRoot, [&]<class List>(List*& aSlot) -> ElementList& {
      List::reserve(aSlot, aElement.model()->blocks(), aSlot == nullptr ? 1 : 0);
      return *aSlot;
    });
  }

  // References. Only the one slot changes, and what follows for a part: its container, and the top level of
  // the model, which a part enters when it leaves its owner.

  /// Makes room for a value, so that `insert` can't fail unless a change is open.
  static void reserve(Element& aOwner, Feature const& aRoot, Element& aValue) {
    if (isAdded(indexOf(aRoot))) [[unlikely]]
      Asides::word(aOwner, indexOf(aRoot));
    if (aRoot.fStorage == Storage::List)
      withSlot(aOwner, aRoot,
               [&]<class List>(List*& aSlot) { List::reserve(aSlot, aOwner.model()->blocks(), 1); });
    if (!ownsParts(aRoot) && aRoot.fOpposite == kNoFeature) Referrers::reserve(aValue);
  }
  /// The same for several values of a list, as far as the list goes.
  static void reserveList(Element& aOwner, Feature const& aRoot, std::uint32_t aCount) {
    withSlot(aOwner, aRoot,
             [&]<class List>(List*& aSlot) { List::reserve(aSlot, aOwner.model()->blocks(), aCount); });
  }
  /// Puts a value, which no other owner holds, into a reference that is empty or before a position of a list,
  /// where `reserve` has made room.
  static void insert(Element& aOwner, Feature const& aRoot, Element& aValue, std::uint32_t aPosition);
  /// Takes out a value that is there. A part comes to the top level, for which the model has room by then,
  /// unless it is being destroyed.
  static void erase(Element& aOwner, Feature const& aRoot, Element& aValue);
  /// Puts all values of a list into the order given, each once.
  static void arrange(Element& aOwner, Feature const& aRoot, std::span<Element* const> aOrder);
  /// The value at `aFrom[i]` comes to `aTo[i]`; both name the same positions.
  static void rearrange(Element& aOwner, Feature const& aRoot, std::span<int const> aFrom,
                        std::span<int const> aTo);
  /// Puts references to an element, each once, into the order given.
  static void arrangeReferrers(Element& aValue, std::vector<Reference> const& aOrder);

  // Elements.

  /// A new element with the defaults of its metaclass, at the top level of the model, whose count is its only
  /// one. The metaclass is a concrete one.
  static Element& create(int aMetaclass, Kelm::ModelObject& aModel);
  /// The element and all that it owns, innermost last to leave: no feature of any other element refers to one
  /// of them afterwards. While a change is open they are kept until it ends.
  static void destroy(Element& aElement);
  /// The value of a reference without a far end forgets an element that is being destroyed.
  static void forget(Element& aOwner, Feature const& aRoot, Element& aValue);
  /// Lets go of all elements of a model that is being closed.
  static void dropAll(Kelm::ModelObject& aModel) noexcept;

 private:
  friend class Kelm::ChangeRecord;

  static Kelm::ChangeRecord* record(Element const& aElement) noexcept { return aElement.model()->record(); }
  static bool isNotedValues(Kelm::ChangeRecord const& aOpen, Element const& aElement, FeatureIndex aRoot,
                            std::size_t aPlace) noexcept;
  static std::size_t addValues(Kelm::ChangeRecord& aOpen, Element& aElement, FeatureIndex aRoot,
                               std::unique_ptr<KeptValues> aValues);
  // Steps that are noted first.
  static void noteFlags(Element& aElement, FeatureIndex aRoot, std::uint32_t aFlags);
  static void noteInteger(Element& aElement, FeatureIndex aRoot, std::uint32_t aValue);
  static void noteText(Element& aElement, Feature const& aRoot, Kelm::StringObject* aText);

  static std::uint32_t& integer(Element& aElement, FeatureIndex aRoot) {
    if (isAdded(aRoot)) [[unlikely]]
      return reinterpret_cast<std::uint32_t&>(Asides::word(aElement, aRoot));
    return reinterpret_cast<std::uint32_t*>(State::slots(aElement))[slotOf(aElement, aRoot)];
  }
  static void put(Element& aOwner, Feature const& aRoot, Element& aValue, std::uint32_t aPosition);
  static void putBack(Element& aOwner, Feature const& aRoot, Element& aValue, Element* aPrevious) noexcept;
  static void take(Element& aOwner, Feature const& aRoot, Element& aValue) noexcept;
  static void reorder(Element& aOwner, Feature const& aRoot,
                      std::vector<std::uintptr_t> const& aOrder) noexcept;
  static void contain(Element& aOwner, Feature const& aRoot, Element& aValue) noexcept;
  static void revive(Element& aElement, Kelm::ModelObject& aModel) noexcept;
  static void enterRoots(Element& aElement, Kelm::ChangeRecord* aOpen);
  static void leaveRoots(Element& aElement, Kelm::ChangeRecord* aOpen);
  static void destroyNoted(Element& aElement);
  static void letGo(Element& aElement) noexcept;

  Kelm::ModelObject& fModel;
  /// What the model has while no change is open: null, or the record of those who observe it.
  Kelm::ChangeRecord* fIdle;
  /// Of the outermost change alone.
  std::optional<Kelm::ChangeRecord> fOwn;
  Kelm::ChangeRecord& fRecord;
  std::size_t fMark;
  std::size_t fOuterMark;
  bool fIsCommitted = false;
};

}  // namespace umlmm::engine
