#pragma once

/// The characters of which numbers and dates in texts are made.

#include <string_view>

namespace talm_flow {

[[nodiscard]] constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
[[nodiscard]] constexpr bool IsSpaceOrTab(char c) { return c == ' ' || c == '\t'; }

/// Without the spaces and tabs at both ends.
[[nodiscard]] constexpr std::string_view WithoutOuterBlanks(std::string_view text) {
  while (!text.empty() && IsSpaceOrTab(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpaceOrTab(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace talm_flow
