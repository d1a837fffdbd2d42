#pragma once

/// The arithmetic of two evaluated texts.

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "talm_flow/conversion.h"

namespace talm_flow::expr {

/// An operand's value, and the number that its text is, if it is one.
struct Operand {
  std::string text;
  std::optional<double> number;

  [[nodiscard]] static Operand Of(std::string value) {
    const auto number = ParseNumber(value);
    return {std::move(value), number};
  }
};

/// What an operator gives: a number's text, any other text, or the text that tells why it gives nothing.
struct Applied {
  enum class Kind { kError, kNumber, kText };
  Kind kind = Kind::kError;
  std::string text;
};

/// Applies "+", "-", "*", "/", "%" or "^". A date and a number of hours add and subtract; "+" joins other texts.
/// @throws OverflowError  the result is no finite number or no moment of the years 100 to 9999, or a 32-bit conversion
/// fails.
[[nodiscard]] Applied Apply(char symbol, const Operand& left, const Operand& right);

}  // namespace talm_flow::expr
