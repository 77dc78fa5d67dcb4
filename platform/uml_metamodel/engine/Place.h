#pragma once

#include <source_location>

namespace umlmm::engine {

/// Where a failure is found, as its text names it: the fixed name of the source, and the line of whoever
/// writes that name down.
struct Place {
  constexpr Place(char const* aSource, int aLine = std::source_location::current().line()) noexcept
      : fSource(aSource), fLine(aLine) {}

  char const* fSource;
  int fLine;
};

}  // namespace umlmm::engine
