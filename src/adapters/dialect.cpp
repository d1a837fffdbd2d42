#include "adapters/dialect.h"

#include <array>

#include "adapters/reserved_words.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

constexpr Dialect kSqliteDialect = {.identity = "last_insert_rowid()", .name = "sqlite", .nul_text_type = "text"};

constexpr Dialect kPostgresqlDialect = {.identity = "lastval()",
                                        .numbered_marks = true,
                                        .name = "postgresql",
                                        .nulls_last = true,
                                        .types_from_context = true,
                                        .quotes = NameQuotes::kAnsiLowerCase,
                                        .reserved = kPostgresqlReserved};

constexpr Dialect kMariadbDialect = {.identity = "last_insert_id()",
                                     .name = "mariadb",
                                     .derived_limits = true,
                                     .quotes = NameQuotes::kBackticks,
                                     .reserved = kMariadbReserved,
                                     .nul_text_type = "char",
                                     .tables_by_case = true,
                                     .default_row = " () values ()"};

constexpr Dialect kTsqlDialect = {.identity = "@@IDENTITY",
                                  .name = "tsql",
                                  .native = true,
                                  .quotes = NameQuotes::kBrackets,
                                  .text_prefix = "N",
                                  .nul_text_type = "nvarchar(max)"};

constexpr std::array kDialects = {&kSqliteDialect, &kPostgresqlDialect, &kMariadbDialect, &kTsqlDialect};

std::string Hexadecimal(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string digits;
  for (const char c : bytes) {
    digits += kDigits[static_cast<unsigned char>(c) >> 4];
    digits += kDigits[static_cast<unsigned char>(c) & 15];
  }
  return digits;
}

}  // namespace

const Dialect& SqliteDialect() { return kSqliteDialect; }
const Dialect& PostgresqlDialect() { return kPostgresqlDialect; }
const Dialect& MariadbDialect() { return kMariadbDialect; }
const Dialect& TsqlDialect() { return kTsqlDialect; }

std::string KnownDialects() {
  std::string known;
  for (const Dialect* const dialect : kDialects) known.append(known.empty() ? "" : ", ").append(dialect->name);
  return known;
}

const Dialect& DialectNamed(std::string_view name) {
  for (const Dialect* const dialect : kDialects) {
    if (dialect->name == name) return *dialect;
  }
  throw ArgumentError("unknown dialect \"" + std::string(name) + "\"; known: " + KnownDialects());
}

std::string AsciiLowerCase(std::string_view name) {
  std::string lower(name);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

std::string QuotedName(const Dialect& dialect, std::string_view name) {
  switch (dialect.quotes) {
    case NameQuotes::kAnsiLowerCase:
      return "\"" + ReplaceAll(AsciiLowerCase(name), "\"", "\"\"") + "\"";
    case NameQuotes::kBackticks:
      return "`" + ReplaceAll(name, "`", "``") + "`";
    case NameQuotes::kBrackets:
      return "[" + ReplaceAll(name, "]", "]]") + "]";
    case NameQuotes::kAnsi:
      break;
  }
  return "\"" + ReplaceAll(name, "\"", "\"\"") + "\"";
}

std::string QuotedText(const Dialect& dialect, std::string_view content) {
  if (content.find('\0') == content.npos) {
    return std::string(dialect.text_prefix) + "'" + ReplaceAll(content, "'", "''") + "'";
  }
  if (dialect.nul_text_type.empty()) throw DatabaseError("the database's texts cannot hold the NUL character");
  const std::string type(dialect.nul_text_type);
  // A server that wants its texts in UTF-16 takes the bytes in that form only; the others take UTF-8.
  if (dialect.text_prefix.empty()) return "cast(x'" + Hexadecimal(content) + "' as " + type + ")";
  std::string text;
  for (std::size_t begin = 0;;) {
    const std::size_t end = content.find('\0', begin);
    text += QuotedText(dialect, content.substr(begin, end - begin));
    if (end == content.npos) return "(" + text + ")";
    text += "+nchar(0)+";
    begin = end + 1;
  }
}

}  // namespace talm_flow::adapters
