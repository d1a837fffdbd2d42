#pragma once

/// What the steps of one flow instance wait for.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "workspace.h"

namespace talm_flow::program {

/// For each step that waits, what for: "王芳 (A3)", "flow 2 \"child\" (instance 7)", "timer 2026/1/31 9:05:00". A timer is
/// what the step waits for that it will run.
using Waiting = std::map<std::int64_t, std::vector<std::string>>;

/// @throws UserError  there is no such instance, or it runs another flow.
[[nodiscard]] Waiting WaitingSteps(Workspace& workspace, std::int64_t flow, std::int64_t instance);

}  // namespace talm_flow::program
