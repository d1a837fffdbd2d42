#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "properties.h"
#include "property.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::fuzz {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::string Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == text.npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

/// The numeric text without its commas, by the C library's reading; commas count between digits before the point.
std::optional<double> ReadByLibrary(std::string_view text) {
  const std::string trimmed = Trimmed(text);
  std::string digits;
  bool in_integer = true;
  for (std::size_t i = 0; i < trimmed.size(); ++i) {
    const char c = trimmed[i];
    if (c == ',') {
      const bool between = i > 0 && IsDigit(trimmed[i - 1]) && i + 1 < trimmed.size() && IsDigit(trimmed[i + 1]);
      if (!in_integer || !between) return std::nullopt;
      continue;
    }
    if (c == '.' || c == 'e' || c == 'E') in_integer = false;
    // Hexadecimal digits, "inf" and "nan", and blanks inside.
    if (!IsDigit(c) && std::strchr("+-.eE", c) == nullptr) return std::nullopt;
    if (c == '\0') return std::nullopt;
    digits += c;
  }
  if (digits.empty()) return std::nullopt;
  char* end = nullptr;
  const double number = std::strtod(digits.c_str(), &end);
  if (end != digits.c_str() + digits.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}

bool SameNumber(double a, double b) {
  return a == b || std::fpclassify(a) == FP_SUBNORMAL || std::fpclassify(b) == FP_SUBNORMAL;
}

void CheckNumberText(std::string_view text) {
  const auto number = ParseNumber(text);
  const auto due = ReadByLibrary(text);
  Require(number.has_value() == due.has_value(), "a text is numeric as the library reads it");
  Require(!number || SameNumber(*number, *due), "a numeric text has the value that the library reads");
  Require(IsNumeric(text) == number.has_value(), "the numeric test agrees with reading");
  Require(!number || !IsDate(text), "numeric text is no date text");
}

void CheckNumber(double number) {
  if (!std::isfinite(number)) return;
  const std::string text = NumberText(number);
  Require(text != "-0", "no number is written as -0");
  const auto read = ParseNumber(text);
  // The largest numbers of all are rounded up beyond the range when they are written with 15 digits.
  if (!read) return Require(std::abs(number) > 1.797693134862315e308, "a written number is numeric");
  RequireEqual(NumberText(*read), text, "a number is written as it was read");
  Require(std::abs(*read - number) <= std::abs(number) * 1e-14 || std::fpclassify(number) == FP_SUBNORMAL,
          "a number is written with 15 digits");
  std::fesetround(FE_TONEAREST);
  Require(RoundHalfEven(number) == std::nearbyint(number), "ties are rounded to the even neighbour");
  const double rounded = std::nearbyint(number);
  try {
    Require(ToInt32(number) == rounded, "a whole number is the rounded one");
    Require(rounded >= INT32_MIN && rounded <= INT32_MAX, "a whole number has 32 bits");
    Require(ToInt16(Value(number)) == rounded, "a small whole number is the rounded one");
  } catch (const OverflowError&) {
    Require(rounded < INT16_MIN || rounded > INT16_MAX, "only numbers outside of the range overflow");
  }
}

void CheckMoment(DateTime moment) {
  const std::string text = GeneralDateText(moment);
  const auto read = ParseDate(text);
  Require(read.has_value() && *read == moment, "a written moment is read back: " + text);
  const DateParts parts = PartsOf(moment);
  Require(MakeDateTime(parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second) == moment,
          "a moment's parts make the moment");
  Require(parts.weekday >= 1 && parts.weekday <= 7, "a week has seven days");
  const auto day = ParseDate(ShortDateText(moment));
  Require(day && day->seconds <= moment.seconds && moment.seconds - day->seconds < 86400, "a day holds its moments");
}

void CheckDateText(std::string_view text, double hours) {
  const auto moment = ParseDate(text);
  Require(IsDate(text) == moment.has_value(), "the date test agrees with reading");
  if (!moment) return;
  CheckMoment(*moment);
  Require(!IsNumeric(text), "date text is no numeric text");
  try {
    const DateTime later = AddHours(*moment, hours);
    CheckMoment(later);
    Require((later.seconds - moment->seconds) == 3600 * std::int64_t{ToInt32(hours)}, "hours add up");
    Require(AddHours(later, -RoundHalfEven(hours)) == *moment, "hours are taken back");
  } catch (const OverflowError&) {
    Require(!(std::abs(hours) < 1), "less than an hour does not leave the calendar");
  }
}

void CheckCharacters(std::string_view text, std::size_t count) {
  const std::size_t characters = CharacterCount(text);
  const std::string_view front = FirstCharacters(text, count);
  Require(CharacterCount(front) == std::min(count, characters), "the first characters are as many as asked for");
  Require(text.starts_with(front), "the first characters are the text's");
  Require(CharacterCount(text.substr(front.size())) == characters - CharacterCount(front), "no character is torn");
  Require(CharacterCount(LowerCase(text)) == characters, "lower case keeps the number of characters");
  Require(CharacterCount(UpperCase(text)) == characters, "upper case keeps the number of characters");
  RequireEqual(LowerCase(LowerCase(text)), LowerCase(text), "lower case is lower case");
  std::string joined;
  bool first = true;
  for (const std::string_view piece : Split(text, ",")) {
    Require(piece.find(',') == piece.npos, "a piece holds no separator");
    if (!first) joined += ',';
    first = false;
    joined += piece;
  }
  RequireEqual(joined, text, "the pieces make the text");
  RequireEqual(ReplaceAll(text, ",", ","), text, "replacing a text by itself changes nothing");
  Require(ReplaceAll(text, ",", "").find(',') == std::string::npos, "nothing that is replaced remains");
}

}  // namespace

void CheckConversion(std::string_view input) {
  CheckNumberText(input);
  CheckCharacters(input, input.size() % 7);
  double number = 0;
  std::memcpy(&number, input.data(), std::min(sizeof number, input.size()));
  CheckNumber(number);
  if (const auto read = ParseNumber(input)) CheckNumber(*read);
  CheckDateText(input, std::isfinite(number) ? number : 1.5);
  CheckDateText(input, static_cast<double>(input.size()) - 12);
}

}  // namespace talm_flow::fuzz
