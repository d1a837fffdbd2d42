#pragma once

/// From the dialect that texts come in to the one that an engine speaks.
///
///   Select Top n ...     the row limit goes to the end of its select, at any depth of nesting
///   @@IDENTITY           the engine's expression for the key given last
///   unordered selects    over one plain table come in key order; rows that "Order By" leaves tied do too
///
/// Key order is asked for where rows leave the statement or a limit chooses among them: in the outermost select, in the
/// select that feeds an insert, and in every select with "Top". Aggregates, "Distinct", "Group By", compound selects,
/// joins, subqueries and views have no key to go by and keep the engine's order.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/sql_text.h"

namespace talm_flow::adapters {

/// What an engine calls things.
struct Dialect {
  std::string_view identity;    ///< the key given last on this connection
  bool numbered_marks = false;  ///< $1, $2, ... instead of ?
};

/// A table, without quotes; the schema is empty when the statement names none.
struct TableName {
  std::string schema;
  std::string name;
};

/// The key of a stored table, in the engine's eyes.
struct TableKey {
  /// What rows are ordered by, as it stands behind "table."; empty when the table has no key (or is no table).
  std::vector<std::string> order;
  /// Names, in any case, that mean the whole key.
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

/// A shape in the engine's dialect.
struct Rewritten {
  std::string text;
  std::vector<std::size_t> marks;  ///< where in `text` the marks stand
  StatementKind kind = StatementKind::kOther;
  /// A literal stands where a parameter would mean something else; all go back into the text.
  bool literals_inline = false;
  /// The table that an outermost select over one plain table reads; without a name when there is none such.
  TableName table;
};

[[nodiscard]] Rewritten Rewrite(std::string_view shape, const Dialect& dialect, TableKeys& keys);

/// A name as written, without its quotes.
[[nodiscard]] std::string UnquotedName(std::string_view name);

}  // namespace talm_flow::adapters
