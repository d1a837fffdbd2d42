#include "adapters/sqlite_row_set.h"

#include <sqlite3.h>

#include <utility>

#include "adapters/sqlite_database.h"

namespace talm_flow::adapters {

SqliteRowSet::SqliteRowSet(SqliteDatabase& database, std::shared_ptr<SqliteShape> shape,
                           std::unique_ptr<SqliteHandle> handle, bool has_row)
    : AddingRowSet(database),
      database_(database),
      shape_(std::move(shape)),
      columns_(shape_->columns),
      handle_(std::move(handle)),
      state_(has_row ? State::kReading : State::kAtEnd),
      had_row_(has_row) {
  if (has_row) database_.AddReader(*this);
}

SqliteRowSet::~SqliteRowSet() { Release(); }

void SqliteRowSet::Release() {
  if (!handle_) return;
  database_.RemoveReader(*this);
  SqliteDatabase::Release(*shape_, std::move(handle_));
}

std::string SqliteRowSet::StatementText() const {
  return handle_ ? handle_->text.substr(0, handle_->text_size) : std::string();
}

void SqliteRowSet::MoveNext() {
  if (state_ == State::kAtEnd) throw DatabaseError("the row set is at its end");
  if (state_ == State::kInMemory) {
    row_begin_ += columns_->names.size();
    if (row_begin_ < values_.size()) return;
    state_ = State::kAtEnd;
    values_ = {};
    if (pending_error_) throw DatabaseError(*pending_error_);
    return;
  }
  const int result = sqlite3_step(handle_->statement.get());
  if (result == SQLITE_ROW) return;
  state_ = State::kAtEnd;
  if (result == SQLITE_DONE) {
    Release();
    return;
  }
  DatabaseError error = ErrorOf(database_.database_.get(), StatementText());
  Release();
  throw error;
}

void SqliteRowSet::TakeRemaining() {
  if (state_ != State::kReading) return;
  sqlite3_stmt* const statement = handle_->statement.get();
  int result = SQLITE_ROW;
  for (; result == SQLITE_ROW; result = sqlite3_step(statement)) {
    for (std::size_t i = 0; i < columns_->names.size(); ++i) values_.push_back(ColumnValue(statement, i));
  }
  if (result != SQLITE_DONE) pending_error_ = ErrorOf(database_.database_.get(), StatementText());
  state_ = State::kInMemory;
  Release();
}

void SqliteRowSet::RequireRow() const {
  if (state_ == State::kAtEnd) throw DatabaseError("the row set has no current row");
}

Value SqliteRowSet::Field(std::string_view name) const {
  RequireRow();
  const std::size_t index = columns_->Find(name);
  if (index == ColumnNames::kNone) throw DatabaseError("no such column: " + std::string(name), StatementText());
  return state_ == State::kReading ? ColumnValue(handle_->statement.get(), index) : values_[row_begin_ + index];
}

Value SqliteRowSet::FieldAt(std::size_t index) const {
  RequireRow();
  if (index >= columns_->names.size()) {
    throw DatabaseError("no such column: number " + std::to_string(index), StatementText());
  }
  return state_ == State::kReading ? ColumnValue(handle_->statement.get(), index) : values_[row_begin_ + index];
}

void SqliteRowSet::Close() {
  Release();
  state_ = State::kAtEnd;
  values_ = {};
  EndAdding();
}

}  // namespace talm_flow::adapters
