// Commands that compute with numbers.

#include <cmath>
#include <optional>
#include <string>

#include "commands/handlers.h"
#include "commands/value.h"
#include "expr/arithmetic.h"
#include "talm_flow/conversion.h"

namespace talm_flow::commands {

namespace {

std::optional<std::string> Magnitude(const Step&, std::string_view value) {
  const auto number = ParseNumber(value);
  if (!number) return std::nullopt;
  return NumberText(std::fabs(*number));
}

std::optional<std::string> Rounded(const Step&, std::string_view value) {
  const auto number = ParseNumber(value);
  if (!number) return std::nullopt;
  return NumberText(RoundHalfEven(*number));
}

}  // namespace

Outcome C_19(Step& step) {
  const auto left = expr::Operand::Of(step.Evaluated(1));
  const std::string symbol = step.Stored(2);
  const auto right = expr::Operand::Of(step.Evaluated(3));
  const std::string target = step.Stored(4);
  if (symbol != "+" && symbol != "-" && symbol != "*" && symbol != "/") return Outcome::Done();
  const auto applied = expr::Apply(symbol.front(), left, right);
  if (applied.kind != expr::Applied::Kind::kError) step.StoreVariable(target, applied.text);
  return Outcome::Done();
}

Outcome C_71(Step& step) { return WriteComputed(step, Magnitude); }
Outcome C_72(Step& step) { return WriteComputed(step, Rounded); }

}  // namespace talm_flow::commands
