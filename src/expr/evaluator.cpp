#include "expr/evaluator.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "expr/arithmetic.h"
#include "expr/tokens.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"

namespace talm_flow::expr {

namespace {

constexpr std::string_view kParenthesesIncomplete = "括号不完整";
constexpr std::string_view kOperandMissing = "缺少运算数";

constexpr int kMaxRewrites = 1000;
constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

std::string SubmittedRecord(const Scope& scope) {
  std::string reference = "TableID:";
  AppendJoined(reference, scope.table_id);
  reference += ",DataID:";
  AppendJoined(reference, scope.data_id);
  return reference;
}

/// The value of an operand that is not numeric.
std::string NamedValue(db::Session& session, const Scope& scope, std::string_view operand) {
  if (operand == "DataID_Submit") return SubmittedRecord(scope);
  if (operand == "DataID_PerApp") return LatestApprovalRecord(session, scope.root_execute_id).Text();
  if (const auto literal = LiteralText(operand)) return std::string(*literal);
  return ReadVariable(session, scope, operand);
}

std::string OperandValue(db::Session& session, const Scope& scope, std::string_view operand) {
  if (IsNumeric(operand)) return std::string(operand);
  return NamedValue(session, scope, operand);
}

/// The evaluation of one text of several tokens. A step rewrites the text and reads its tokens again; a group is
/// evaluated as a text of its own while what surrounds it is kept. The kept texts stand on the heap: a group has no
/// parentheses of its own when it is begun, but a variable's text may bring some in.
class Evaluation {
 public:
  Evaluation(db::Session& session, const Scope& scope) : session_(session), scope_(scope) {}

  std::string Run(std::string_view expression) {
    text_ = expression;
    for (;;) {
      auto result = Advance();
      if (!result) continue;
      if (surroundings_.empty()) return std::move(*result);
      LeaveGroup(*result);
    }
  }

 private:
  struct Surroundings {
    std::string before;
    std::string after;
  };

  /// One step on the current text: its result, or nothing when another text took its place.
  std::optional<std::string> Advance() {
    tokens_.Read(text_);
    if (tokens_.count() == 0) return std::string();
    if (tokens_.count() == 1) return OperandValue(session_, scope_, text_);
    const auto [open, close] = InnermostGroup();
    if (close != kNone) {
      if (open == kNone) return std::string(kParenthesesIncomplete);
      EnterGroup(open, close);
      return std::nullopt;
    }
    const std::size_t symbol = OperatorToApply();
    if (symbol == kNone) return std::string();
    if (symbol == 0 || symbol == tokens_.count() - 1) return std::string(kOperandMissing);
    return ApplyAt(symbol);
  }

  /// The first ")" and the nearest "(" before it.
  [[nodiscard]] std::pair<std::size_t, std::size_t> InnermostGroup() const {
    std::size_t open = kNone;
    for (std::size_t i = 0; i < tokens_.count(); ++i) {
      if (tokens_.Is(i, '(')) open = i;
      if (tokens_.Is(i, ')')) return {open, i};
    }
    return {open, kNone};
  }

  /// The leftmost operator of the tightest level that the text has.
  [[nodiscard]] std::size_t OperatorToApply() const {
    std::size_t product = kNone;
    std::size_t sum = kNone;
    for (std::size_t i = 0; i < tokens_.count(); ++i) {
      if (tokens_.Is(i, '%') || tokens_.Is(i, '^')) return i;
      if (product == kNone && (tokens_.Is(i, '*') || tokens_.Is(i, '/'))) product = i;
      if (sum == kNone && (tokens_.Is(i, '+') || tokens_.Is(i, '-'))) sum = i;
    }
    return product != kNone ? product : sum;
  }

  void EnterGroup(std::size_t open, std::size_t close) {
    surroundings_.push_back({text_.substr(0, tokens_.Begin(open)), text_.substr(tokens_.End(close))});
    text_.resize(tokens_.Begin(close));
    text_.erase(0, tokens_.End(open));
  }

  void LeaveGroup(std::string_view result) {
    const Surroundings around = std::move(surroundings_.back());
    surroundings_.pop_back();
    Rewrite(around.before, result, true, around.after);
  }

  std::optional<std::string> ApplyAt(std::size_t symbol) {
    const Operand left = Read(tokens_[symbol - 1]);
    const Operand right = Read(tokens_[symbol + 1]);
    Applied applied = Apply(text_[tokens_.Begin(symbol)], left, right);
    if (applied.kind == Applied::Kind::kError) return std::move(applied.text);
    const std::string_view text = text_;
    Rewrite(text.substr(0, tokens_.Begin(symbol - 1)), applied.text, applied.kind == Applied::Kind::kText,
            text.substr(tokens_.End(symbol + 1)));
    return std::nullopt;
  }

  Operand Read(std::string_view token) {
    if (const auto number = ParseNumber(token)) return {std::string(token), number};
    return Operand::Of(NamedValue(session_, scope_, token));
  }

  void Rewrite(std::string_view before, std::string_view value, bool marked, std::string_view after) {
    // A variable's text that holds markers of its own can bring its operator back for ever.
    if (++rewrites_ > kMaxRewrites) throw NestingError("an expression is rewritten more than 1000 times");
    next_ = before;
    if (marked) next_ += kMarkBegin;
    next_ += value;
    if (marked) next_ += kMarkEnd;
    next_ += after;
    text_.swap(next_);
  }

  db::Session& session_;
  const Scope& scope_;
  std::string text_;
  std::string next_;
  Tokens tokens_;
  std::vector<Surroundings> surroundings_;
  int rewrites_ = 0;
};

}  // namespace

std::string GetVariableValue(db::Session& session, const Scope& scope, std::string_view expression) {
  if (expression.empty()) return {};
  if (TokenEnd(expression, 0) == expression.size()) return OperandValue(session, scope, expression);
  return Evaluation(session, scope).Run(expression);
}

db::RecordReference LatestApprovalRecord(db::Session& session, const Value& root_execute_id) {
  const auto rows = session.Open(
      "Select Top 10000 AppTableID,AppDataID From DataApp Where AppDataID<>0 And ExecuteID in (Select Top 10000 "
      "ExecuteID From WorkFlowExecuteID Where RootExecuteID=",
      root_execute_id, ") Order By AppTableID Desc,AppDataID Desc");
  db::RecordReference best;
  DateTime best_date = MakeDateTime(1900, 1, 1);
  std::int32_t current_table = 0;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const Value table = rows->Field("AppTableID");
    const std::int32_t table_id = ToInt32(table);
    if (table_id == current_table) continue;
    current_table = table_id;
    const std::int32_t data_id = ToInt32(rows->Field("AppDataID"));
    const DateTime date = session.host().records.DocumentDate(session.connection(), table_id, data_id);
    if (date <= best_date) continue;
    best_date = date;
    best = {ToInt16(table), data_id};
  }
  return best;
}

}  // namespace talm_flow::expr
