#pragma once

/// Findings of the definition checker, as people and programs read them.

#include <string>

#include "json.h"
#include "talm_flow/definition_check.h"

namespace talm_flow::program {

[[nodiscard]] bool HasErrors(const Findings& findings);

/// Two lines a finding, without the last line end: where and what, and what to write instead.
/// @param source  what stands in front: the file, or the flow's title.
[[nodiscard]] std::string FindingsAsText(const Findings& findings, const std::string& source);

/// "2 errors, 1 warning."
[[nodiscard]] std::string FindingsCounted(const Findings& findings);

[[nodiscard]] Json FindingsAsJson(const Findings& findings);

}  // namespace talm_flow::program
