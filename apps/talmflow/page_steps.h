#pragma once

/// The steps of a flow as the form of a page takes them.

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workspace.h"

namespace talm_flow::program {

inline constexpr std::string_view kStepForm = "StepForm";

struct PageStep {
  Value number;
  Value parent;
  Value remark;
  Value command;
  std::vector<std::pair<std::string, Value>> parameters;  ///< name and data, in stored order
};

[[nodiscard]] std::vector<PageStep> ReadPageSteps(Workspace& workspace, std::int64_t flow);

/// Whether a form can hold the step: its numbers are numbers and its parameters have names that fields may have.
[[nodiscard]] bool FitsForm(const PageStep& step);

/// The handler of the step's box, as a browser reads it.
[[nodiscard]] std::string BoxHandler(const PageStep& step, const host::CommonFunctions& common);

}  // namespace talm_flow::program
