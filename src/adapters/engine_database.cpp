#include "adapters/engine_database.h"

#include <algorithm>

#include "adapters/catalogue.h"
#include "adapters/schema_text.h"
#include "db/schema.h"
#include "talm_flow/error.h"
#include "talm_flow/host/unit_of_work.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {

template <typename Work>
void EngineDatabase::RunWhole(Work work) {
  if (CreatesTablesInTransactions()) {
    host::UnitOfWork(*this).Run(work);
  } else {
    work();
  }
}

std::vector<std::string> EngineDatabase::MissingTables() {
  std::vector<std::string> missing;
  for (const db::Table& table : db::Tables()) {
    if (!HasTable(table.name)) missing.emplace_back(table.name);
  }
  return missing;
}

void EngineDatabase::CreateTables() {
  RunWhole([this] {
    for (const std::string& statement : SchemaStatements(dialect_)) RunDefinition(statement);
  });
}

void EngineDatabase::CreateFormTable(std::int32_t table_id,
                                     const std::vector<std::pair<std::string, std::string>>& units) {
  if (table_id < 1) throw ArgumentError("a form's number is at least 1, not " + std::to_string(table_id));
  CheckInputUnits(units);
  const std::string number = std::to_string(table_id);
  const std::string table = std::string(db::kFormTablePrefix) + number;
  RunWhole([&] {
    if (HasTable(table)) return;
    RunDefinition(FormTableStatement(dialect_, table, units));
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

std::vector<TableDescription> EngineDatabase::DescribeTables() { return adapters::DescribeTables(*this, dialect_); }

void EngineDatabase::CreateFormTableLike(const TableDescription& form) {
  if (!form.FormNumber()) throw ArgumentError("\"" + form.name + "\" is not the table of a form");
  std::vector<std::pair<std::string, std::string>> units;
  for (const ColumnDescription& column : form.columns) {
    const auto usual = db::FormTableColumns();
    if (std::any_of(usual.begin(), usual.end(),
                    [&](const db::Column& known) { return EqualIgnoringAsciiCase(known.name, column.name); })) {
      continue;
    }
    if (column.kind != ColumnKind::kReal && column.kind != ColumnKind::kText) {
      throw ArgumentError("the column " + column.name + " of " + form.name + " holds neither numbers nor text");
    }
    units.emplace_back(column.name, column.kind == ColumnKind::kReal ? "InputNum" : "InputText");
  }
  CheckInputUnits(units);
  RunWhole([&] {
    if (!HasTable(form.name)) RunDefinition(FormTableStatement(dialect_, form.name, units));
  });
}

std::int64_t EngineDatabase::LastKey(const TableDescription& table) {
  return adapters::LastKey(*this, dialect_, table);
}

void EngineDatabase::ContinueKeys(const TableDescription& table, std::int64_t key) {
  adapters::ContinueKeys(*this, dialect_, table, key);
}

}  // namespace talm_flow::adapters
