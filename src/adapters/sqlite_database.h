#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/engine_database.h"
#include "adapters/shape_finder.h"
#include "adapters/sqlite_statement.h"
#include "adapters/sqlite_table_keys.h"
#include "talm_flow/adapters/database.h"

namespace talm_flow::adapters {

class SqliteRowSet;

struct SqliteDatabaseCloser {
  void operator()(sqlite3* database) const;
};

/// A connection of the embedded engine. Statements are prepared once for each shape; see adapters/sql_text.h.
class SqliteDatabase : public EngineDatabase, private ShapeFinder<SqliteShape>::Engine {
 public:
  enum class Synchronous { kNormal, kFull };

  /// @param path  a file; empty for a private database in memory.
  SqliteDatabase(const std::string& path, OpenMode mode, Synchronous synchronous);
  ~SqliteDatabase() override;

  std::unique_ptr<RowSet> Execute(std::string_view statement) override;
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override;

  void Begin() override;
  void Commit() override;
  void Rollback() override;
  [[nodiscard]] bool InTransaction() const override;
  [[nodiscard]] bool OffersSavepoints() const override { return true; }
  void SetSavepoint() override;
  void ReleaseSavepoint() override;
  void RollbackToSavepoint() override;
  [[nodiscard]] bool MayBeRepeated(const DatabaseError& error) const override;

  /// The engine's own connection, for measuring what it costs by itself.
  [[nodiscard]] sqlite3* engine() const { return database_.get(); }

  /// How many statements the connection has had prepared so far.
  [[nodiscard]] std::size_t prepare_count() const { return prepare_count_; }

  static constexpr std::size_t kShapes = ShapeFinder<SqliteShape>::kShapes;

 private:
  friend class SqliteRowSet;
  using Shape = std::shared_ptr<SqliteShape>;

  TableKeys& Keys() override { return keys_; }
  bool Prepare(SqliteShape& shape, std::string_view text, const std::vector<Literal>& literals) override;
  [[nodiscard]] DatabaseError Refusal(std::string_view text) override;
  /// Prepares one more handle. @returns whether the engine took the text; if not, its error stands.
  bool PrepareHandle(SqliteShape& shape, std::string_view component_text);
  void RunOwn(std::string_view text);

  std::unique_ptr<SqliteHandle> Acquire(SqliteShape& shape, std::string_view component_text);
  static void Release(SqliteShape& shape, std::unique_ptr<SqliteHandle> handle);

  std::unique_ptr<RowSet> Read(Shape shape, std::string_view text);
  std::unique_ptr<RowSet> Change(const Shape& shape, std::string_view text);
  /// Runs a bound statement up to its first row. @returns whether there is one; if not, the handle is given back.
  bool Start(SqliteShape& shape, std::unique_ptr<SqliteHandle>& handle, std::string_view text);
  void InsertRow(const TableName& table, const std::vector<NewField>& fields) override;
  [[nodiscard]] bool HasTable(std::string_view table) override;
  [[nodiscard]] bool HasColumn(const TableName& table, std::string_view column) override;

  /// Before anything changes: every row set that still reads takes the rest of its rows into memory.
  void TakeRemainingRows();
  void AddReader(SqliteRowSet& row_set);
  void RemoveReader(SqliteRowSet& row_set);

  std::unique_ptr<sqlite3, SqliteDatabaseCloser> database_;
  SqliteTableKeys keys_;
  ShapeFinder<SqliteShape> shapes_{dialect(), *this};
  SqliteRowSet* readers_ = nullptr;
  std::size_t prepare_count_ = 0;
};

}  // namespace talm_flow::adapters
