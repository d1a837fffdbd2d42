#include "talm_flow/conversion.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "db/characters.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow {
namespace {

// A numeric text taken apart, without its outer blanks:
//
//   number   = [sign] ( integer ["." [digits]] | "." digits ) [ ("e" | "E") [sign] digits ]
//   integer  = digit { [","] digit }
struct NumberShape {
  std::string_view unsigned_text;  // what follows the sign
  std::string_view significand;    // the part before the exponent
  std::string_view exponent;       // behind "e", with its sign; empty when there is none
  bool negative = false;
  bool has_comma = false;
  bool only_digits = false;
};

std::optional<NumberShape> ShapeOf(std::string_view text) {
  text = WithoutOuterBlanks(text);
  NumberShape shape;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    shape.negative = text.front() == '-';
    text.remove_prefix(1);
  }
  const std::size_t size = text.size();
  std::size_t at = 0;
  std::size_t digits = 0;
  for (; at < size; ++at) {
    if (IsDigit(text[at])) {
      ++digits;
    } else if (text[at] == ',' && at > 0 && IsDigit(text[at - 1]) && at + 1 < size && IsDigit(text[at + 1])) {
      shape.has_comma = true;
    } else {
      break;
    }
  }
  shape.only_digits = at == size && !shape.has_comma;
  if (at < size && text[at] == '.') {
    for (++at; at < size && IsDigit(text[at]); ++at) ++digits;
  }
  if (digits == 0) return std::nullopt;
  shape.unsigned_text = text;
  shape.significand = text.substr(0, at);
  if (at == size) return shape;
  if (text[at] != 'e' && text[at] != 'E') return std::nullopt;
  shape.exponent = text.substr(++at);
  if (at < size && (text[at] == '-' || text[at] == '+')) ++at;
  if (at == size) return std::nullopt;
  for (; at < size; ++at) {
    if (!IsDigit(text[at])) return std::nullopt;
  }
  return shape;
}

// Whether a number that no double can hold is too small rather than too large: its first digit that counts stands
// behind the point once the exponent is applied.
bool IsTiny(const NumberShape& shape) {
  constexpr std::int64_t kFarBeyond = 1'000'000'000'000;
  const std::string_view significand = shape.significand;
  std::int64_t whole_digits = 0;
  std::int64_t leading_zeros = 0;
  bool in_fraction = false;
  bool counts = false;
  for (const char c : significand) {
    if (c == '.') {
      in_fraction = true;
    } else if (IsDigit(c)) {
      counts = counts || c != '0';
      if (counts && !in_fraction) ++whole_digits;
      if (!counts && in_fraction) ++leading_zeros;
    }
  }
  std::string_view exponent = shape.exponent;
  bool negative = false;
  if (!exponent.empty() && !IsDigit(exponent.front())) {
    negative = exponent.front() == '-';
    exponent.remove_prefix(1);
  }
  std::int64_t power = 0;
  for (const char c : exponent) {
    if (power < kFarBeyond) power = power * 10 + (c - '0');
  }
  return whole_digits - leading_zeros + (negative ? -power : power) < 0;
}

std::optional<double> Magnitude(const NumberShape& shape, std::string_view text) {
  double magnitude = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude);
  if (error == std::errc::result_out_of_range) {
    if (!IsTiny(shape)) return std::nullopt;
    return 0.0;
  }
  if (error != std::errc() || !std::isfinite(magnitude)) return std::nullopt;
  return magnitude;
}

std::optional<double> MagnitudeWithoutCommas(const NumberShape& shape) {
  std::string digits;
  digits.reserve(shape.unsigned_text.size());
  for (const char c : shape.unsigned_text) {
    if (c != ',') digits += c;
  }
  return Magnitude(shape, digits);
}

// Digits that always fit in a whole number that a double holds exactly.
constexpr std::size_t kExactDigits = 15;

double SmallWhole(std::string_view digits) {
  std::int64_t number = 0;
  for (const char c : digits) number = number * 10 + (c - '0');
  return static_cast<double>(number);
}

// The offending text within a message: enough of it to be recognised.
std::string Shown(std::string_view text) {
  constexpr std::size_t kShownCharacters = 100;
  const std::string_view shown = FirstCharacters(text, kShownCharacters);
  std::string result = "\"";
  result += shown;
  result += shown.size() < text.size() ? "...\"" : "\"";
  return result;
}

std::string ShownValue(const Value& value) { return value.IsText() ? Shown(value.Text()) : JoinedText(value); }

template <typename Whole>
bool Holds(double rounded) {
  return rounded >= static_cast<double>(std::numeric_limits<Whole>::min()) &&
         rounded <= static_cast<double>(std::numeric_limits<Whole>::max());
}

