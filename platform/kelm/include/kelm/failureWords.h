#pragma once

#include <string_view>

#include "kelm/Asserter.h"

/// Telling failures apart by their words, beside those of Asserter.h.
namespace Kelm {

namespace words {
inline constexpr char kImmutableObject[] =
    "The object is immutable. Use asMutable() to get an object that can be changed";
inline constexpr char kReadOnlyVariant[] = "The object cannot be changed in a read-only variant of its model";
inline constexpr char kIncorrectType[] = "Incorrect type";
}  // namespace words

/// Whether the text of a failure begins with these words, after what the reporter puts before them. For hosts
/// that have classes of their own for some failures.
[[nodiscard]] inline bool says(Exception const& aFailure, std::string_view aWords) noexcept {
  constexpr std::string_view kReporter = "Assertion failed: ";
  std::string_view text = aFailure.what();
  if (text.starts_with(kReporter)) text.remove_prefix(kReporter.size());
  return text.starts_with(aWords);
}

}  // namespace Kelm
