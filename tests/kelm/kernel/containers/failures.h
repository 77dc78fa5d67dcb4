#pragma once

#include <gtest/gtest.h>

#include <string>

#include "kelm/Asserter.h"

namespace sequence_suite {

/// The failure text that the call raised with its line number taken out; "" if it raised nothing.
template <class Call>
std::string failureText(Call const& aCall) {
  try {
    aCall();
  } catch (Kelm::Exception const& exception) {
    std::string text = exception.what();
    std::size_t const end = text.rfind(": ");
    std::size_t const start = text.rfind(':', end - 1) + 1;
    if (text.find_first_not_of("0123456789", start) != end || start == end) return "no line in: " + text;
    return text.erase(start, end - start);
  }
  return "";
}

inline std::string failureAt(std::string const& aWords, std::string const& aSource) {
  return "Assertion failed: " + aWords + " at kelm/kernel/containers/" + aSource + ":: ";
}

}  // namespace sequence_suite
