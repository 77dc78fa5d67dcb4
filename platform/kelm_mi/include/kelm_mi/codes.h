#pragma once

#include <cstdint>

namespace Kelm::mi {

/// How many values a feature holds.
enum Multiplicity : std::uint32_t {
  MultiplicityOptional = 0,  ///< zero or one
  MultiplicitySingle = 1,    ///< exactly one
  MultiplicityMany = 2,      ///< a sequence
};

/// Whether scripts may write a feature.
enum Mutability : std::uint32_t {
  MutabilityChangeable = 0,
  MutabilityReadOnly = 1,
};

}  // namespace Kelm::mi
