#include <sqlite3.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "adapters/sqlite_database.h"
#include "talm_flow/error.h"

namespace talm_flow::adapters {
namespace {

constexpr int kBusyMilliseconds = 5000;

/// What every connection is set to: 16 MiB of pages kept, temporary tables in memory, names in double quotes never read
/// as texts.
constexpr char kSettings[] = "pragma cache_size=-16384; pragma temp_store=memory";

[[noreturn]] void Fail(const std::string& path, const std::string& reason, const std::string& state = {}) {
  throw DatabaseError("cannot open the database \"" + path + "\": " + reason, {}, state);
}

void CheckPath(const std::string& path, OpenMode mode) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  if (std::filesystem::is_directory(status)) Fail(path, "it is a directory");
  if (mode == OpenMode::kExisting && !std::filesystem::exists(status)) Fail(path, "it does not exist");
}

/// Settings that fail make the whole opening fail.
void Set(sqlite3* database, const std::string& path, const char* statements) {
  if (sqlite3_exec(database, statements, nullptr, nullptr, nullptr) != SQLITE_OK) {
    Fail(path, sqlite3_errmsg(database), std::to_string(sqlite3_extended_errcode(database)));
  }
}

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& path, OpenMode mode, Synchronous synchronous)
    : EngineDatabase(SqliteDialect()), keys_(dialect()) {
  const bool in_memory = path.empty();
  if (!in_memory) CheckPath(path, mode);
  // A connection and its row sets belong to one thread at a time: the engine need not lock.
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (mode == OpenMode::kCreate ? SQLITE_OPEN_CREATE : 0) |
                    (in_memory ? SQLITE_OPEN_MEMORY : 0);
  // A path is a path, even when it begins like a URI or is the engine's word for memory.
  const std::string name = in_memory ? ":memory:" : path.front() == '/' ? path : "./" + path;
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(name.c_str(), &opened, flags, nullptr);
  database_.reset(opened);
  if (result != SQLITE_OK) {
    Fail(path, opened == nullptr ? sqlite3_errstr(result) : sqlite3_errmsg(opened), std::to_string(result));
  }
  keys_.Ask(opened);
  sqlite3_extended_result_codes(opened, 1);
  sqlite3_busy_timeout(opened, kBusyMilliseconds);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  // Reads the file's head: this is where a file that is no database shows.
  Set(opened, path, "pragma schema_version");
  Set(opened, path, kSettings);
  if (!in_memory && sqlite3_db_readonly(opened, "main") == 0) Set(opened, path, "pragma journal_mode=wal");
  Set(opened, path, synchronous == Synchronous::kFull ? "pragma synchronous=full" : "pragma synchronous=normal");
}

}  // namespace talm_flow::adapters
