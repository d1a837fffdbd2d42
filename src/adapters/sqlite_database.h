#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/shape_cache.h"
#include "adapters/sqlite_statement.h"
#include "talm_flow/adapters/database.h"

namespace talm_flow::adapters {

class SqliteRowSet;
struct SqliteNewField;

struct SqliteDatabaseCloser {
  void operator()(sqlite3* database) const;
};

/// A connection of the embedded engine. Statements are prepared once for each shape; see adapters/sql_text.h.
class SqliteDatabase : public Database {
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

  [[nodiscard]] std::vector<std::string> MissingTables() override;
  void CreateTables() override;
  void CreateFormTable(std::int32_t table_id, const std::vector<std::pair<std::string, std::string>>& units) override;

  /// The engine's own connection, for measuring what it costs by itself.
  [[nodiscard]] sqlite3* engine() const { return database_.get(); }

  /// How many statements the connection has had prepared so far.
  [[nodiscard]] std::size_t prepare_count() const { return prepare_count_; }

  /// How many shapes are kept prepared.
  static constexpr std::size_t kShapes = 256;

 private:
  friend class SqliteRowSet;
  using Shape = std::shared_ptr<SqliteShape>;

  Shape Find(std::string_view text);
  Shape Analyse(std::string_view text);
  Shape FindInline(std::string_view text, const SqliteShape& with_marks);
  static bool IsKept(const SqliteShape& shape, std::string_view key);
  /// A statement of the adapter's own.
  Shape Own(std::string_view text);
  void RunOwn(std::string_view text);

  /// Prepares one more handle. @returns whether the engine took the text; if not, its error stands.
  bool Prepare(SqliteShape& shape, std::string_view component_text);
  bool PrepareWithMarks(SqliteShape& shape, std::string_view component_text);
  std::unique_ptr<SqliteHandle> Acquire(SqliteShape& shape, std::string_view component_text);
  static void Release(SqliteShape& shape, std::unique_ptr<SqliteHandle> handle);

  std::unique_ptr<RowSet> Read(Shape shape, std::string_view text);
  std::unique_ptr<RowSet> Change(const Shape& shape, std::string_view text);
  /// Runs a bound statement up to its first row. @returns whether there is one; if not, the handle is given back.
  bool Start(SqliteShape& shape, std::unique_ptr<SqliteHandle>& handle, std::string_view text);
  void InsertRow(const TableName& table, const std::vector<SqliteNewField>& fields);
  [[nodiscard]] bool HasTable(std::string_view table) const;
  [[nodiscard]] bool HasColumn(const TableName& table, std::string_view column) const;

  /// Before anything changes: every row set that still reads takes the rest of its rows into memory.
  void TakeRemainingRows();
  void AddReader(SqliteRowSet& row_set);
  void RemoveReader(SqliteRowSet& row_set);

  std::unique_ptr<sqlite3, SqliteDatabaseCloser> database_;
  ShapeCache<SqliteShape> shapes_{kShapes};
  ScannedText scanned_;
  SqliteRowSet* readers_ = nullptr;
  std::size_t prepare_count_ = 0;
};

}  // namespace talm_flow::adapters
