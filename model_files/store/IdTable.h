#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "kelm/ClassObject.h"

namespace umlmm::files {

/// Elements by their ids, which live elsewhere. Ids are added in the order of a file, and entered all at once
/// into a table of places, at most half full, with the hash beside each place, so that a question seldom
/// looks at more than one id. What is looked at is far apart in a large file: whoever has many questions asks
/// them together, so that the memory of one is on its way while another is answered, which takes half the
/// time.
class IdTable {
  using Element = Kelm::NSInterface::ClassObjectIntf;

 public:
  /// Questions that are asked together.
  static constexpr std::size_t kTogether = 32;

  /// The id is found when all have been entered.
  void add(std::string_view aId, Element& aElement) {
    fRows.push_back({aId.data(), static_cast<std::uint32_t>(aId.size()), hashOf(aId), &aElement});
  }
  /// Makes room for so many; what is not used of it takes no memory.
  void reserve(std::size_t aCount) { fRows.reserve(aCount); }
  /// Enters what was added. Of equal ids the first is found; `aVisit` is called with each other one.
  template <class Visit>
  void enter(Visit aVisit) {
    std::size_t size = 64;
    while (size < 2 * fRows.size()) size *= 2;
    fPlaces.assign(size, {});
    for (std::size_t at = 0; at < fRows.size(); ++at) {
      if (at + kTogether < fRows.size()) __builtin_prefetch(&fPlaces[start(fRows[at + kTogether].fHash)]);
      Row const& row = fRows[at];
      std::string_view const id(row.fText, row.fLength);
      Place& place = fPlaces[placeOf(id, row.fHash)];
      if (place.fNumber != 0)
        aVisit(id, *row.fElement);
      else
        place = {row.fHash, static_cast<std::uint32_t>(at + 1)};
    }
  }
  /// Null for an id that nobody has.
  Element* find(std::string_view aId) const { return find(aId, hashOf(aId)); }
  /// The same for several.
  void find(std::span<std::string_view const> aIds, std::span<Element*> aOut) const {
    std::array<std::uint32_t, kTogether> hashes{};
    for (std::size_t from = 0; from < aIds.size(); from += kTogether) {
      std::size_t const count = std::min(kTogether, aIds.size() - from);
      for (std::size_t at = 0; at < count; ++at) {
        hashes[at] = hashOf(aIds[from + at]);
        if (!fPlaces.empty()) __builtin_prefetch(&fPlaces[start(hashes[at])]);
      }
      for (std::size_t at = 0; at < count && !fPlaces.empty(); ++at)
        if (Place const& place = fPlaces[start(hashes[at])]; place.fNumber != 0)
          __builtin_prefetch(&fRows[place.fNumber - 1]);
      for (std::size_t at = 0; at < count && !fPlaces.empty(); ++at)
        if (Place const& place = fPlaces[start(hashes[at])]; place.fNumber != 0)
          __builtin_prefetch(fRows[place.fNumber - 1].fText);
      for (std::size_t at = 0; at < count; ++at) aOut[from + at] = find(aIds[from + at], hashes[at]);
    }
  }
  /// Calls `aVisit` with each id and the place of its element, which may be changed to another one. Equal ids
  /// come as often as they were added.
  template <class Visit>
  void forEach(Visit aVisit) {
    for (Row& row : fRows) aVisit(std::string_view(row.fText, row.fLength), row.fElement);
  }
  template <class Visit>
  void forEach(Visit aVisit) const {
    for (Row const& row : fRows) aVisit(std::string_view(row.fText, row.fLength), *row.fElement);
  }

 private:
  struct Row {
    char const* fText;
    std::uint32_t fLength;
    std::uint32_t fHash;
    Element* fElement;
  };
  struct Place {
    std::uint32_t fHash = 0;
    /// Of the row, from 1 on; 0 for a free place.
    std::uint32_t fNumber = 0;
  };

  static std::uint32_t hashOf(std::string_view aId) noexcept {
    // Eight bytes at a time, the last of them once more where there are fewer.
    constexpr std::uint64_t kMix = 0x9E3779B97F4A7C15;
    constexpr std::size_t kWord = sizeof(std::uint64_t);
    std::uint64_t hash = aId.size();
    for (std::size_t at = 0; at + kWord < aId.size(); at += kWord)
      hash = mixed(hash ^ wordAt(aId.data() + at, kWord));
    std::size_t const last = std::min(kWord, aId.size());
    hash = mixed(hash ^ wordAt(aId.data() + aId.size() - last, last));
    return static_cast<std::uint32_t>(hash * kMix >> 32);
  }
  static std::uint64_t wordAt(char const* aText, std::size_t aCount) noexcept {
    std::uint64_t word = 0;
    if (aCount == sizeof word) [[likely]]
      std::memcpy(&word, aText, sizeof word);
    else
      for (std::size_t at = 0; at < aCount; ++at) word = word << 8 | static_cast<unsigned char>(aText[at]);
    return word;
  }
  static std::uint64_t mixed(std::uint64_t aHash) noexcept {
    aHash *= 0xBF58476D1CE4E5B9;
    return aHash ^ aHash >> 29;
  }

  std::size_t start(std::uint32_t aHash) const noexcept { return aHash & (fPlaces.size() - 1); }
  Element* find(std::string_view aId, std::uint32_t aHash) const {
    if (fPlaces.empty()) return nullptr;
    std::uint32_t const number = fPlaces[placeOf(aId, aHash)].fNumber;
    return number == 0 ? nullptr : fRows[number - 1].fElement;
  }
  /// Where the id stands, or would.
  std::size_t placeOf(std::string_view aId, std::uint32_t aHash) const {
    std::size_t at = start(aHash);
    for (; fPlaces[at].fNumber != 0; at = (at + 1) & (fPlaces.size() - 1)) {
      if (fPlaces[at].fHash != aHash) continue;
      Row const& row = fRows[fPlaces[at].fNumber - 1];
      if (std::string_view(row.fText, row.fLength) == aId) break;
    }
    return at;
  }

  std::vector<Row> fRows;
  std::vector<Place> fPlaces;
};

}  // namespace umlmm::files
