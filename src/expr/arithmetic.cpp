#include "expr/arithmetic.h"

#include <cmath>
#include <cstdint>

#include "talm_flow/error.h"

namespace talm_flow::expr {

namespace {

constexpr std::string_view kDivisorIsZero = "除数为0";
constexpr std::string_view kNotANumber = "变量不是数字";

Applied Error(std::string_view text) { return {Applied::Kind::kError, std::string(text)}; }

Applied Number(double number) {
  if (!std::isfinite(number)) throw OverflowError("arithmetic gave no finite number");
  return {Applied::Kind::kNumber, NumberText(number)};
}

Applied Remainder(double left, double right) {
  const std::int64_t divisor = ToInt32(right);
  if (divisor == 0) return Error(kDivisorIsZero);
  // 64 bits: the smallest 32-bit number has no quotient by -1 in its own width.
  return {Applied::Kind::kNumber, std::to_string(std::int64_t{ToInt32(left)} % divisor)};
}

Applied ApplyToNumbers(char symbol, double left, double right) {
  switch (symbol) {
    case '+':
      return Number(left + right);
    case '-':
      return Number(left - right);
    case '*':
      return Number(left * right);
    case '/':
      return right == 0 ? Error(kDivisorIsZero) : Number(left / right);
    case '%':
      return Remainder(left, right);
    default:
      return Number(std::pow(left, right));
  }
}

}  // namespace

Applied Apply(char symbol, const Operand& left, const Operand& right) {
  if (left.number && right.number) return ApplyToNumbers(symbol, *left.number, *right.number);
  if (symbol != '+' && symbol != '-') return Error(kNotANumber);
  if (!left.number && right.number) {
    if (const auto moment = ParseDate(left.text)) {
      const double hours = symbol == '+' ? *right.number : -*right.number;
      return {Applied::Kind::kText, GeneralDateText(AddHours(*moment, hours))};
    }
  }
  if (symbol == '-') return Error(kNotANumber);
  return {Applied::Kind::kText, left.text + right.text};
}

}  // namespace talm_flow::expr
