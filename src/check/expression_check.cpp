#include "check/expression_check.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "check/blanks.h"
#include "expr/arithmetic.h"
#include "expr/tokens.h"
#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::check {
namespace {

using expr::kMarkBegin;
using expr::Operand;

constexpr std::array<std::string_view, 2> kSpecialNames = {"DataID_Submit", "DataID_PerApp"};

bool IsSpecial(std::string_view name) { return std::ranges::find(kSpecialNames, name) != kSpecialNames.end(); }

/// An operator, or an operand with the value that is known of it.
struct Item {
  char symbol = 0;        ///< 0 for an operand
  std::string_view text;  ///< as it stands in the expression; empty for what was computed
  std::optional<std::string> value;
};

bool BeginsLikeLiteral(std::string_view text) { return text.starts_with('"') || text.starts_with(kMarkBegin); }

/// Whether a name looks like a text, a list or a reference that lacks its quotes.
bool LooksLikeText(std::string_view name) {
  if (IsDate(name)) return true;
  for (const std::string_view sign : {",", ";", ":", "@", "，", "；", "、", "：", "。"}) {
    if (name.find(sign) != std::string_view::npos) return true;
  }
  return false;
}

class ExpressionCheck {
 public:
  ExpressionCheck(std::string_view expression, const ExpressionContext& context)
      : expression_(expression), context_(context) {}

  std::optional<std::string> Run() {
    if (expression_.empty()) return std::string();
    if (!ReadItems()) return std::nullopt;
    if (items_.size() == 1) return OneOperand();
    if (IsNumeric(expression_)) {
      TellSignedNumber();
      return std::nullopt;
    }
    if (IsDate(Trimmed(expression_))) {
      Tell(Code::kDateComputed, Shown(expression_) + " is no date here: its signs are operators, and it is computed.",
           "Put the date in double quotes.");
      return std::nullopt;
    }
    auto value = Groups();
    if (told_) return std::nullopt;
    for (const Item& item : items_) {
      if (item.symbol == 0) CheckName(item.text);
    }
    if (told_) return std::nullopt;
    return value;
  }

 private:
  void Tell(Code code, std::string problem, std::string advice) {
    told_ = true;
    context_.report.Add(code, context_.place, std::move(problem), std::move(advice));
  }

  /// @returns whether the text can be read at all.
  bool ReadItems() {
    for (std::size_t begin = 0; begin < expression_.size();) {
      if (items_.size() == expr::kMaxTokens) {
        Tell(Code::kTooManyTokens, "The expression has more than 101 tokens; evaluating it raises an error.",
             "Compute parts of it into variables in steps before this one.");
        return false;
      }
      const std::size_t end = expr::TokenEnd(expression_, begin);
      items_.push_back(ItemOf(expression_.substr(begin, end - begin)));
      begin = end;
    }
    return true;
  }

  static Item ItemOf(std::string_view token) {
    constexpr std::string_view kSymbols = "+-*/%^()";
    if (token.size() == 1 && kSymbols.find(token.front()) != std::string_view::npos) return {token.front(), token, {}};
    if (IsNumeric(token)) return {0, token, std::string(token)};
    if (const auto literal = expr::LiteralText(token)) return {0, token, std::string(*literal)};
    return {0, token, {}};
  }

  std::optional<std::string> OneOperand() {
    const Item& item = items_.front();
    if (item.symbol != 0) {
      TellParenthesis(item.symbol);
      return std::nullopt;
    }
    CheckName(item.text);
    if (told_) return std::nullopt;
    return item.value;
  }

  /// A number with a sign of its own, or with one in its exponent, is several tokens.
  void TellSignedNumber() {
    const char sign = Trimmed(expression_).front();
    if (sign == '-' || sign == '+') {
      Tell(Code::kOperandMissing,
           std::string("The \"") + sign + "\" is an operator without a left side; the result is \"缺少运算数\".",
           "Put a number with a sign in double quotes, as \"-3\".");
    } else {
      Tell(Code::kNotRepresentable, "The sign in the exponent of " + Shown(expression_) + " is taken for an operator.",
           "Write the number out, or put it in double quotes.");
    }
  }

  void TellParenthesis(char symbol) {
    if (symbol == '(' || symbol == ')') {
      TellUnmatched(symbol);
    } else {
      Tell(Code::kOperandMissing, "The expression is an operator alone.", "Put the text in double quotes.");
    }
  }

