#include "adapters/sqlite_table_keys.h"

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/sqlite_statement.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

constexpr std::string_view kOwnTables = "sqlite_";

struct Column {
  std::string name;
  std::string type;
  int place_in_key = 0;  // from 1; 0 for the others
};

std::vector<Column> ColumnsOfTable(sqlite3* database, const TableName& table) {
  std::vector<Column> columns;
  sqlite3_stmt* prepared = nullptr;
  constexpr char kText[] = "select name, type, pk from pragma_table_info(?, ?)";
  if (sqlite3_prepare_v2(database, kText, sizeof kText, &prepared, nullptr) != SQLITE_OK) return columns;
  const std::unique_ptr<sqlite3_stmt, SqliteStatementDeleter> statement(prepared);
  const Value name(table.name);  // bound by its address: it outlives the reading
  BindValue(prepared, 1, name);
  const Value schema = table.schema.empty() ? Value() : Value(table.schema);
  BindValue(prepared, 2, schema);
  while (sqlite3_step(prepared) == SQLITE_ROW) {
    columns.push_back(
        {ColumnValue(prepared, 0).Text(), ColumnValue(prepared, 1).Text(), sqlite3_column_int(prepared, 2)});
  }
  return columns;
}

}  // namespace

TableKey SqliteTableKeys::Find(const TableName& table) {
  TableKey key;
  // The engine's own tables answer to names by which their columns cannot be qualified.
  if (EqualIgnoringAsciiCase(table.name.substr(0, kOwnTables.size()), kOwnTables)) return key;
  const std::vector<Column> columns = ColumnsOfTable(database_, table);
  if (columns.empty()) return key;
  std::map<int, std::string> primary;
  for (const Column& column : columns) {
    if (column.place_in_key > 0) primary.emplace(column.place_in_key, column.name);
  }
  for (const char* const row_number : {"rowid", "_rowid_", "oid"}) {
    const bool hidden = std::any_of(columns.begin(), columns.end(), [row_number](const Column& column) {
      return EqualIgnoringAsciiCase(column.name, row_number);
    });
    if (hidden) continue;
    const char* const schema = table.schema.empty() ? nullptr : table.schema.c_str();
    if (sqlite3_table_column_metadata(database_, schema, table.name.c_str(), row_number, nullptr, nullptr, nullptr,
                                      nullptr, nullptr) != SQLITE_OK) {
      break;  // a view, or a table without row numbers
    }
    if (key.order.empty()) key.order.emplace_back(row_number);
    key.names.emplace_back(row_number);
  }
  if (key.order.empty()) {
    for (const auto& [place, name] : primary) key.order.push_back(QuotedName(dialect_, name));
    if (primary.size() == 1) key.names.push_back(primary.begin()->second);
    return key;
  }
  // A lone primary key of just this type is the row number by another name.
  for (const Column& column : columns) {
    if (column.place_in_key == 1 && primary.size() == 1 && EqualIgnoringAsciiCase(column.type, "integer")) {
      key.names.push_back(column.name);
    }
  }
  return key;
}

}  // namespace talm_flow::adapters
