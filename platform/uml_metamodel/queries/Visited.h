#pragma once

#include <cstdint>
#include <unordered_set>
#include <utility>
#include <vector>

#include "engine/ElementRef.h"

namespace umlmm::queries {

using engine::Element;

/// A set of elements for the length of one walk, in the order in which they came. Members carry a mark bit of
/// their own, so that asking costs a read of the element that is at hand anyway; the marks go with the set.
/// There are four bits for each thread; walks nested deeper fall back to hashing. A set stays in the thread
/// that made it, and all its members in one model, none of which may go meanwhile.
class Visited {
 public:
  Visited() noexcept : fMark(takeBit()) {}
  Visited(Visited const&) = delete;
  Visited& operator=(Visited const&) = delete;
  ~Visited() {
    clearMarks();
    sFree = static_cast<std::uint8_t>(sFree | fMark | fFollowedMark);
  }

  /// Whether the element is new to the set. When memory fails, the set is good for nothing but its end.
  bool insert(Element const& aElement) {
    auto& element = const_cast<Element&>(aElement);
    if (fMark == 0) {
      if (!fHashed.insert(&element).second) return false;
      fMembers.push_back(&element);
      return true;
    }
    if ((element.marks() & fMark) != 0) return false;
    // Noted before it is marked: no mark may outlive the walk, not even when memory fails.
    fMembers.push_back(&element);
    return setMark(element, fMark, fHashed);
  }
  bool contains(Element const& aElement) const {
    if (fMark == 0) return fHashed.contains(&const_cast<Element&>(aElement));
    return (aElement.marks() & fMark) != 0;
  }

  /// Whether a member is followed for the first time: a second mark on members, only for sets that ask, and
  /// for no other element, whose mark would stay.
  bool follow(Element& aMember) { return setMark(aMember, fFollowedMark, fHashedFollowed); }
  /// To be called once, before the first `follow`.
  void allowFollow() noexcept { fFollowedMark = takeBit(); }

  /// The members; the set is empty then.
  std::vector<Element*> take() noexcept {
    clearMarks();
    fHashed.clear();
    fHashedFollowed.clear();
    return std::exchange(fMembers, {});
  }

 private:
  using Hashed = std::unordered_set<Element*>;

  static std::uint8_t takeBit() noexcept {
    auto const bit = static_cast<std::uint8_t>(sFree & -sFree);
    sFree = static_cast<std::uint8_t>(sFree & ~bit);
    return bit;
  }
  static bool setMark(Element& aElement, std::uint8_t aMark, Hashed& aHashed) {
    if (aMark == 0) return aHashed.insert(&aElement).second;
    if ((aElement.marks() & aMark) != 0) return false;
    Kelm::ElementState::marks(aElement) = static_cast<std::uint8_t>(aElement.marks() | aMark);
    return true;
  }
  void clearMarks() noexcept {
    auto const kept = static_cast<std::uint8_t>(~(fMark | fFollowedMark));
    for (std::size_t at = 0; at < fMembers.size(); ++at) {
      engine::prefetch(fMembers, at);
      Kelm::ElementState::marks(*fMembers[at]) = static_cast<std::uint8_t>(fMembers[at]->marks() & kept);
    }
  }

  /// Bits of Element::fMarks that no walk of this thread uses now. Walks in different threads are in
  /// different models.
  [[gnu::tls_model("initial-exec")]] static inline constinit thread_local std::uint8_t sFree =
      Element::WalkMarks;

  std::uint8_t fMark;
  std::uint8_t fFollowedMark = 0;
  std::vector<Element*> fMembers;
  Hashed fHashed;
  Hashed fHashedFollowed;
};

}  // namespace umlmm::queries
