#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "engine/slots.h"
#include "kelm/PointerTable.h"

namespace umlmm::engine {

/// A reference through a feature without a far end, seen from the element that it leads to.
struct Reference {
  Element* fOwner;
  FeatureIndex fFeature;
};

/// Who refers to an element through features without a far end, in the order in which the references were
/// made. It stands in one word of the element: most are referred to once or never, which takes no memory
/// beside it. The others have a list, and a long list gets a table of places once something is taken out of
/// it.
class Referrers {
 public:
  /// Makes room for one more reference, so that `add` can't fail.
  static void reserve(Element& aValue) {
    if (Kelm::ElementState::referrers(aValue) != 0) [[unlikely]]
      makeRoom(aValue);
  }
  /// Notes a reference that is not noted yet, in the room that was made for it.
  static void add(Element& aValue, Reference aReference) noexcept;
  /// Forgets a reference; nothing if it is not noted.
  static void remove(Element& aValue, Reference aReference) noexcept;
  /// Puts noted references, each once, into the order given; the places that they have together stay theirs.
  static void arrange(Element& aValue, std::vector<Reference> const& aOrder);
  /// Forgets all.
  static void clear(Element& aValue) noexcept;

  // For changes that may be taken back.

  /// Takes back the last `add`.
  static void removeLast(Element& aValue) noexcept;
  /// As `remove`, but leaves a hole, which `fill` finds by the answer.
  static std::uint32_t strike(Element& aValue, Reference aReference) noexcept;
  static void fill(Element& aValue, Reference aReference, std::uint32_t aPlace) noexcept;
  /// Forgets the holes when nothing will be filled any more.
  static void closeHoles(Element& aValue) noexcept;
  /// All that is kept of the references, as words; `restore` takes it back.
  static std::vector<std::uintptr_t> words(Element const& aValue);
  static void restore(Element& aValue, std::vector<std::uintptr_t> const& aWords) noexcept;

  /// Calls `aVisit` with each reference, after all have been forgotten.
  template <class Visit>
  static void take(Element& aValue, Visit aVisit) {
    Word const word = std::exchange(Kelm::ElementState::referrers(aValue), 0);
    std::unique_ptr<Referrers> const list(listIn(word));
    if (list == nullptr) {
      if (word != 0) aVisit(unpack(word));
      return;
    }
    for (Word const reference : list->fWords)
      if (reference != 0) aVisit(unpack(reference));
  }

  /// A copy, as whoever asks may change links.
  static std::vector<Reference> of(Element const& aValue);

 private:
  /// A reference in a word: no address has bits above the 47th, nor the lowest, which tells lists.
  using Word = std::uintptr_t;
  static_assert(sizeof(Word) == 8);

  static constexpr Word kIsList = 1;
  static constexpr unsigned kFeatureShift = 48;

  static Word pack(Reference aReference) noexcept {
    return reinterpret_cast<Word>(aReference.fOwner) | Word{aReference.fFeature} << kFeatureShift;
  }
  static Reference unpack(Word aWord) noexcept {
    return {reinterpret_cast<Element*>(aWord & ((Word{1} << kFeatureShift) - 1)),
            static_cast<FeatureIndex>(aWord >> kFeatureShift)};
  }
  static Referrers* listIn(Word aWord) noexcept {
    return (aWord & kIsList) == 0 ? nullptr : reinterpret_cast<Referrers*>(aWord & ~kIsList);
  }

  static void makeRoom(Element& aValue);
  void append(Word aReference) noexcept;
  void erase(Word aReference) noexcept;
  /// Where the reference stands, or the size; it is no longer in the table of places.
  std::size_t takePlaceOf(Word aReference) noexcept;
  bool makePlaces() noexcept;
  void trim() noexcept;
  void closeHoles() noexcept;

  /// Null words are holes.
  std::vector<Word> fWords;
  std::size_t fHoles = 0;
  std::unique_ptr<Kelm::PointerTable> fPlaces;
};

}  // namespace umlmm::engine
