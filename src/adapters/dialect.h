#pragma once

/// What engines call things, as data: everything that the shared pieces of the adapters need to know of an engine.

#include <span>
#include <string>
#include <string_view>

namespace talm_flow::adapters {

enum class NameQuotes {
  kAnsi,           ///< "Name"
  kAnsiLowerCase,  ///< "name": the engine folds names without quotes to lower case
  kBackticks,      ///< `Name`
  kBrackets,       ///< [Name]
};

struct Dialect {
  std::string_view identity;    ///< the key given last on this connection
  bool numbered_marks = false;  ///< $1, $2, ... instead of ?

  std::string_view name = {};  ///< as in "talmflow schema --dialect NAME"
  /// The engine speaks the dialect that the texts come in: nothing of them changes.
  bool native = false;
  /// Rows in ascending order end with Null unless the text asks for something else.
  bool nulls_last = false;
  /// A select inside another statement can be limited only inside a select of its own.
  bool derived_limits = false;
  /// What stands around a parameter decides about its type. A sign becomes a part of the parameter behind it, and a
  /// literal that is compared or combined with another literal stays in the text.
  bool types_from_context = false;
  NameQuotes quotes = NameQuotes::kAnsi;
  /// Words that the engine reserves for itself, in lower case and in order; where they are names they are quoted.
  std::span<const std::string_view> reserved = {};
  /// Stands before a text literal's first quote.
  std::string_view text_prefix = {};
  /// What a text with NUL characters is cast to from its bytes; empty when texts cannot hold any.
  std::string_view nul_text_type = {};
  /// Names of tables are told apart by their case: those of an installation are spelled as in its schema.
  bool tables_by_case = false;
  /// Behind the table's name in an insert that sets no column.
  std::string_view default_row = " default values";
};

[[nodiscard]] const Dialect& SqliteDialect();
[[nodiscard]] const Dialect& PostgresqlDialect();
[[nodiscard]] const Dialect& MariadbDialect();
/// Of servers that speak the component's dialect natively.
[[nodiscard]] const Dialect& TsqlDialect();

/// The names of all, separated by ", ".
[[nodiscard]] std::string KnownDialects();

/// @throws ArgumentError  unknown; the message lists what is known.
[[nodiscard]] const Dialect& DialectNamed(std::string_view name);

/// Only ASCII letters change, as engines fold their names.
[[nodiscard]] std::string AsciiLowerCase(std::string_view name);

/// A name in quotes, safe with any content.
[[nodiscard]] std::string QuotedName(const Dialect& dialect, std::string_view name);

/// A text literal with the given content.
/// @throws DatabaseError  it holds a NUL character, and the engine's texts cannot.
[[nodiscard]] std::string QuotedText(const Dialect& dialect, std::string_view content);

/// Waits, on PostgreSQL, until no other unit of work and no creation of tables runs; lasts as long as the transaction.
/// The number is "TALMFLOW".
inline constexpr char kPostgresqlTakeTurn[] = "select pg_advisory_xact_lock(6071217667447738199)";

}  // namespace talm_flow::adapters