  /// Evaluates group by group, the innermost first.
  std::optional<std::string> Groups() {
    std::vector<std::vector<Item>> open(1);
    for (const Item& item : items_) {
      if (item.symbol == '(') {
        open.emplace_back();
      } else if (item.symbol == ')') {
        if (open.size() == 1) {
          TellUnmatched(')');
          return std::nullopt;
        }
        auto value = Flat(std::move(open.back()));
        if (told_) return std::nullopt;
        open.pop_back();
        open.back().push_back({0, {}, std::move(value)});
      } else {
        open.back().push_back(item);
      }
    }
    if (open.size() > 1) {
      TellUnmatched('(');
      return std::nullopt;
    }
    return Flat(std::move(open.back()));
  }

  void TellUnmatched(char symbol) {
    const auto call = std::ranges::find_if(items_, [](const Item& item) {
      return item.symbol == 0 && !item.value && item.text.find('(') != std::string_view::npos;
    });
    if (symbol == ')' && call != items_.end()) {
      Tell(Code::kParentheses,
           "The \"(\" in " + Shown(call->text) +
               " belongs to a variable's name, so that the \")\" behind it closes "
               "nothing; the result is \"括号不完整\".",
           "Write an operator directly in front of \"(\", without a blank; there are no functions.");
    } else if (symbol == ')') {
      Tell(Code::kParentheses, "A \")\" has no \"(\" before it; the result is \"括号不完整\".",
           "Remove it, or write the \"(\" that it closes.");
    } else {
      Tell(Code::kParentheses, "A \"(\" is not closed; what it begins is not computed.",
           "Write the \")\" that closes it.");
    }
  }

  /// Applies the operators of a text without parentheses, the tightest level first, each from the left.
  std::optional<std::string> Flat(std::vector<Item> items) {
    if (!CheckOrder(items)) return std::nullopt;
    for (const std::string_view level : {"%^", "*/", "+-"}) {
      std::vector<Item> left;
      for (std::size_t i = 0; i < items.size(); ++i) {
        const char symbol = items[i].symbol;
        if (symbol == 0 || level.find(symbol) == std::string_view::npos) {
          left.push_back(std::move(items[i]));
          continue;
        }
        left.back().value = Applied(symbol, left.back(), items[i + 1]);
        left.back().text = {};
        if (told_) return std::nullopt;
        ++i;
      }
      items = std::move(left);
    }
    return items.front().value;
  }

  /// Whether operands and operators take turns.
  bool CheckOrder(const std::vector<Item>& items) {
    if (items.empty()) {
      Tell(Code::kOperandMissing, "Nothing stands between \"(\" and \")\".", "Write what belongs there.");
      return false;
    }
    for (std::size_t i = 1; i < items.size(); ++i) {
      if (items[i - 1].symbol != 0 && items[i].symbol != 0) {
        Tell(Code::kOperandMissing,
             std::string("\"") + items[i].symbol + "\" stands beside \"" + items[i - 1].symbol +
                 "\", and one of the two is taken for a variable's name.",
             "Write one operator between two operands; put a negative number in double quotes.");
        return false;
      }
    }
    for (std::size_t i = 1; i < items.size(); ++i) {
      if (items[i - 1].symbol != 0 || items[i].symbol != 0) continue;
      TellSideBySide(items[i - 1], items[i], i == 1, i + 1 == items.size());
      return false;
    }
    if (items.front().symbol == 0 && items.back().symbol == 0) return true;
    if (items.size() == 1) {
      Tell(Code::kOperandMissing, "An operator stands alone between parentheses.", "Write its operands.");
      return false;
    }
    if (items.front().symbol == '-') {
      Tell(Code::kOperandMissing, "A leading \"-\" is an operator without a left side; the result is \"缺少运算数\".",
           "Put a negative number in double quotes, as \"-3\", or subtract from a larger number.");
    } else {
      const char symbol = items.front().symbol != 0 ? items.front().symbol : items.back().symbol;
      Tell(Code::kOperandMissing,
           std::string("Nothing stands on one side of \"") + symbol + "\"; the result is \"缺少运算数\".",
           "Write the operand that is missing, or put a text with signs in double quotes.");
    }
    return false;
  }

  static bool IsBlank(const Item& item) { return !item.text.empty() && Trimmed(item.text).empty(); }

  /// Whether an operand is no number, so that no operator makes one of it, whose digits could run into its neighbour.
  static bool IsText(const Item& item) { return IsBlank(item) || (item.value && !IsNumeric(*item.value)); }

