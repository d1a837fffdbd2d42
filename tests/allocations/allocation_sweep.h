#pragma once

/// One call, with memory running out at each of its allocations in turn.

#include <functional>
#include <string>

#include "allocations/allocations.h"

namespace talm_flow::test {

/// Calls with allocation 1, 2, ... failing until the call comes to its end undisturbed. Fails the test unless every time
/// the caller gets std::bad_alloc, nothing leaks, and the next call gives what the first one gave.
/// @param call   what is to be disturbed; gives what it gave, as a text.
/// @param reset  takes back what the call did, as far as it came.
void SweepAllocations(Shortage shortage, const std::function<std::string()>& call, const std::function<void()>& reset);

}  // namespace talm_flow::test
