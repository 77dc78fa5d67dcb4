#pragma once

#include <span>

#include "vesk/fwd.h"

namespace umlmm::mi {

/// Announces the classes of one unit of the package.
using Registrar = void (*)(vesk::VeskPackage* aPackage);

/// All units, in the order in which they announce their classes. The order is published: it is the order in
/// which the host lists the classes, and not one of dependence.
extern std::span<Registrar const> const kRegistrars;

}  // namespace umlmm::mi
