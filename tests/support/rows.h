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

}  // namespace talm_flow::test
