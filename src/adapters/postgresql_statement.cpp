#include "adapters/postgresql_statement.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

using namespace postgresql_type;

constexpr std::string_view kMoreThanAnyNumber = "Infinity";

/// A number as texts write it: blanks around it, a sign, digits with a point, an exponent.
struct Number {
  std::string written;                   // without blanks and "+"
  std::optional<std::int64_t> as_whole;  // when it is one
};

std::string_view PassDigits(std::string_view& rest) {
  const std::size_t end = std::min(rest.find_first_not_of("0123456789"), rest.size());
  const std::string_view digits = rest.substr(0, end);
  rest.remove_prefix(end);
  return digits;
}

/// Whether all of `text`, which has no sign, is a number.
bool IsNumber(std::string_view text) {
  std::size_t digits = PassDigits(text).size();
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    digits += PassDigits(text).size();
  }
  if (digits == 0) return false;
  if (text.empty()) return true;
  if (text.front() != 'e' && text.front() != 'E') return false;
  text.remove_prefix(1);
  if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
  return !PassDigits(text).empty() && text.empty();
}

std::optional<std::int64_t> WholeOf(const std::string& written) {
  std::int64_t whole = 0;
  const char* const end = written.data() + written.size();
  if (const auto [behind, error] = std::from_chars(written.data(), end, whole); error == std::errc() && behind == end) {
    return whole;
  }
  constexpr double kExact = 9007199254740992.0;  // beyond, a double may stand for several whole numbers
  const double number = std::strtod(written.c_str(), nullptr);
  if (std::abs(number) > kExact || number != std::floor(number)) return std::nullopt;
  return static_cast<std::int64_t>(number);
}

std::optional<Number> NumberOf(std::string_view text, bool negative) {
  constexpr std::string_view kBlanks = " \t\r\n\f\v";
  const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
  text.remove_prefix(begin);
  text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
  if (text.starts_with('-') || text.starts_with('+')) {
    negative = negative != (text.front() == '-');
    text.remove_prefix(1);
  }
  if (!IsNumber(text)) return std::nullopt;
  Number number;
  if (negative) number.written = "-";
  number.written += text;
  number.as_whole = WholeOf(number.written);
  return number;
}

/// The digits of a literal that fit into 64 bits, without any memory.
std::optional<std::int64_t> SmallWhole(const Literal& literal, bool negative) {
  if (literal.kind != Literal::Kind::kWhole) return std::nullopt;
  std::int64_t whole = 0;
  const char* const end = literal.source.data() + literal.source.size();
  if (std::from_chars(literal.source.data(), end, whole).ec != std::errc()) return std::nullopt;
  return negative ? -whole : whole;
}

std::string Content(const Literal& literal) {
  std::string content;
  AppendUnquoted(literal, content);
  return content;
}

std::optional<Number> NumberOf(const Literal& literal, bool negative) {
  return literal.kind == Literal::Kind::kTextWithQuotes ? std::nullopt : NumberOf(literal.source, negative);
}

/// A number where a text is expected: 15 digits at most, and a fraction always.
std::string TextOfNumber(const Literal& literal, bool negative) {
  if (const auto whole = SmallWhole(literal, negative)) return std::to_string(*whole);
  const std::string written = (negative ? "-" : "") + std::string(literal.source);
  const double number = std::strtod(written.c_str(), nullptr);
  if (std::isinf(number)) return negative ? "-Inf" : "Inf";
  char digits[40];
  std::snprintf(digits, sizeof digits, "%.15g", number);
  std::string text = digits;
  const std::size_t exponent = text.find('e');
  if (text.find('.') == text.npos) text.insert(exponent == text.npos ? text.size() : exponent, ".0");
  return text;
}

bool TakesWhole(const PostgresqlPrepared& prepared, std::size_t parameter) {
  return IsWhole(prepared.types[parameter]) && !prepared.any_number[parameter];
}

bool Fits(std::int64_t number, Oid type) {
  if (type == kWhole32) return number == static_cast<std::int32_t>(number);
  if (type == kWhole16) return number == static_cast<std::int16_t>(number);
  return true;
}

void RequireNoNul(std::string_view text) {
  if (text.find('\0') == text.npos) return;
  throw DatabaseError("the database's texts cannot hold the NUL character");
}

void AddWhole(std::int64_t number, Oid type, PostgresqlParameters& parameters) {
  if (type == kWhole64) {
    parameters.AddWhole(number);
  } else {
    parameters.AddWritten(std::to_string(number));
  }
}

void AddText(const Literal& literal, const Mark& mark, PostgresqlParameters& parameters) {
  if (!IsText(literal)) {
    parameters.AddWritten(TextOfNumber(literal, mark.negative));
    return;
  }
  RequireNoNul(literal.source);
  if (literal.kind == Literal::Kind::kText && !mark.negative) {
    parameters.AddBytes(literal.source);
  } else {
    parameters.AddCopy((mark.negative ? "-" : "") + Content(literal));
  }
}

