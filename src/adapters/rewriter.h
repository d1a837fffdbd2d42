#pragma once

/// From the dialect that texts come in to the one that an engine speaks.
///
///   Select Top n ...     the row limit goes to the end of its select, at any depth of nesting
///   @@IDENTITY           the engine's expression for the key given last
///   unordered selects    over one plain table come in key order; rows that "Order By" leaves tied do too
///   order by             Null comes first in ascending order, last in descending order
///   names                quoted in the engine's way where they are quoted, or are words that the engine reserves
///
/// Key order is asked for where rows leave the statement or a limit chooses among them: in the outermost select, in the
/// select that feeds an insert, and in every select with "Top". Aggregates, "Distinct", "Group By", compound selects,
/// joins, subqueries and views have no key to go by and keep the engine's order.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/dialect.h"
#include "adapters/sql_text.h"

namespace talm_flow::adapters {

/// A table, without quotes; the schema is empty when the statement names none.
struct TableName {
  std::string schema;
  std::string name;
};

/// The key of a stored table, in the engine's eyes.
struct TableKey {
  /// What rows are ordered by, as it stands behind "table."; empty when the table has no key (or is no table).
  std::vector<std::string> order;
  /// Names, in any case, that mean the whole key. None of them is ever Null.
  std::vector<std::string> names;
};

/// Where the rewriter learns about tables.
class TableKeys {
 public:
  virtual ~TableKeys() = default;
  [[nodiscard]] virtual TableKey Find(const TableName& table) = 0;
};

enum class StatementKind {
  kSelect,
  kChange,  ///< insert, update, delete, replace
  kOther,
};

/// Where a literal stood.
struct Mark {
  std::size_t begin;
  std::size_t size;
  bool negative = false;      ///< the literal takes a minus sign with it
  bool in_condition = false;  ///< behind "where", "having" or "on"
};

/// A shape in the engine's dialect.
struct Rewritten {
  std::string text;
  std::vector<Mark> marks;
  StatementKind kind = StatementKind::kOther;
  /// A literal stands where a parameter would mean something else; all go back into the text.
  bool literals_inline = false;
  /// What the outermost select calls its columns by "as", as written.
  std::vector<std::string> result_names;
  /// The table that an outermost select over one plain table reads; without a name when there is none such.
  TableName table;
};

[[nodiscard]] Rewritten Rewrite(std::string_view shape, const Dialect& dialect, TableKeys& keys);

/// The text with its literals where the marks stand.
/// @throws DatabaseError  as `QuotedText`.
[[nodiscard]] std::string WithLiterals(const Rewritten& rewritten, const std::vector<Literal>& literals,
                                       const Dialect& dialect);

/// A name as written, without its quotes.
[[nodiscard]] std::string UnquotedName(std::string_view name);

}  // namespace talm_flow::adapters
