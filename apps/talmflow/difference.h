#pragma once

/// Differences between flow definitions, as people and programs read them.

#include <string>

#include "json.h"
#include "talm_flow/definition_diff.h"

namespace talm_flow::program {

/// A line a change, under a heading a step. Line ends inside values show as signs.
[[nodiscard]] std::string Told(const DefinitionChanges& changes);

/// Objects with "change", "part", and what else is set of "step", "name", "before" and "after".
[[nodiscard]] Json AsJson(const DefinitionChanges& changes);

}  // namespace talm_flow::program
