#pragma once

#include "kelm/fwd.h"
#include "kelm/tags.h"

namespace Kelm {

/// Whether the tags name `Interface` of the kernel's own domain.
template <class Interface>
bool asksFor(CooperativeVisitor::internal::ClassInfo const& aClassInfo) {
  return aClassInfo.fType == tagPair<Interface, VisitationDomain>().fType;
}

/// The answer of a `cast` whose tags name `Interface`.
template <class Interface>
void* castAnswer(Interface const* aObject) noexcept {
  return const_cast<Interface*>(aObject);
}

}  // namespace Kelm
