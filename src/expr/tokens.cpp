#include "expr/tokens.h"

#include "talm_flow/error.h"

namespace talm_flow::expr {

namespace {

constexpr std::string_view kOperators = "+-*/%^()";
constexpr std::string_view kOperandEnds = "+-*/%^)";

std::size_t BehindOrEnd(std::string_view text, std::size_t found, std::size_t width) {
  return found == std::string_view::npos ? text.size() : found + width;
}

}  // namespace

std::size_t TokenEnd(std::string_view text, std::size_t begin) {
  const char first = text[begin];
  if (first == '"') return BehindOrEnd(text, text.find('"', begin + 1), 1);
  if (first == kMarkBegin.front() && text.substr(begin).starts_with(kMarkBegin)) {
    return BehindOrEnd(text, text.find(kMarkEnd, begin + 1), kMarkEnd.size());
  }
  if (kOperators.find(first) != std::string_view::npos) return begin + 1;
  return BehindOrEnd(text, text.find_first_of(kOperandEnds, begin + 1), 0);
}

std::optional<std::string_view> LiteralText(std::string_view operand) {
  if (operand.front() == '"' && operand.back() == '"') {
    const auto inner = operand.size() < 3 ? std::string_view() : operand.substr(1, operand.size() - 2);
    if (inner.find('"') == std::string_view::npos) return inner;
  }
  if (operand.starts_with(kMarkBegin) && operand.ends_with(kMarkEnd)) {
    const auto behind = operand.substr(kMarkBegin.size());
    if (behind.find(kMarkBegin) == std::string_view::npos) return behind.substr(0, behind.size() - kMarkEnd.size());
  }
  return std::nullopt;
}

void Tokens::Read(std::string_view text) {
  text_ = text;
  count_ = 0;
  for (std::size_t begin = 0; begin < text.size();) {
    if (count_ == kMaxTokens) throw SubscriptError("an expression has more than 101 tokens");
    begin = TokenEnd(text, begin);
    bounds_[++count_] = begin;
  }
}

}  // namespace talm_flow::expr