  void TellSideBySide(const Item& left, const Item& right, bool left_is_first, bool right_is_last) {
    const bool blank = IsBlank(left) || IsBlank(right);
    const bool certain = (left_is_first || IsText(left)) && (right_is_last || IsText(right));
    const std::string ending = certain ? "; the result is the empty text." : ".";
    if (blank) {
      Tell(certain ? Code::kOperatorMissing : Code::kBlankBesideLiteral,
           "The blank beside a quoted text or a parenthesis is an operand of its own, with no operator before it" +
               ending,
           "Write no blanks around operators.");
      return;
    }
    const bool shown = !left.text.empty() && !right.text.empty();
    Tell(Code::kOperatorMissing,
         "Two operands stand side by side" + (shown ? ", " + Shown(left.text) + " and " + Shown(right.text) : "") +
             ", with no operator between them" + ending,
         "Write \"+\" between them, without blanks around it, to join two texts.");
  }

  std::optional<std::string> Applied(char symbol, const Item& left, const Item& right) {
    const bool sum = symbol == '+' || symbol == '-';
    for (const Item* item : {&left, &right}) {
      if (item->value && !sum && !IsNumeric(*item->value)) {
        TellError("变量不是数字", Shown(*item->value) + " is no number, which \"" + symbol + "\" needs");
        return std::nullopt;
      }
      if (item->value && HasStrayComma(*item->value) && IsNumeric(*item->value)) {
        told_ = true;
        CheckComma(*item->value, context_.place, context_.report);
        return std::nullopt;
      }
    }
    if (symbol == '-' && right.value && !IsNumeric(*right.value)) {
      TellError("变量不是数字", Shown(*right.value) + " is no number, which \"-\" needs");
      return std::nullopt;
    }
    if (symbol == '-' && left.value && !IsNumeric(*left.value) && !IsDate(*left.value)) {
      TellError("变量不是数字", Shown(*left.value) + " is neither a number nor a date, which \"-\" needs");
      return std::nullopt;
    }
    if ((symbol == '/' || symbol == '%') && right.value && IsZero(symbol, *right.value)) {
      TellError("除数为0", std::string("\"") + symbol + "\" divides by 0");
      return std::nullopt;
    }
    if (!left.value || !right.value) return std::nullopt;
    return ConstantResult(symbol, Operand::Of(*left.value), Operand::Of(*right.value));
  }

  static bool IsZero(char symbol, std::string_view text) {
    const double number = ParseNumber(text).value_or(1);
    return (symbol == '%' ? RoundHalfEven(number) : number) == 0;
  }

  void TellError(std::string_view result, const std::string& why) {
    Tell(Code::kErrorText, why + "; the result is the text \"" + std::string(result) + "\".",
         "Correct the operand, or put a text that holds signs in double quotes.");
  }

  std::optional<std::string> ConstantResult(char symbol, const Operand& left, const Operand& right) {
    const auto whole = Whole(symbol, left, right);
    if (!whole) {
      Tell(Code::kNotRepresentable, "The constant result is too large or too small; evaluating it raises an error.",
           "Compute with smaller numbers.");
      return std::nullopt;
    }
    auto applied = expr::Apply(symbol, left, right);
    if (applied.kind != expr::Applied::Kind::kNumber) return std::move(applied.text);
    if (applied.text.starts_with('-')) {
      Tell(Code::kNegative,
           "The constant part " + left.text + symbol + right.text + " is negative, and the \"-\" of the result " +
               applied.text + " is taken for an operator; the result is \"缺少运算数\".",
           "Use the positive difference, or write a negative constant in double quotes, as \"" + applied.text + "\".");
    } else if (applied.text.find('E') != std::string::npos) {
      Tell(Code::kNotRepresentable,
           "The constant result " + applied.text + " holds a sign, which is taken for an operator.",
           "Keep results between 0.0001 and 1000000000000000.");
    }
    return std::move(applied.text);
  }

  /// Whether applying the operator to two constants gives a result at all.
  static std::optional<bool> Whole(char symbol, const Operand& left, const Operand& right) {
    constexpr double kLargestWhole = std::numeric_limits<std::int32_t>::max();
    const auto fits = [](double number) { return std::fabs(RoundHalfEven(number)) <= kLargestWhole; };
    if (!left.number || !right.number) {
      const auto moment = ParseDate(left.text);
      if (!moment || !right.number) return true;
      if (!fits(*right.number)) return std::nullopt;
      const double hours = symbol == '-' ? -*right.number : *right.number;
      constexpr double kSecondsOfHour = 3600;
      const double seconds = static_cast<double>(moment->seconds) + RoundHalfEven(hours) * kSecondsOfHour;
      const bool in_range = seconds >= static_cast<double>(MakeDateTime(100, 1, 1).seconds) &&
                            seconds <= static_cast<double>(MakeDateTime(9999, 12, 31, 23, 59, 59).seconds);
      return in_range ? std::optional(true) : std::nullopt;
    }
    double result = 0;
    switch (symbol) {
      case '+':
        result = *left.number + *right.number;
        break;
      case '-':
        result = *left.number - *right.number;
        break;
      case '*':
        result = *left.number * *right.number;
        break;
      case '/':
        result = *left.number / *right.number;
        break;
      case '%':
        return fits(*left.number) && fits(*right.number) ? std::optional(true) : std::nullopt;
      default:
        result = std::pow(*left.number, *right.number);
    }
    return std::isfinite(result) ? std::optional(true) : std::nullopt;
  }

