#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "kelm/ClassObject.h"

namespace umlmm::files {

/// Elements by their ids, which live elsewhere: open addressing, at most half full, and the hash beside each
/// id, so that a question seldom looks at more than one of them. A table of nodes took twice the time to read
/// a file of 200 MB.
class IdTable {
  using Element = Kelm::NSInterface::ClassObjectIntf;

 public:
  /// Answers false and changes nothing if the id is known.
  bool insert(std::string_view aId, Element& aElement) {
    if ((fCount + 1) * 2 > fSlots.size()) grow();
    std::size_t const hash = std::hash<std::string_view>()(aId);
    Slot& slot = fSlots[place(aId, hash)];
    if (slot.fElement != nullptr) return false;
    slot = {aId.data(), static_cast<std::uint32_t>(aId.size()), static_cast<std::uint32_t>(hash), &aElement};
    ++fCount;
    return true;
  }
  /// Null for an id that nobody has.
  Element* find(std::string_view aId) const {
    return fCount == 0 ? nullptr : fSlots[place(aId, std::hash<std::string_view>()(aId))].fElement;
  }
  /// Calls `aVisit` with each id and the place of its element, which may be changed to another one.
  template <class Visit>
  void forEach(Visit aVisit) {
    for (Slot& slot : fSlots)
      if (slot.fElement != nullptr) aVisit(std::string_view(slot.fText, slot.fLength), slot.fElement);
  }
  template <class Visit>
  void forEach(Visit aVisit) const {
    for (Slot const& slot : fSlots)
      if (slot.fElement != nullptr) aVisit(std::string_view(slot.fText, slot.fLength), *slot.fElement);
  }

 private:
  struct Slot {
    char const* fText = nullptr;
    std::uint32_t fLength = 0;
    std::uint32_t fHash = 0;
    Element* fElement = nullptr;
  };

  /// Where the id stands, or would.
  std::size_t place(std::string_view aId, std::size_t aHash) const {
    std::size_t const mask = fSlots.size() - 1;
    std::size_t at = static_cast<std::uint32_t>(aHash) & mask;
    while (fSlots[at].fElement != nullptr && (fSlots[at].fHash != static_cast<std::uint32_t>(aHash) ||
                                              std::string_view(fSlots[at].fText, fSlots[at].fLength) != aId))
      at = (at + 1) & mask;
    return at;
  }
  void grow() {
    constexpr std::size_t kFirst = 64;
    std::vector<Slot> old(fSlots.empty() ? kFirst : fSlots.size() * 2);
    old.swap(fSlots);
    std::size_t const mask = fSlots.size() - 1;
    for (Slot const& slot : old) {
      if (slot.fElement == nullptr) continue;
      std::size_t at = slot.fHash & mask;
      while (fSlots[at].fElement != nullptr) at = (at + 1) & mask;
      fSlots[at] = slot;
    }
  }

  std::vector<Slot> fSlots;
  std::size_t fCount = 0;
};

}  // namespace umlmm::files
