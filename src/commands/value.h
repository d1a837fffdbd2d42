#pragma once

/// The shape that most value commands share: the first parameter names the variable to write, as stored, the second is
/// an expression, and what is written is computed from its value alone.

#include <optional>
#include <string>
#include <string_view>

#include "commands/handlers.h"

namespace talm_flow::commands {

/// What a value becomes; nothing when it does not fit, and then nothing is written.
using Computation = std::optional<std::string> (*)(const Step& step, std::string_view value);

inline Outcome WriteComputed(Step& step, Computation compute) {
  const std::string target = step.Stored(1);
  if (const auto result = compute(step, step.Evaluated(2))) step.StoreVariable(target, *result);
  return Outcome::Done();
}

}  // namespace talm_flow::commands
