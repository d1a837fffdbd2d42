#pragma once

/// Comparing two evaluated values, and splitting condition texts.

#include <string>
#include <string_view>
#include <vector>

namespace talm_flow::expr {

/// Whether `left` and `right` stand in the relation ">=", "<=", "<", ">", "<>" or "="; any other operator text is never
/// met. Numbers compare as numbers, dates as moments; other texts are equal or not, never ordered.
[[nodiscard]] bool Compare(std::string_view left, std::string_view comparison, std::string_view right);

/// The lower-cased tokens of a condition text.
[[nodiscard]] std::vector<std::string> ExpressToArr(std::string_view text);

}  // namespace talm_flow::expr
