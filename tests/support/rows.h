#pragma once

/// Rows as texts, for comparison.

#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/conversion.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::test {

/// The current row: the fields joined by "|", Null as "NULL".
[[nodiscard]] inline std::string RowText(const RowSet& rows) {
  std::string line;
  for (std::size_t i = 0; i < rows.ColumnCount(); ++i) {
    if (i > 0) line += '|';
    const Value field = rows.FieldAt(i);
    line += field.IsNull() ? "NULL" : JoinedText(field);
  }
  return line;
}

/// The rows from the current one on.
[[nodiscard]] inline std::vector<std::string> RemainingRows(RowSet& rows) {
  std::vector<std::string> lines;
  for (; !rows.AtEnd(); rows.MoveNext()) lines.push_back(RowText(rows));
  return lines;
}

[[nodiscard]] inline std::vector<std::string> RowsOf(Connection& connection, std::string_view query) {
  const auto rows = connection.Open(query);
  return RemainingRows(*rows);
}

/// The tables of a complete installation and of the forms that are registered, as the schema spells them, by name.
[[nodiscard]] std::vector<std::string> TableNames(Connection& connection);

/// Every row of every table, a line each below the table's name, in the order of the keys, with texts as literals. Two
/// dumps are equal when the databases hold the same rows with the same keys.
class Dumper {
 public:
  /// @param connection  outlives this object; tables that appear later are not dumped.
  explicit Dumper(Connection& connection);

  [[nodiscard]] std::string Dump() const;

 private:
  struct Table {
    std::string name;
    std::string query;  ///< gives all rows
  };

  Connection& connection_;
  std::vector<Table> tables_;
};

[[nodiscard]] inline std::string Dump(Connection& connection) { return Dumper(connection).Dump(); }

}  // namespace talm_flow::test
