#pragma once

#include <cstddef>

#include "vesk/fwd.h"

namespace umlmm::mi {

/// Announces the classes of one unit of the package.
using Registrar = void (*)(vesk::VeskPackage* aPackage);

inline constexpr std::size_t kRegistrarCount = 179;

/// All units, in the order in which they announce their classes. The order is published: it is the order in
/// which the host lists the classes, and not one of dependence.
extern Registrar const kRegistrars[kRegistrarCount];

}  // namespace umlmm::mi
