#pragma once

/// What can be told about an expression without running it.
///
/// The check takes the text apart as the evaluator does and computes what is constant; a variable may hold anything.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "check/report.h"

namespace talm_flow::check {

/// Names that the flow itself writes, exactly as stored: odd ones are meant.
using VariableNames = std::unordered_set<std::string_view>;

/// How strictly a text that is one operand is taken.
enum class Plain {
  kSuspect,   ///< a plain text is a variable's name, and hardly meant to be one when it looks like something else
  kAccepted,  ///< a plain text serves: it is taken as stored when no variable has its name
};

struct ExpressionContext {
  const VariableNames& written;
  Place place;
  Report& report;
  Plain plain = Plain::kSuspect;
};

/// Reports what is wrong with an expression.
/// @returns its value when it is constant and nothing was wrong.
std::optional<std::string> CheckExpression(std::string_view expression, const ExpressionContext& context);

/// Whether an expression that consists of the name alone reads the variable of that name.
[[nodiscard]] bool IsReadableName(std::string_view name);

/// Whether a numeric text has a "," where no thousands are parted, as in "1,5".
[[nodiscard]] bool HasStrayComma(std::string_view number);

/// Reports a number that has one.
void CheckComma(std::string_view number, const Place& place, Report& report);

}  // namespace talm_flow::check
