#pragma once

/// A flow's steps, and their tree as a drawing of box characters.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "workspace.h"

namespace talm_flow::program {

struct StepRow {
  std::int64_t number = 0;
  std::int64_t parent = 0;
  Value serial;
  std::string caption;
  std::string command;
  std::vector<std::pair<std::string, std::string>> parameters;  ///< name and data, in stored order
};

/// The steps of a flow in stored order.
[[nodiscard]] std::vector<StepRow> ReadSteps(Workspace& workspace, std::int64_t flow);

/// The tree below step 1, a line for each step and for each of its parameters, then the steps that it does not reach.
[[nodiscard]] std::string DrawTree(const std::vector<StepRow>& steps);

}  // namespace talm_flow::program
