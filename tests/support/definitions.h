#pragma once

/// Definition texts for the checks, put together from their interesting lines.

#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/definition_check.h"

namespace talm_flow::test {

/// With CR LF line ends.
[[nodiscard]] std::string WithCrLf(std::string_view text);

/// A whole text around the lines of its steps.
[[nodiscard]] std::string Text(std::string_view steps);

/// The lines of a step; `parameters` are lines "C_2_1:value", each with its line end.
[[nodiscard]] std::string StepLines(int number, int parent, std::string_view command, std::string_view parameters = {});

/// A definition whose only step assigns the value of an expression.
[[nodiscard]] std::string Assigning(std::string_view expression);

/// The codes of findings in order, joined by blanks.
[[nodiscard]] std::string Codes(const Findings& findings);

/// The codes that checking a text gives.
[[nodiscard]] inline std::string CodesOf(std::string_view text) { return Codes(CheckDefinition(text)); }

}  // namespace talm_flow::test
