#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/row_sets.h"
#include "adapters/sqlite_statement.h"

namespace talm_flow::adapters {

class SqliteDatabase;

/// The rows of one query. It reads them from the engine as it goes; before anything changes the database, the
/// connection makes it take the rest into memory, so that it never shows what came later.
class SqliteRowSet : public AddingRowSet {
 public:
  /// Takes over a handle that has been stepped: it stands on a row, or `has_row` is false and it is finished.
  SqliteRowSet(SqliteDatabase& database, std::shared_ptr<SqliteShape> shape, std::unique_ptr<SqliteHandle> handle,
               bool has_row);
  ~SqliteRowSet() override;

  [[nodiscard]] bool AtEnd() const override { return state_ == State::kAtEnd; }
  [[nodiscard]] bool BeforeBegin() const override { return !had_row_; }
  void MoveNext() override;

  [[nodiscard]] Value Field(std::string_view name) const override;
  [[nodiscard]] std::size_t ColumnCount() const override { return columns_->names.size(); }
  [[nodiscard]] std::string_view ColumnName(std::size_t index) const override { return columns_->names.at(index); }
  [[nodiscard]] Value FieldAt(std::size_t index) const override;

  void Close() override;

  /// Takes the rest of the rows into memory and lets the engine go. An error on the way is raised when the reader comes
  /// to where it happened.
  void TakeRemaining();

 private:
  friend class SqliteDatabase;
  enum class State { kReading, kInMemory, kAtEnd };

  [[nodiscard]] const TableName& Table() const override { return shape_->rewritten.table; }
  /// Gives the statement back.
  void Release();
  void RequireRow() const;
  [[nodiscard]] std::string StatementText() const;

  SqliteDatabase& database_;
  std::shared_ptr<SqliteShape> shape_;
  const ColumnNames* columns_;
  std::unique_ptr<SqliteHandle> handle_;  // while reading
  State state_;
  bool had_row_;

  std::vector<Value> values_;  // row after row, in memory
  std::size_t row_begin_ = 0;
  std::optional<DatabaseError> pending_error_;

  // The connection's list of those that read.
  SqliteRowSet* previous_ = nullptr;
  SqliteRowSet* next_ = nullptr;
};

}  // namespace talm_flow::adapters
