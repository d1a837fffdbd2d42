#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "properties.h"
#include "property.h"
#include "talm_flow/command.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/host/reference_host.h"
#include "variable_connection.h"

namespace talm_flow::fuzz {
namespace {

constexpr std::size_t kMostRewrites = 1000;
/// Two operands a rewrite, and the last operand.
constexpr std::size_t kMostStatements = 2 * kMostRewrites + 3;

std::string Evaluate(VariableConnection& connection, const std::string& expression) {
  host::ReferenceHost host;
  return Command(host.services()).GetVariableValue(connection, 7, 7, expression, 12, 345);
}

/// What an expression of plain numbers, operators and parentheses gives, calculated on a list of numbers and operators.
/// Nothing where a number between two operators is written with a sign, which reads as a further operator, or where the
/// number that an operation leaves runs into the text behind it and reads as one operand with that.
class Calculation {
 public:
  [[nodiscard]] std::optional<std::string> Of(std::string_view expression) {
    if (!Read(expression)) return std::nullopt;
    while (tokens_.size() > 1) {
      auto close = std::find(tokens_.begin(), tokens_.end(), ")");
      auto open = tokens_.begin();
      if (close != tokens_.end()) {
        open = close;
        while (open != tokens_.begin() && *open != "(") --open;
        if (*open != "(") return "括号不完整";
      }
      if (!Reduce(open, close)) return result_;
    }
    return tokens_.empty() ? std::string() : tokens_.front();
  }

 private:
  using Place = std::vector<std::string>::iterator;

  static bool IsOperator(char c) { return std::string_view("+-*/%^()").find(c) != std::string_view::npos; }

  bool Read(std::string_view expression) {
    for (std::size_t at = 0; at < expression.size();) {
      if (IsOperator(expression[at])) {
        tokens_.emplace_back(1, expression[at++]);
        continue;
      }
      const std::size_t end = expression.find_first_not_of("0123456789", at);
      // A "(" behind a number belongs to the operand; blanks, points and names are left to others.
      if (end == at || (end != expression.npos && (!IsOperator(expression[end]) || expression[end] == '(')))
        return false;
      tokens_.emplace_back(expression.substr(at, end == expression.npos ? end : end - at));
      at = end == expression.npos ? expression.size() : end;
    }
    return tokens_.size() > 1 && tokens_.size() <= 101;
  }

  /// The tightest operator of a group is applied, or the group is replaced by what stands in it. @returns whether there
  /// is more to do; if not, `result_` is the answer, or nothing.
  bool Reduce(Place open, Place close) {
    const bool group = close != tokens_.end();
    const Place first = group ? open + 1 : open;
    const auto count = close - first;
    if (count == 1 && group && !IsOperator(first->front())) return Replace(open, close + 1, *first);
    // Groups of another kind become texts.
    if (count < 2) return Leave();
    Place chosen = close;
    for (const std::string_view level : {"%^", "*/", "+-"}) {
      chosen =
          std::find_if(first, close, [&](const std::string& token) { return level.find(token.front()) != level.npos; });
      if (chosen != close) break;
    }
    if (chosen == close) return group ? Leave() : Answer("");
    if (chosen == first || chosen + 1 == close) return group ? Leave() : Answer("缺少运算数");
    if (IsOperator((chosen - 1)->front()) || IsOperator((chosen + 1)->front())) return Leave();
    const auto value = Apply(chosen->front(), std::stod(*(chosen - 1)), std::stod(*(chosen + 1)));
    if (!value || RunsInto(chosen + 2, close)) return Leave();
    return Replace(chosen - 1, chosen + 2, *value);
  }

  static std::optional<std::string> Apply(char symbol, double left, double right) {
    double value = 0;
    switch (symbol) {
      case '+':
        value = left + right;
        break;
      case '-':
        value = left - right;
        break;
      case '*':
        value = left * right;
        break;
      case '^':
        value = std::pow(left, right);
        break;
      default:
        return std::nullopt;  // quotients and remainders have rules of their own
    }
    // Beyond, numbers are written with an exponent, whose sign is an operator.
    if (!(value >= 0 && value < 1e15 && value == std::floor(value))) return std::nullopt;
    return std::to_string(static_cast<long long>(value));
  }

  /// Whether a number before `next` is one operand with what begins there.
  static bool RunsInto(Place next, Place close) {
    return next != close && (!IsOperator(next->front()) || next->front() == '(');
  }

  bool Replace(Place begin, Place end, std::string value) {
    const auto at = tokens_.erase(begin, end);
    tokens_.insert(at, std::move(value));
    return true;
  }
  bool Leave() {
    result_.reset();
    return false;
  }
  bool Answer(std::string text) {
    result_ = std::move(text);
    return false;
  }

  std::vector<std::string> tokens_;
  std::optional<std::string> result_;
};

/// A text within quotes or markers is itself, and nothing is asked.
void CheckLiteral(const std::string& text) {
  VariableConnection connection;
  if (text.find('"') == std::string::npos) {
    RequireEqual(Evaluate(connection, '"' + text + '"'), text, "a quoted text is itself");
  }
  if (text.find("MkStr_") == std::string::npos) {
    RequireEqual(Evaluate(connection, "MkStr_Begin" + text + "MkStr_End"), text, "a marked text is itself");
  }
  Require(connection.count() == 0, "a literal asks for nothing");
}

}  // namespace

void CheckExpression(std::string_view input) {
  const auto records = Records(input);
  const std::string expression(records.front());
  VariableConnection connection;
  for (std::size_t i = 1; i < records.size(); ++i) {
    const std::size_t equals = records[i].find('=');
    if (equals != std::string_view::npos) connection.Set(records[i].substr(0, equals), records[i].substr(equals + 1));
  }
  CheckLiteral(expression);
  std::optional<std::string> value;
  try {
    value = Evaluate(connection, expression);
  } catch (const OverflowError&) {
  } catch (const SubscriptError&) {
  } catch (const NestingError&) {
  }
  Require(connection.count() <= kMostStatements, "an evaluation asks a bounded number of times");
  if (!value) return;
  if (const auto due = Calculation().Of(expression)) RequireEqual(*value, *due, "arithmetic agrees with a calculation");
  const std::size_t before = connection.count();
  RequireEqual(Evaluate(connection, expression), *value, "an expression has one value");
  Require(connection.count() == 2 * before, "an expression asks the same again");
}

}  // namespace talm_flow::fuzz
