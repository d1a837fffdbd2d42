#pragma once

/// Prepared statements of the embedded engine.

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/rewriter.h"
#include "adapters/row_sets.h"
#include "talm_flow/error.h"
#include "talm_flow/value.h"

struct sqlite3;
struct sqlite3_stmt;

namespace talm_flow::adapters {

struct SqliteStatementDeleter {
  void operator()(sqlite3_stmt* statement) const;
};

/// One prepared statement, and what its parameters are bound to.
struct SqliteHandle {
  std::unique_ptr<sqlite3_stmt, SqliteStatementDeleter> statement;
  std::string text;           ///< the statement text when it is kept, then texts without their doubled quotes
  std::size_t text_size = 0;  ///< of the statement text alone
  int repreparations = 0;     ///< how often the engine has prepared it anew, because the schema changed
};

/// Everything known of a shape. Several row sets of one shape may be open at once, each with a handle of its own.
struct SqliteShape {
  Rewritten rewritten;
  std::vector<std::unique_ptr<SqliteHandle>> idle;
  const ColumnNames* columns = nullptr;  ///< null for a statement without a result
  /// All that row sets may still refer to. There is more than one only after another schema gave other names.
  std::vector<std::unique_ptr<const ColumnNames>> all_columns;
};

/// Who keeps the text while a statement runs.
enum class TextKeeper {
  kCaller,  ///< the statement ends before the text does
  kHandle,  ///< the statement runs on: the handle takes a copy
};

/// Binds the literals of `text` as what they would have been inside it. Nothing is copied twice, and no memory is asked
/// for once the handle's buffer has grown.
void BindLiterals(SqliteHandle& handle, std::string_view text, const std::vector<Literal>& literals, TextKeeper keeper);

/// Binds a value to the parameter `number` (from 1); texts are copied.
void BindValue(sqlite3_stmt* statement, int number, const Value& value);
void BindBinary(sqlite3_stmt* statement, int number, std::string_view bytes);

/// A field of the current row; binary content as a text of its bytes.
[[nodiscard]] Value ColumnValue(sqlite3_stmt* statement, std::size_t column);

/// Makes the columns of `statement` those of its shape.
void SetColumns(SqliteShape& shape, sqlite3_stmt* statement);

/// How often the engine prepared the statement anew by itself.
[[nodiscard]] int RepreparationsOf(sqlite3_stmt* statement);

/// The engine's last error.
[[nodiscard]] DatabaseError ErrorOf(sqlite3* database, std::string_view text);

}  // namespace talm_flow::adapters
