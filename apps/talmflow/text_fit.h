#pragma once

/// Texts that have to fit a width, where nothing is known of the font but its size. Widths are in units of that size
/// and rather too large than too small.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace talm_flow::program {

[[nodiscard]] double WidthOf(std::string_view text);

/// The text in lines: broken at its own line ends, between words, between East Asian characters, and inside words that
/// are too long. What does not fit into `most` lines is cut with "…".
[[nodiscard]] std::vector<std::string> Lines(std::string_view text, double width, std::size_t most);

}  // namespace talm_flow::program
