#pragma once

namespace sequence_suite {

/// The allocation by `operator new` that fails in this program, counted from 1; 0 for none.
extern int sAllocationFailsAt;

}  // namespace sequence_suite
