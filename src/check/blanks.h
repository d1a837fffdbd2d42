#pragma once

/// Blanks at the ends of texts.

#include <string_view>

namespace talm_flow::check {

inline constexpr std::string_view kBlanks = " \t\r\n";

[[nodiscard]] inline bool IsBlank(std::string_view text) {
  return text.find_first_not_of(kBlanks) == std::string_view::npos;
}

/// The text without the blanks before and behind it.
[[nodiscard]] inline std::string_view Trimmed(std::string_view text) {
  if (IsBlank(text)) return {};
  const auto begin = text.find_first_not_of(kBlanks);
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

}  // namespace talm_flow::check
