#include "support/rows.h"

#include <algorithm>
#include <utility>

#include "db/schema.h"
#include "support/world.h"

namespace talm_flow::test {
namespace {

/// The tables with their keys, in the order of the schema.
std::vector<std::pair<std::string, std::string>> TablesWithKeys(Connection& connection) {
  std::vector<std::pair<std::string, std::string>> tables;
  for (const db::Table& table : db::Tables()) tables.emplace_back(table.name, table.key);
  for (const std::string& form : RowsOf(connection, "select distinct TableID from TableName")) {
    tables.emplace_back(std::string(db::kFormTablePrefix) + form, db::kFormTableKey);
  }
  std::sort(tables.begin(), tables.end());
  return tables;
}

}  // namespace

std::vector<std::string> TableNames(Connection& connection) {
  std::vector<std::string> names;
  for (auto& [name, key] : TablesWithKeys(connection)) names.push_back(std::move(name));
  return names;
}

Dumper::Dumper(Connection& connection) : connection_(connection) {
  for (const auto& [name, key] : TablesWithKeys(connection)) {
    tables_.push_back({name, "select * from " + name + " order by " + key});
  }
}

std::string Dumper::Dump() const {
  std::string dump;
  for (const Table& table : tables_) {
    dump += table.name;
    dump += '\n';
    const auto rows = connection_.Open(table.query);
    for (; !rows->AtEnd(); rows->MoveNext()) {
      for (std::size_t i = 0; i < rows->ColumnCount(); ++i) {
        if (i > 0) dump += '|';
        const Value field = rows->FieldAt(i);
        dump += field.IsNull() ? "NULL" : field.IsText() ? Literal(field.Text()) : JoinedText(field);
      }
      dump += '\n';
    }
  }
  return dump;
}

}  // namespace talm_flow::test
