#pragma once

/// @file
/// The one home of all conversions between texts, numbers, dates and values.
///
/// Everything here is pure and independent of the process's locale. "Numeric text" and "date text" are the two tests
/// by which the whole system recognises numbers and dates in texts.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "talm_flow/export.h"
#include "talm_flow/value.h"

namespace talm_flow {

/// A moment of the proleptic Gregorian calendar in local time, in whole seconds, without a time zone.
struct TALM_FLOW_API DateTime {
  /// Seconds since 1970-01-01 00:00:00.
  std::int64_t seconds = 0;

  /// Earlier is less.
  friend auto operator<=>(const DateTime&, const DateTime&) = default;
};

/// A moment taken apart.
struct TALM_FLOW_API DateParts {
  int year = 0;     ///< 100 to 9999
  int month = 0;    ///< 1 to 12
  int day = 0;      ///< 1 to 31
  int hour = 0;     ///< 0 to 23
  int minute = 0;   ///< 0 to 59
  int second = 0;   ///< 0 to 59
  int weekday = 0;  ///< Monday 1 to Sunday 7
};

/// The value of a numeric text, or nothing when the text is not numeric. Blanks and tabs at both ends are passed over;
/// an optional sign; digits in which "," may stand between two digits of the integer part; an optional "." with digits
/// before or after it; an optional exponent. A value that is no finite double is not numeric.
[[nodiscard]] TALM_FLOW_API std::optional<double> ParseNumber(std::string_view text);

/// Whether `ParseNumber` reads the text.
[[nodiscard]] TALM_FLOW_API bool IsNumeric(std::string_view text);
/// As above; keeps a text from being taken for a `Value`.
[[nodiscard]] inline bool IsNumeric(const std::string& text) { return IsNumeric(std::string_view(text)); }
/// As above; keeps a text from being taken for a `Value`.
[[nodiscard]] inline bool IsNumeric(const char* text) { return IsNumeric(std::string_view(text)); }
/// Numbers and Booleans are numeric, Null is not, a text is when `ParseNumber` reads it.
[[nodiscard]] TALM_FLOW_API bool IsNumeric(const Value& value);

/// A number in general form: at most 15 significant digits, no trailing zeros, 1E+20 and 1E-05 outside 1E-04 .. 1E+15,
/// never "-0".
[[nodiscard]] TALM_FLOW_API std::string NumberText(double number);

/// The text that a value adds where values are joined: numbers in plain form, True and False for Booleans, nothing for
/// Null.
TALM_FLOW_API void AppendJoined(std::string& out, const Value& value);
/// What `AppendJoined` appends, by itself.
[[nodiscard]] TALM_FLOW_API std::string JoinedText(const Value& value);

/// The value as a text. @throws ConversionError for Null.
[[nodiscard]] TALM_FLOW_API std::string ToText(const Value& value);

/// The value as a number; True is -1, False 0. @throws ConversionError for Null and for a text that is not numeric.
[[nodiscard]] TALM_FLOW_API double ToDouble(const Value& value);

/// The nearest whole number, ties to the even neighbour.
/// @throws OverflowError outside 32 bits; ConversionError as `ToDouble`.
[[nodiscard]] TALM_FLOW_API std::int32_t ToInt32(const Value& value);
/// The nearest whole number, ties to the even neighbour. @throws OverflowError outside 32 bits.
[[nodiscard]] TALM_FLOW_API std::int32_t ToInt32(double number);

/// As `ToInt32` within 16 bits.
[[nodiscard]] TALM_FLOW_API std::int16_t ToInt16(const Value& value);

/// The number nearest to `number` without a fraction, ties to the even one; any size.
[[nodiscard]] TALM_FLOW_API double RoundHalfEven(double number);

/// True when a switch argument means `number`: a number or numeric text equal to it. Null and other texts are not.
[[nodiscard]] TALM_FLOW_API bool SwitchIs(const Value& argument, double number);

/// True when a switch argument is a number or numeric text above 0.
[[nodiscard]] TALM_FLOW_API bool SwitchIsPositive(const Value& argument);

/// The moment that a date text names, or nothing. `Y-M-D`, `Y/M/D`, `Y.M.D` or `Y年M月D日`, optionally followed by
/// blanks or one "T" and a time `H:MM` or `H:MM:SS`; or a time alone, on 1899/12/30. Real calendar moments of the years
/// 0100 to 9999 only. Numeric text never is date text.
[[nodiscard]] TALM_FLOW_API std::optional<DateTime> ParseDate(std::string_view text);

/// Whether `ParseDate` reads the text.
[[nodiscard]] TALM_FLOW_API bool IsDate(std::string_view text);

/// The moment of a calendar date and time of day; the parts must be a real moment.
[[nodiscard]] TALM_FLOW_API DateTime MakeDateTime(int year, int month, int day, int hour = 0, int minute = 0,
                                                  int second = 0);

/// A moment taken apart, with its day of the week.
[[nodiscard]] TALM_FLOW_API DateParts PartsOf(DateTime moment);

/// `yyyy/M/d H:mm:ss`, as 2026/1/31 9:05:00; without the time at midnight, as 2026/1/31.
[[nodiscard]] TALM_FLOW_API std::string GeneralDateText(DateTime moment);

/// `yyyy/M/d`.
[[nodiscard]] TALM_FLOW_API std::string ShortDateText(DateTime moment);

/// The moment `hours` later (earlier when negative); the count is taken to the nearest whole number, ties to even.
/// @throws OverflowError when the count is outside 32 bits or the result outside the years 100 to 9999.
[[nodiscard]] TALM_FLOW_API DateTime AddHours(DateTime moment, double hours);

}  // namespace talm_flow
