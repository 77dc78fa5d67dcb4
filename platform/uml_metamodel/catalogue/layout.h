#pragma once

#include "catalogue/derive.h"

/// Where the elements of a concrete metaclass keep their values.
namespace umlmm::catalogue {

/// The literals of an enumeration by their numbers.
using Literals = std::span<std::string_view const>;

/// Room for one element: the masks that drive destruction have 64 bits, the flag word 32.
inline constexpr unsigned kMostWords = 35;
inline constexpr unsigned kMostFlagBits = 31;
inline constexpr std::uint8_t kNoSlot = 0xFF;
inline constexpr unsigned kEnumerationBits = 4;

/// Places slots one after the other. Flags take bits of the flag word, first come, first served; pointers
/// take words, integers half a word each behind the last pointer. Features that extensions add have no slots.
template <class Rows>
class LayoutBuilder {
  using Indices = typename Rows::Indices;

 public:
  std::uint32_t fDefaultFlags = 0;
  std::uint64_t fStringWords = 0;
  std::uint64_t fReferenceWords = 0;
  std::uint64_t fListWords = 0;
  std::uint64_t fSequenceWords = 0;
  std::array<std::uint8_t, kFeatureCount> fSlots{};

  /// `aVisible`: the features of the metaclass. Of those with one root the first gives the default.
  constexpr LayoutBuilder(Rows const& aRows, std::span<Literals const> aLiterals, Indices const& aVisible)
      : fRows(aRows), fLiterals(aLiterals) {
    fSlots.fill(kNoSlot);
    for (Index const seen : aVisible) place(seen);
    fHalf = 2 * fWord;
    for (Index const seen : aVisible) placeInteger(seen);
    if (words() > kMostWords || fBit > kMostFlagBits)
      throw "a metaclass has more features than an element has room for";
    for (Index const feature : aRows.redefining())
      if (feature < kFeatureCount) fSlots[feature] = fSlots[aRows.root(feature)];
  }

  constexpr std::uint16_t words() const { return static_cast<std::uint16_t>((fHalf + 1) / 2); }

 private:
  constexpr bool isPlaced(Index aSeen) const {
    return fRows.root(aSeen) >= kFeatureCount || fSlots[fRows.root(aSeen)] != kNoSlot;
  }

  constexpr void place(Index aSeen) {
    if (isPlaced(aSeen)) return;
    Index const root = fRows.root(aSeen);
    if (fRows.remembersDefault(root)) return placeFlag(aSeen, 1, 1, false);
    switch (fRows.storage(root)) {
      case Storage::Flag:
        return placeFlag(aSeen, 1, number(aSeen), fRows.isOptional(root));
      case Storage::Enumeration:
        return placeFlag(aSeen, kEnumerationBits, number(aSeen), true);
      case Storage::Integer:
        return;
      case Storage::String:
        return placeWord(root, fStringWords);
      case Storage::Reference:
        return placeWord(root, fReferenceWords);
      case Storage::List:
        return placeWord(root, fListWords);
      case Storage::PrimitiveList:
        return placeWord(root, fSequenceWords);
      default:
        return;
    }
  }
  constexpr void placeFlag(Index aSeen, unsigned aWidth, std::uint32_t aDefault, bool aIsOptional) {
    fSlots[fRows.root(aSeen)] = static_cast<std::uint8_t>(fBit);
    fDefaultFlags |= aDefault << fBit;
    fBit += aWidth;
    if (!aIsOptional) return;
    if (hasDefault(aSeen) || fRows.row(aSeen).fLower > 0) fDefaultFlags |= std::uint32_t{1} << fBit;
    ++fBit;
  }
  constexpr void placeWord(Index aRoot, std::uint64_t& aMask) {
    aMask |= std::uint64_t{1} << fWord;
    fSlots[aRoot] = static_cast<std::uint8_t>(fWord++);
  }
  constexpr void placeInteger(Index aSeen) {
    Index const root = fRows.root(aSeen);
    if (fRows.storage(root) != Storage::Integer || isPlaced(aSeen)) return;
    if (number(aSeen) != 0) throw "an integer that is stored has no default but 0";
    if (fRows.isOptional(root)) throw "an integer that is stored is not optional";
    fSlots[root] = static_cast<std::uint8_t>(fHalf++);
  }

  constexpr bool hasDefault(Index aSeen) const { return *fRows.row(aSeen).fDefault != '\0'; }
  constexpr std::uint32_t number(Index aSeen) const {
    FeatureRow const& row = fRows.row(aSeen);
    std::string_view const text = row.fDefault;
    if (row.fType.fKind == ValueType::Boolean) return text == "true" ? 1 : 0;
    if (row.fType.fKind == ValueType::Enumeration) {
      Literals const literals = fLiterals[row.fType.fIndex];
      auto const found = std::find(literals.begin(), literals.end(), text);
      return found == literals.end() ? 0 : static_cast<std::uint32_t>(found - literals.begin());
    }
    std::uint32_t value = 0;
    for (char const digit : text) value = 10 * value + static_cast<std::uint32_t>(digit - '0');
    return value;
  }

  Rows const& fRows;
  std::span<Literals const> fLiterals;
  unsigned fBit = 0;
  unsigned fWord = 0;
  unsigned fHalf = 0;
};

}  // namespace umlmm::catalogue
