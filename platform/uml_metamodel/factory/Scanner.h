#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace umlmm::factory::textual {

/// A value as written: not yet looked up, as what it may be depends on the feature it is for.
struct Value {
  enum class Kind : std::uint8_t { Number, Word, Text, Star };

  Kind fKind;
  std::u16string fText;  ///< Digits, the word with its separators, or the text without its quotes.
  std::size_t fPosition;
};

struct Assignment {
  std::u16string fFeature;
  std::size_t fPosition;
  bool fIsList;
  std::vector<Value> fValues;
};

/// What the text form of an element says.
struct Description {
  std::u16string fMetaclass;
  std::size_t fMetaclassPosition = 0;
  bool fHasName = false;
  std::u16string fName;
  std::vector<Assignment> fAssignments;
};

/// Reads the whole text. Raises "cannot read '...' at position n", counted from 1.
Description scan(std::u16string_view aText);

/// Raises that failure for what stands at a position, counted from 0.
[[noreturn]] void raiseUnreadable(std::u16string_view aWhat, std::size_t aPosition);

}  // namespace umlmm::factory::textual
