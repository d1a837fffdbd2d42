#include "adapters/sqlite_row_set.h"

#include <sqlite3.h>

#include <utility>

#include "adapters/sqlite_database.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {

SqliteRowSet::SqliteRowSet(SqliteDatabase& database, std::shared_ptr<SqliteShape> shape,
                           std::unique_ptr<SqliteHandle> handle, bool has_row)
    : database_(database),
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
  if (index == SqliteColumns::kNone) throw DatabaseError("no such column: " + std::string(name), StatementText());
  return state_ == State::kReading ? ColumnValue(handle_->statement.get(), index) : values_[row_begin_ + index];
}

Value SqliteRowSet::FieldAt(std::size_t index) const {
  RequireRow();
  if (index >= columns_->names.size()) {
    throw DatabaseError("no such column: number " + std::to_string(index), StatementText());
  }
  return state_ == State::kReading ? ColumnValue(handle_->statement.get(), index) : values_[row_begin_ + index];
}

void SqliteRowSet::AddNew() {
  if (closed_) throw DatabaseError("the row set is closed");
  if (shape_->rewritten.table.name.empty()) throw DatabaseError("rows can be added to a query of one table only");
  new_row_.emplace();
}

SqliteNewField& SqliteRowSet::FieldOfNewRow(std::string_view name) {
  if (!new_row_) throw DatabaseError("no new row was begun");
  for (SqliteNewField& field : *new_row_) {
    if (EqualIgnoringAsciiCase(field.name, name)) return field;
  }
  if (!database_.HasColumn(shape_->rewritten.table, name)) {
    throw DatabaseError("no such column: " + std::string(name));
  }
  SqliteNewField& added = new_row_->emplace_back();
  added.name = name;
  return added;
}

void SqliteRowSet::SetField(std::string_view name, const Value& value) {
  SqliteNewField& field = FieldOfNewRow(name);
  field.value = value;
  field.binary = false;
}

void SqliteRowSet::SetBinary(std::string_view name, std::string_view bytes) {
  SqliteNewField& field = FieldOfNewRow(name);
  field.value = bytes;
  field.binary = true;
}

void SqliteRowSet::Update() {
  if (!new_row_) throw DatabaseError("no new row was begun");
  database_.InsertRow(shape_->rewritten.table, *new_row_);
  new_row_.reset();
}

void SqliteRowSet::Close() {
  Release();
  state_ = State::kAtEnd;
  closed_ = true;
  values_ = {};
  new_row_.reset();
}

}  // namespace talm_flow::adapters
