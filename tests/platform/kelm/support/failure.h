#pragma once

#include <string>

#include "kelm/Asserter.h"

/// The text of the failure that `aAction` raises; empty if it raises none.
template <class Action>
std::string failureOf(Action aAction) {
  try {
    aAction();
  } catch (std::exception const& failure) {
    return failure.what();
  }
  return {};
}

/// Whether the text tells of `aMessage` at `aSource` and some line.
inline bool tells(std::string const& aText, std::string const& aMessage, std::string const& aSource) {
  std::string const start = "Assertion failed: " + aMessage + " at " + aSource + ":";
  if (!aText.starts_with(start) || !aText.ends_with(": ")) return false;
  std::string const line = aText.substr(start.size(), aText.size() - start.size() - 2);
  return !line.empty() && line.find_first_not_of("0123456789") == std::string::npos;
}
