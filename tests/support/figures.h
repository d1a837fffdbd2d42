#pragma once

/// What a test program counted, told when it ends and kept in its report: how much was visited, not only that it held.

#include <cstddef>
#include <string>

namespace talm_flow::test {

/// Adds to a figure. Behind the last test each figure is printed, as "failure points visited: 12", and recorded as a
/// property of the whole run.
/// @param name  words joined by "_".
void AddToFigure(const std::string& name, std::size_t count);

}  // namespace talm_flow::test
