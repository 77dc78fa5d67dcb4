#pragma once

#include <cstdint>

namespace Kelm::mi {

// The numbers are published: descriptions of classes show them.

/// How many values a feature holds (UML 2.5.1, clause 7.5), as far as its script form depends on it.
enum Multiplicity : std::uint32_t {
  MultiplicityOptional = 0,  ///< zero or one
  MultiplicitySingle = 1,    ///< exactly one
  MultiplicityMany = 2,      ///< a sequence
};

/// Whether scripts may write a feature: through its property and, for many values, through its list.
enum Mutability : std::uint32_t {
  MutabilityChangeable = 0,
  MutabilityReadOnly = 1,
};

}  // namespace Kelm::mi
