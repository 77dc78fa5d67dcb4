#include "kelm/ElementQueries.h"

namespace Kelm {

namespace {

constinit ElementQueries sQueries;

}  // namespace

ElementQueries const& elementQueries() noexcept { return sQueries; }

void setElementQueries(ElementQueries const& aQueries) noexcept { sQueries = aQueries; }

}  // namespace Kelm