template <typename Whole>
Whole ToWhole(const Value& value) {
  constexpr int kBits = std::numeric_limits<Whole>::digits + 1;
  if (value.IsWhole()) {
    const std::int64_t number = value.Whole();
    if (number >= std::numeric_limits<Whole>::min() && number <= std::numeric_limits<Whole>::max()) {
      return static_cast<Whole>(number);
    }
  } else {
    const double rounded = RoundHalfEven(ToDouble(value));
    if (Holds<Whole>(rounded)) return static_cast<Whole>(rounded);
  }
  throw OverflowError("the number " + ShownValue(value) + " does not fit in " + std::to_string(kBits) + " bits");
}

template <typename Number>
void AppendDigits(std::string& out, Number number) {
  std::array<char, 24> digits{};
  out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

void AppendNumber(std::string& out, double number) {
  constexpr double kWholeForm = 1e15;
  constexpr int kSignificantDigits = 15;
  if (std::abs(number) < kWholeForm && number == std::trunc(number)) {
    AppendDigits(out, static_cast<std::int64_t>(number));
    return;
  }
  std::array<char, 40> digits{};
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                        std::chars_format::general, kSignificantDigits)
                              .ptr;
  for (const char* c = digits.data(); c != end; ++c) out += *c == 'e' ? 'E' : *c;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  const auto shape = ShapeOf(text);
  if (!shape) return std::nullopt;
  std::optional<double> magnitude;
  if (shape->only_digits && shape->unsigned_text.size() <= kExactDigits) {
    magnitude = SmallWhole(shape->unsigned_text);
  } else {
    magnitude = shape->has_comma ? MagnitudeWithoutCommas(*shape) : Magnitude(*shape, shape->unsigned_text);
  }
  if (magnitude && shape->negative) return -*magnitude;
  return magnitude;
}

bool IsNumeric(std::string_view text) {
  // Fewer digits than this, without an exponent, never leave the range of a double.
  constexpr std::size_t kSafeDigits = 300;
  const auto shape = ShapeOf(text);
  if (!shape) return false;
  return (shape->exponent.empty() && shape->significand.size() <= kSafeDigits) || ParseNumber(text).has_value();
}

bool IsNumeric(const Value& value) {
  return value.IsText() ? IsNumeric(std::string_view(value.Text())) : !value.IsNull();
}

std::string NumberText(double number) {
  std::string text;
  AppendNumber(text, number);
  return text;
}

void AppendJoined(std::string& out, const Value& value) {
  switch (value.kind()) {
    case Value::Kind::kNull:
      break;
    case Value::Kind::kBoolean:
      out += value.Boolean() ? "True" : "False";
      break;
    case Value::Kind::kWhole:
      AppendDigits(out, value.Whole());
      break;
    case Value::Kind::kDouble:
      AppendNumber(out, value.Double());
      break;
    case Value::Kind::kText:
      out += value.Text();
      break;
  }
}

std::string JoinedText(const Value& value) {
  std::string text;
  AppendJoined(text, value);
  return text;
}

std::string ToText(const Value& value) {
  if (value.IsNull()) throw ConversionError("Null is no text");
  return JoinedText(value);
}

double ToDouble(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::kBoolean:
      return value.Boolean() ? -1 : 0;
    case Value::Kind::kWhole:
      return static_cast<double>(value.Whole());
    case Value::Kind::kDouble:
      return value.Double();
    case Value::Kind::kText:
      if (const auto number = ParseNumber(value.Text())) return *number;
      throw ConversionError("the text " + Shown(value.Text()) + " is no number");
    case Value::Kind::kNull:
      break;
  }
  throw ConversionError("Null is no number");
}

std::int32_t ToInt32(const Value& value) { return ToWhole<std::int32_t>(value); }

std::int32_t ToInt32(double number) { return ToWhole<std::int32_t>(Value(number)); }

std::int16_t ToInt16(const Value& value) { return ToWhole<std::int16_t>(value); }

double RoundHalfEven(double number) {
  const double magnitude = std::abs(number);
  double whole = std::floor(magnitude);
  const double fraction = magnitude - whole;
  if (fraction > 0.5 || (fraction == 0.5 && std::fmod(whole, 2.0) != 0.0)) whole += 1;
  return std::copysign(whole, number);
}

bool SwitchIs(const Value& argument, double number) { return IsNumeric(argument) && ToDouble(argument) == number; }

bool SwitchIsPositive(const Value& argument) { return IsNumeric(argument) && ToDouble(argument) > 0; }

}  // namespace talm_flow
