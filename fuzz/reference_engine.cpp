#include "reference_engine.h"

#include <sqlite3.h>

#include <stdexcept>

#include "talm_flow/conversion.h"

namespace talm_flow::fuzz {
namespace {

struct Finalizer {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

std::string ColumnText(sqlite3_stmt* statement, int column) {
  const auto bytes = [&](const void* begin) {
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
    return "text " + (size == 0 ? std::string() : std::string(static_cast<const char*>(begin), size));
  };
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
      return "Null";
    case SQLITE_INTEGER:
      return "whole " + std::to_string(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
      return "number " + NumberText(sqlite3_column_double(statement, column));
    case SQLITE_TEXT:
      return bytes(sqlite3_column_text(statement, column));
    default:
      return bytes(sqlite3_column_blob(statement, column));  // binary content comes as a text of its bytes
  }
}

}  // namespace

void ReferenceEngine::Closer::operator()(sqlite3* database) const { sqlite3_close(database); }

ReferenceEngine::ReferenceEngine() {
  sqlite3* database = nullptr;
  const int result = sqlite3_open(":memory:", &database);
  database_.reset(database);
  if (result != SQLITE_OK) throw std::runtime_error("no database can be opened in memory");
}

bool ReferenceEngine::InTransaction() const { return sqlite3_get_autocommit(database_.get()) == 0; }

std::optional<Given> ReferenceEngine::Run(const std::string& statement) {
  sqlite3_stmt* prepared = nullptr;
  if (sqlite3_prepare_v2(database_.get(), statement.c_str(), static_cast<int>(statement.size() + 1), &prepared,
                         nullptr) != SQLITE_OK) {
    return std::nullopt;
  }
  const std::unique_ptr<sqlite3_stmt, Finalizer> owner(prepared);
  Given given;
  const int columns = sqlite3_column_count(prepared);
  for (int i = 0; i < columns; ++i) given.columns.emplace_back(sqlite3_column_name(prepared, i));
  int result = SQLITE_ROW;
  while ((result = sqlite3_step(prepared)) == SQLITE_ROW) {
    auto& row = given.rows.emplace_back();
    for (int i = 0; i < columns; ++i) row.push_back(ColumnText(prepared, i));
  }
  if (result != SQLITE_DONE) return std::nullopt;
  return given;
}

}  // namespace talm_flow::fuzz
