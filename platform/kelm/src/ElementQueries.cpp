#include "kelm/ElementQueries.h"

namespace Kelm {

namespace {

constinit ElementQueries sQueries;
constinit ElementCopying sCopying;

}  // namespace

ElementQueries const& elementQueries() noexcept { return sQueries; }

void setElementQueries(ElementQueries const& aQueries) noexcept { sQueries = aQueries; }

ElementCopying const& elementCopying() noexcept { return sCopying; }

void setElementCopying(ElementCopying const& aCopying) noexcept { sCopying = aCopying; }

}  // namespace Kelm
