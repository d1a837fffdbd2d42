#include "commands/lookup_condition.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "commands/inputs.h"
#include "commands/stored_spelling.h"
#include "expr/condition.h"
#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::commands {
namespace {

using engine::Step;

enum class TokenKind { kOpen, kClose, kAnd, kOr, kComparison, kOther };

TokenKind KindOf(std::string_view token) {
  constexpr std::array<std::string_view, 6> kComparisons = {">=", "<=", "<>", "=", ">", "<"};
  if (token == "(") return TokenKind::kOpen;
  if (token == ")") return TokenKind::kClose;
  if (token == "and") return TokenKind::kAnd;
  if (token == "or") return TokenKind::kOr;
  if (std::find(kComparisons.begin(), kComparisons.end(), token) != kComparisons.end()) return TokenKind::kComparison;
  return TokenKind::kOther;
}

/// The part of a condition up to and including a value: the text before the value, and the value's expression.
struct Comparison {
  std::string before;
  LookupField::Kind kind = LookupField::Kind::kOther;
  std::string_view value;
};

struct Condition {
  std::vector<Comparison> comparisons;
  std::string rest;
};

/// Reads the tokens from left to right; how many parentheses are open is all that it must remember.
class ConditionReader {
 public:
  ConditionReader(const Step& step, std::int32_t table_id, std::string_view stored)
      : step_(step), table_id_(table_id), spelling_(stored), tokens_(expr::ExpressToArr(stored)) {}

  [[nodiscard]] bool HasTokens() const { return !tokens_.empty(); }

  [[nodiscard]] std::optional<Condition> Read() {
    Condition condition;
    bool operand_due = true;
    std::size_t open = 0;
    while (next_ < tokens_.size()) {
      const TokenKind kind = KindOf(tokens_[next_]);
      if (operand_due && kind == TokenKind::kOther) {
        if (!ReadComparison(condition)) return std::nullopt;
        operand_due = false;
        continue;
      }
      if (operand_due && kind == TokenKind::kOpen) {
        ++open;
        condition.rest += '(';
      } else if (!operand_due && kind == TokenKind::kClose && open > 0) {
        --open;
        condition.rest += ')';
      } else if (!operand_due && (kind == TokenKind::kAnd || kind == TokenKind::kOr)) {
        condition.rest += kind == TokenKind::kAnd ? " and " : " or ";
        operand_due = true;
      } else {
        return std::nullopt;
      }
      (void)Take();
    }
    if (operand_due || open > 0) return std::nullopt;
    return condition;
  }

 private:
  /// The next token as it was stored.
  std::string_view Take() { return spelling_.Next(tokens_[next_++]); }

  bool ReadComparison(Condition& condition) {
    if (tokens_.size() - next_ < 3 || KindOf(tokens_[next_ + 1]) != TokenKind::kComparison ||
        KindOf(tokens_[next_ + 2]) != TokenKind::kOther) {
      return false;
    }
    const auto field = FindField(step_, table_id_, Take());
    if (!field) return false;
    Comparison comparison{std::move(condition.rest), field->kind, {}};
    condition.rest.clear();
    comparison.before += field->column;
    comparison.before += Take();
    comparison.value = Take();
    condition.comparisons.push_back(std::move(comparison));
    return true;
  }

  const Step& step_;
  std::int32_t table_id_;
  StoredSpelling spelling_;
  std::vector<std::string> tokens_;
  std::size_t next_ = 0;
};

/// Appends a value as it goes into a statement. @returns whether it fits.
bool AppendValue(const Step& step, LookupField::Kind kind, const std::string& value, std::string& out) {
  switch (kind) {
    case LookupField::Kind::kId: {
      const auto number = ParseNumber(value);
      if (!number) return false;
      out += std::to_string(ToInt32(*number));
      return true;
    }
    case LookupField::Kind::kInputTime: {
      const auto moment = ParseDate(value);
      if (!moment) return false;
      step.host().common.SqlText(step.host().dates.FormatDateTime(*moment), out);
      return true;
    }
    case LookupField::Kind::kOther:
      break;
  }
  step.host().common.SqlText(value, out);
  return true;
}

}  // namespace

std::optional<LookupField> FindField(const Step& step, std::int32_t table_id, std::string_view name) {
  if (EqualIgnoringAsciiCase(name, "name")) return LookupField{"name", LookupField::Kind::kOther};
  if (EqualIgnoringAsciiCase(name, "inputtime")) return LookupField{"inputtime", LookupField::Kind::kInputTime};
  if (EqualIgnoringAsciiCase(name, "id")) return LookupField{"id", LookupField::Kind::kId};
  auto unit = FindUnit(step, table_id, name);
  if (!unit) return std::nullopt;
  return LookupField{std::move(unit->field), LookupField::Kind::kOther};
}

std::optional<std::string> WhereClause(const Step& step, std::int32_t table_id, std::string_view condition) {
  ConditionReader reader(step, table_id, condition);
  if (!reader.HasTokens()) return std::string();
  const auto read = reader.Read();
  if (!read) return std::nullopt;
  std::string where = " Where ";
  for (const Comparison& comparison : read->comparisons) {
    where += comparison.before;
    if (!AppendValue(step, comparison.kind, step.Evaluate(comparison.value), where)) return std::nullopt;
  }
  where += read->rest;
  return where;
}

}  // namespace talm_flow::commands
