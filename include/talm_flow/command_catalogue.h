#pragma once

/// What the commands are, for programs that show or check flow definitions.

#include <optional>
#include <string_view>
#include <vector>

namespace talm_flow {

struct ParameterDescription {
  std::string_view title;
  std::string_view note;  ///< what fits, and what a value that does not fit does
};

struct CommandDescription {
  int number = 0;
  std::string_view name;  ///< "C_1" ... "C_98"
  std::string_view title;
  std::string_view summary;
  std::vector<ParameterDescription> parameters;  ///< parameter k, stored as "C_n_k", at k - 1
};

/// The command of that name, compared exactly; nothing for every other text.
[[nodiscard]] std::optional<CommandDescription> DescribeCommand(std::string_view name);

}  // namespace talm_flow
