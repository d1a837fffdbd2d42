// Conditions by which C_77 and C_79 look records up.

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "check/checks.h"
#include "commands/stored_spelling.h"
#include "expr/condition.h"
#include "talm_flow/conversion.h"

namespace talm_flow::check {
namespace {

bool IsComparison(std::string_view token) {
  constexpr std::array<std::string_view, 6> kComparisons = {">=", "<=", "<>", "=", ">", "<"};
  return std::ranges::find(kComparisons, token) != kComparisons.end();
}

bool IsWord(std::string_view token) { return token == "and" || token == "or"; }

bool IsOperand(std::string_view token) {
  return token != "(" && token != ")" && !IsWord(token) && !IsComparison(token);
}

/// Whether "and" or "or" stands in a token with a blank on one side only.
bool HoldsWordWithoutBlanks(std::string_view token) {
  for (const std::string_view word : {"and", "or"}) {
    if (token.starts_with(std::string(word) + " ") || token.ends_with(" " + std::string(word))) return true;
    if (token.find(std::string(word) + " ") != std::string_view::npos) return true;
    if (token.find(" " + std::string(word)) != std::string_view::npos) return true;
  }
  return false;
}

struct ComparedName {
  std::string_view field;
  std::string_view value;
};

/// Reads the condition as the lookup does; the fields are left for the form to know.
class ConditionReader {
 public:
  explicit ConditionReader(std::string_view stored) : tokens_(expr::ExpressToArr(stored)), spelling_(stored) {}

  /// @returns whether the condition parses.
  bool Read() {
    if (tokens_.empty()) return true;
    bool operand_due = true;
    std::size_t open = 0;
    while (next_ < tokens_.size()) {
      const std::string& token = tokens_[next_];
      if (operand_due && IsOperand(token)) {
        if (!ReadComparison()) return false;
        operand_due = false;
        continue;
      }
      if (operand_due && token == "(") {
        ++open;
      } else if (!operand_due && token == ")" && open > 0) {
        --open;
      } else if (!operand_due && IsWord(token)) {
        operand_due = true;
      } else {
        return false;
      }
      (void)Take();
    }
    return !operand_due && open == 0;
  }

  [[nodiscard]] const std::vector<ComparedName>& comparisons() const { return comparisons_; }
  [[nodiscard]] const std::vector<std::string>& tokens() const { return tokens_; }
  /// The first token that could not be taken; the empty text at the end.
  [[nodiscard]] std::string_view Refused() const {
    return next_ < tokens_.size() ? std::string_view(tokens_[next_]) : std::string_view();
  }

 private:
  std::string_view Take() { return spelling_.Next(tokens_[next_++]); }

  bool ReadComparison() {
    if (tokens_.size() - next_ < 3 || !IsComparison(tokens_[next_ + 1]) || !IsOperand(tokens_[next_ + 2])) return false;
    const std::string_view field = Take();
    (void)Take();
    comparisons_.push_back({field, Take()});
    return true;
  }

  std::vector<std::string> tokens_;
  commands::StoredSpelling spelling_;
  std::size_t next_ = 0;
  std::vector<ComparedName> comparisons_;
};

void TellUnparsed(const ConditionReader& reader, std::string_view condition, const ExpressionContext& context) {
  const bool word = std::ranges::any_of(reader.tokens(), HoldsWordWithoutBlanks);
  const bool quotes = std::ranges::any_of(
      reader.tokens(), [](const std::string& token) { return std::ranges::count(token, '"') % 2 != 0; });
  const std::string at = reader.Refused().empty() ? "its end" : Shown(reader.Refused());
  context.report.Add(
      Code::kBadCondition, context.place,
      "The condition " + Shown(condition) + " cannot be read at " + at + "; nothing is looked up and nothing assigned.",
      quotes ? "A value in quotes cannot hold parentheses, comparisons, or \"and\" and \"or\" between blanks: assign "
               "it to a variable in a step before, and write the variable."
      : word ? "Write \"and\" and \"or\" with a blank on each side."
             : "Write comparisons, \"field >= value\", joined by \" and \", \" or \" and parentheses.");
}

void CheckValue(const ComparedName& comparison, const ExpressionContext& context) {
  const auto value = CheckExpression(comparison.value, context);
  if (!value) return;
  const bool wrong_id = EqualIgnoringAsciiCase(comparison.field, "id") && !IsNumeric(*value);
  const bool wrong_time = EqualIgnoringAsciiCase(comparison.field, "inputtime") && !IsDate(*value);
  if (!wrong_id && !wrong_time) return;
  context.report.Add(Code::kBadConditionValue, context.place,
                     "The constant " + Shown(*value) + " is no " + (wrong_id ? "number" : "date") +
                         ", which the field " + std::string(comparison.field) +
                         " needs; nothing is looked up and nothing assigned.",
                     wrong_id ? "Write a number." : "Write a date in double quotes, as \"2026-01-31\".");
}

}  // namespace

void CheckCondition(std::string_view condition, const ExpressionContext& context) {
  ConditionReader reader(condition);
  if (!reader.Read()) return TellUnparsed(reader, condition, context);
  for (const ComparedName& comparison : reader.comparisons()) CheckValue(comparison, context);
}

}  // namespace talm_flow::check
