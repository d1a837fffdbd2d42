#include "expr/condition.h"

#include <algorithm>
#include <array>
#include <compare>
#include <optional>

#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::expr {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

/// How two values stand to each other as numbers or else as moments; nothing when they are neither.
std::optional<std::partial_ordering> Order(std::string_view left, std::string_view right) {
  if (const auto left_number = ParseNumber(left)) {
    if (const auto right_number = ParseNumber(right)) return *left_number <=> *right_number;
  }
  if (const auto left_moment = ParseDate(left)) {
    if (const auto right_moment = ParseDate(right)) return left_moment->seconds <=> right_moment->seconds;
  }
  return std::nullopt;
}

bool Equal(std::string_view left, std::string_view right) {
  return left == right || Order(left, right) == std::partial_ordering::equivalent;
}

/// Sets every occurrence on a line of its own.
std::string SetApart(std::string_view text, std::string_view sought) {
  std::string line(kLineBreak);
  line += sought;
  line += kLineBreak;
  return ReplaceAll(text, sought, line);
}

/// Adds the pieces of a line without "(", ")" and the two-character operators.
void AppendPieces(std::vector<std::string>& tokens, std::string_view line) {
  std::string text(line);
  for (const std::string_view sought : {"=", ">", "<"}) text = SetApart(text, sought);
  for (const std::string_view piece : Split(text, kLineBreak)) {
    if (const auto token = TrimBlanks(piece); !token.empty()) tokens.emplace_back(token);
  }
}

}  // namespace

bool Compare(std::string_view left, std::string_view comparison, std::string_view right) {
  if (comparison == "=") return Equal(left, right);
  if (comparison == "<>") return !Equal(left, right);
  if (comparison != ">=" && comparison != "<=" && comparison != "<" && comparison != ">") return false;
  const auto order = Order(left, right);
  if (!order) return false;
  if (comparison == ">=") return *order >= 0;
  if (comparison == "<=") return *order <= 0;
  if (comparison == "<") return *order < 0;
  return *order > 0;
}

std::vector<std::string> ExpressToArr(std::string_view text) {
  std::string lines = LowerCase(text);
  for (const std::string_view sought : {"(", ")", " and ", " or ", ">=", "<>", "<="}) lines = SetApart(lines, sought);
  constexpr std::array<std::string_view, 5> kWhole = {"(", ")", ">=", "<>", "<="};
  std::vector<std::string> tokens;
  for (const std::string_view line : Split(lines, kLineBreak)) {
    if (std::find(kWhole.begin(), kWhole.end(), line) != kWhole.end()) {
      tokens.emplace_back(line);
    } else if (const auto trimmed = TrimBlanks(line); !trimmed.empty()) {
      AppendPieces(tokens, trimmed);
    }
  }
  return tokens;
}

}  // namespace talm_flow::expr
