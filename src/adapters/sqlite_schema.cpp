#include "adapters/sqlite_schema.h"

#include <algorithm>

#include "adapters/sqlite_database.h"
#include "db/schema.h"
#include "talm_flow/error.h"
#include "talm_flow/host/unit_of_work.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

constexpr std::size_t kLongestUnitCode = 50;

std::string_view TypeName(db::ColumnKind kind) {
  switch (kind) {
    case db::ColumnKind::kInteger:
      return "INTEGER";
    case db::ColumnKind::kReal:
      return "REAL";
    case db::ColumnKind::kText:
      return "TEXT";
    case db::ColumnKind::kBinary:
      break;
  }
  return "BLOB";
}

/// Everything up to the columns. AUTOINCREMENT keeps the keys of deleted rows from being given again.
std::string TableHead(std::string_view table, std::string_view key) {
  return "CREATE TABLE IF NOT EXISTS " + QuotedName(table) + " (" + QuotedName(key) +
         " INTEGER PRIMARY KEY AUTOINCREMENT";
}

std::string ColumnDefinition(std::string_view name, db::ColumnKind kind) {
  return ", " + QuotedName(name) + " " + std::string(TypeName(kind));
}

std::string TableDefinition(const db::Table& table) {
  std::string text = TableHead(table.name, table.key);
  for (const db::Column& column : table.columns) {
    text += ColumnDefinition(column.name, column.kind);
    if (column.initial == db::ColumnDefault::kZero) text += " DEFAULT 0";
    if (column.initial == db::ColumnDefault::kOne) text += " DEFAULT 1";
  }
  return text + ")";
}

std::string IndexDefinition(const db::Table& table, const db::Index& index) {
  std::string name(table.name);
  std::string columns;
  for (const std::string_view column : Split(index.columns, ",")) {
    name.append("_").append(column);
    columns.append(columns.empty() ? "" : ", ").append(QuotedName(column));
  }
  return "CREATE INDEX IF NOT EXISTS " + QuotedName(name) + " ON " + QuotedName(table.name) + " (" + columns + ")";
}

bool IsUnitCode(std::string_view code) {
  const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  return !code.empty() && code.size() <= kLongestUnitCode && letter(code.front()) &&
         std::all_of(code.begin(), code.end(), [&](char c) { return letter(c) || (c >= '0' && c <= '9') || c == '_'; });
}

}  // namespace

std::string QuotedName(std::string_view name) { return "\"" + ReplaceAll(name, "\"", "\"\"") + "\""; }

std::vector<std::string> SqliteSchema() {
  std::vector<std::string> statements;
  for (const db::Table& table : db::Tables()) {
    statements.push_back(TableDefinition(table));
    for (const db::Index& index : table.indexes) statements.push_back(IndexDefinition(table, index));
  }
  return statements;
}

std::string SqliteFormTable(std::string_view table, const std::vector<std::pair<std::string, std::string>>& units) {
  std::string text = TableHead(table, db::kFormTableKey);
  for (const db::Column& column : db::FormTableColumns()) text += ColumnDefinition(column.name, column.kind);
  for (const auto& [code, type] : units) text += ColumnDefinition(code, db::InputUnitKind(type));
  return text + ")";
}

void CheckInputUnits(const std::vector<std::pair<std::string, std::string>>& units) {
  std::vector<std::string> taken = {LowerCase(db::kFormTableKey)};
  for (const db::Column& column : db::FormTableColumns()) taken.push_back(LowerCase(column.name));
  for (const auto& [code, type] : units) {
    if (!IsUnitCode(code)) {
      throw ArgumentError("\"" + code +
                          "\" is no code of an input unit: 1 to 50 ASCII letters, digits or \"_\", a letter first");
    }
    std::string lower = LowerCase(code);
    if (std::find(taken.begin(), taken.end(), lower) != taken.end()) {
      throw ArgumentError("the form's table already has a column \"" + code + "\"");
    }
    taken.push_back(std::move(lower));
  }
}

// ---- The connection's part ------------------------------------------------------------------------------------------

std::vector<std::string> SqliteDatabase::MissingTables() {
  std::vector<std::string> missing;
  for (const db::Table& table : db::Tables()) {
    if (!HasTable(table.name)) missing.emplace_back(table.name);
  }
  return missing;
}

void SqliteDatabase::CreateTables() {
  host::UnitOfWork(*this).Run([this] {
    for (const std::string& statement : SqliteSchema()) (void)Execute(statement);
  });
}

void SqliteDatabase::CreateFormTable(std::int32_t table_id,
                                     const std::vector<std::pair<std::string, std::string>>& units) {
  if (table_id < 1) throw ArgumentError("a form's number is at least 1, not " + std::to_string(table_id));
  CheckInputUnits(units);
  const std::string number = std::to_string(table_id);
  const std::string table = std::string(db::kFormTablePrefix) + number;
  host::UnitOfWork(*this).Run([&] {
    if (HasTable(table)) return;
    (void)Execute(SqliteFormTable(table, units));
    if (Open("select Top 1 ID from TableName where TableID=" + number)->AtEnd()) {
      (void)Execute("insert into TableName (TableID) values (" + number + ")");
    }
    for (const auto& [code, type] : units) {
      std::string insert = "insert into TableInUnitConstruction (TableID,InUnitID,InUnitType) values (";
      insert.append(number).append(",'").append(code).append("','").append(ReplaceAll(type, "'", "''")).append("')");
      (void)Execute(insert);
    }
  });
}

}  // namespace talm_flow::adapters
