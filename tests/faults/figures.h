#pragma once

/// What the sweeps of this program visited, told when it ends: "failure points visited: N".

#include "support/fault_sweep.h"

namespace talm_flow::test {

/// Adds the points of a sweep to the figures.
void Count(const SweepResult& result);

}  // namespace talm_flow::test
