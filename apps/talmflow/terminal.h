#pragma once

/// How texts look in a terminal.

#include <cstddef>
#include <string>
#include <string_view>

namespace talm_flow::program {

/// How many columns of a terminal the text takes: East Asian wide characters take two.
[[nodiscard]] std::size_t DisplayWidth(std::string_view text);

/// The text on one line: its line breaks as " ↵ ", other control characters as visible signs, so that stored texts
/// cannot steer the terminal.
[[nodiscard]] std::string Printable(std::string_view text);

/// "1 error", "2 errors": `noun` is the word for one.
[[nodiscard]] std::string Counted(std::size_t count, const char* noun);

/// The text emphasised, or set back, when standard output is a terminal that may show colours.
[[nodiscard]] std::string Bold(const std::string& text);
[[nodiscard]] std::string Dim(const std::string& text);

}  // namespace talm_flow::program