/// A literal where the server expects a number of any kind.
void AddNumber(const Literal& literal, const Mark& mark, PostgresqlParameters& parameters) {
  if (const auto number = NumberOf(literal, mark.negative)) {
    const bool beyond_all = std::isinf(std::strtod(number->written.c_str(), nullptr));
    parameters.AddWritten(beyond_all ? (number->written.front() == '-' ? "-Infinity" : "Infinity") : number->written);
  } else if (mark.in_condition) {
    parameters.AddWritten(kMoreThanAnyNumber);
  } else {
    RequireNoNul(literal.source);
    parameters.AddWritten(Content(literal));
  }
}

void AddLiteral(const Literal& literal, const Mark& mark, Oid type, bool any_number, PostgresqlParameters& parameters) {
  if (postgresql_type::IsText(type)) return AddText(literal, mark, parameters);
  if (IsWhole(type) && !any_number) {
    if (const auto whole = SmallWhole(literal, mark.negative)) return AddWhole(*whole, type, parameters);
    const auto number = NumberOf(literal, mark.negative);
    if (number && number->as_whole) return AddWhole(*number->as_whole, type, parameters);
    // Not in a condition, or the literal would not have come here: the server says what is wrong with it.
    RequireNoNul(literal.source);
    return parameters.AddWritten(number ? number->written : Content(literal));
  }
  if (any_number || type == kReal64 || type == kReal32 || type == kNumeric) {
    return AddNumber(literal, mark, parameters);
  }
  if (type == kBoolean && !IsText(literal)) {
    return parameters.AddWritten(std::strtod(std::string(literal.source).c_str(), nullptr) != 0 ? "t" : "f");
  }
  RequireNoNul(literal.source);
  parameters.AddWritten((mark.negative ? "-" : "") + Content(literal));
}

std::string BytesOf(std::string_view written) {
  // "\x" and two digits a byte.
  const auto digit = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
  std::string bytes;
  bytes.reserve(written.size() / 2);
  for (std::size_t at = 2; at + 1 < written.size(); at += 2) {
    bytes += static_cast<char>(digit(written[at]) << 4 | digit(written[at + 1]));
  }
  return bytes;
}

Value NumberValue(std::string_view written) {
  std::int64_t whole = 0;
  const char* const end = written.data() + written.size();
  if (const auto [behind, error] = std::from_chars(written.data(), end, whole); error == std::errc() && behind == end) {
    return whole;
  }
  return std::strtod(std::string(written).c_str(), nullptr);
}

}  // namespace

std::vector<bool> UnfitLiterals(const Rewritten& rewritten, const PostgresqlPrepared& prepared,
                                const std::vector<Literal>& literals) {
  std::vector<bool> unfit;
  for (std::size_t i = 0; i < literals.size(); ++i) {
    const Mark& mark = rewritten.marks[i];
    if (!mark.in_condition || !TakesWhole(prepared, i)) continue;
    auto whole = SmallWhole(literals[i], mark.negative);
    if (!whole) {
      const auto number = NumberOf(literals[i], mark.negative);
      if (number) whole = number->as_whole;
    }
    if (whole && Fits(*whole, prepared.types[i])) continue;
    unfit.resize(literals.size());
    unfit[i] = true;
  }
  return unfit;
}

void AddLiterals(const Rewritten& rewritten, const PostgresqlPrepared& prepared, const std::vector<Literal>& literals,
                 PostgresqlParameters& parameters) {
  parameters.Clear();
  for (std::size_t i = 0; i < literals.size(); ++i) {
    AddLiteral(literals[i], rewritten.marks[i], prepared.types[i], prepared.any_number[i], parameters);
  }
}

void AddField(const NewField& field, Oid type, PostgresqlParameters& parameters) {
  const Value& value = field.value;
  switch (value.kind()) {
    case Value::Kind::kNull:
      return parameters.AddNull();
    case Value::Kind::kBoolean:
      return parameters.AddWritten(type == kBoolean ? (value.Boolean() ? "t" : "f") : (value.Boolean() ? "-1" : "0"));
    case Value::Kind::kWhole:
      return AddWhole(value.Whole(), type, parameters);
    case Value::Kind::kDouble: {
      char digits[40];
      std::snprintf(digits, sizeof digits, "%.17g", value.Double());
      return parameters.AddWritten(digits);
    }
    case Value::Kind::kText:
      break;
  }
  if (type == kBytes) return parameters.AddBytes(value.Text());
  RequireNoNul(value.Text());
  if (postgresql_type::IsText(type)) return parameters.AddBytes(value.Text());
  parameters.AddWritten(value.Text());
}

Value FieldOf(const PGresult* result, int row, int column) {
  if (PQgetisnull(result, row, column) != 0) return {};
  const std::string_view written(PQgetvalue(result, row, column),
                                 static_cast<std::size_t>(PQgetlength(result, row, column)));
  switch (PQftype(result, column)) {
    case kWhole64:
    case kWhole32:
    case kWhole16:
    case kObject:
    case kNumeric:
      return NumberValue(written);
    case kReal64:
    case kReal32:
      return std::strtod(std::string(written).c_str(), nullptr);
    case kBoolean:
      return written == "t";
    case kBytes:
      return BytesOf(written);
    default:
      return std::string(written);
  }
}

}  // namespace talm_flow::adapters