  /// Looks at an operand that is no number and no literal: the evaluator takes it for a variable's name.
  void CheckName(std::string_view name) {
    if (name.empty() || IsNumeric(name) || IsSpecial(name) || expr::LiteralText(name)) return;
    if (context_.written.contains(name)) return;
    const std::string_view trimmed = Trimmed(name);
    if (BeginsLikeLiteral(name)) {
      Tell(Code::kNotClosedLiteral,
           name.starts_with('"') ? "The double quote before " + Shown(name.substr(1)) + " is not closed."
                                 : "\"MkStr_Begin\" is not closed by \"MkStr_End\", or stands inside another one.",
           "Close the text; one that holds double quotes goes between \"MkStr_Begin\" and \"MkStr_End\".");
    } else if (BeginsLikeLiteral(trimmed)) {
      Tell(Code::kBlankBesideLiteral,
           "The blank before " + Shown(trimmed) +
               " belongs to it and makes it a variable's name, which reads as the "
               "empty text.",
           "Remove the blank.");
    } else if (context_.plain == Plain::kAccepted && items_.size() == 1) {
      return;
    } else if (trimmed != name) {
      Tell(Code::kBlankInName,
           trimmed.empty() ? "Blanks alone are a variable's name, which reads as the empty text."
                           : "The blanks beside " + Shown(trimmed) + " belong to the name; the variable " +
                                 Shown(name) + " is looked up.",
           trimmed.empty() ? "Leave the value empty." : "Remove the blanks around names.");
    } else if (name.find_first_of("\"(") != std::string_view::npos || name.find(kMarkBegin) != std::string_view::npos) {
      Tell(Code::kLiteralInName,
           "The quotes or parentheses in " + Shown(name) + " begin nothing: they belong to a variable's name.",
           "Write an operator between the name and what follows, as name+\"text\".");
    } else if (const auto* const meant = SpecialMeantBy(name)) {
      Tell(Code::kMisspeltName,
           Shown(name) + " is a variable's name; the special name is spelt " + std::string(*meant) + ".",
           "Write " + std::string(*meant) + ".");
    } else if (LooksLikeText(name)) {
      Tell(Code::kUnquoted, Shown(name) + " has no quotes: it is a variable's name, which reads as the empty text.",
           "Put the text in double quotes.");
    }
  }

  static const std::string_view* SpecialMeantBy(std::string_view name) {
    for (const auto& special : kSpecialNames) {
      if (EqualIgnoringAsciiCase(name, special)) return &special;
    }
    return nullptr;
  }

  std::string_view expression_;
  const ExpressionContext& context_;
  std::vector<Item> items_;
  bool told_ = false;
};

}  // namespace

std::optional<std::string> CheckExpression(std::string_view expression, const ExpressionContext& context) {
  return ExpressionCheck(expression, context).Run();
}

bool IsReadableName(std::string_view name) {
  if (name.empty() || IsNumeric(name) || IsSpecial(name) || expr::LiteralText(name)) return false;
  // A lone operator is read as a name too, but only where its neighbours are none.
  return expr::TokenEnd(name, 0) == name.size() &&
         (name.size() > 1 || std::string_view("+-*/%^()").find(name) == std::string_view::npos);
}

// Thousands are parted into groups of three digits behind a first one of one to three.
bool HasStrayComma(std::string_view number) {
  number = Trimmed(number);
  const auto pieces = Split(number.substr(0, number.find_first_of(".eE")), ",");
  if (pieces.size() < 2) return false;
  constexpr std::size_t kGroup = 3;
  std::string_view first = pieces.front();
  if (first.starts_with('-') || first.starts_with('+')) first.remove_prefix(1);
  if (first.empty() || first.size() > kGroup) return true;
  return std::any_of(pieces.begin() + 1, pieces.end(), [](std::string_view piece) { return piece.size() != kGroup; });
}

void CheckComma(std::string_view number, const Place& place, Report& report) {
  report.Add(Code::kCommaInNumber, place,
             "The comma in " + Shown(number) + " parts no items and is no decimal point: the number is " +
                 NumberText(ParseNumber(number).value_or(0)) + ".",
             "Write a decimal point, \"1.5\", or put a list in double quotes and take its items one by one.");
}

}  // namespace talm_flow::check
