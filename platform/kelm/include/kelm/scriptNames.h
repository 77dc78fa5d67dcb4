#pragma once

#include <string_view>

/// The words that names of script classes are made of: "ImmutableSequenceOfImmutableClass",
/// "ImmutableClassImmutableIterator". Before the kind of thing, or what it is walked in, stands whether it
/// can be changed.
namespace Kelm::scriptNames {

inline constexpr std::string_view kImmutable = "Immutable";
inline constexpr std::string_view kSequenceOf = "SequenceOf";
inline constexpr std::string_view kIterator = "Iterator";

}  // namespace Kelm::scriptNames
