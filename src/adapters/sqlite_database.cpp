#include "adapters/sqlite_database.h"

#include <sqlite3.h>

#include <charconv>
#include <utility>

#include "adapters/sqlite_row_set.h"

namespace talm_flow::adapters {
namespace {

constexpr std::size_t kMostIdleHandles = 8;
/// A handle whose text was longer gives the memory back.
constexpr std::size_t kLargestIdleText = std::size_t{64} * 1024;

}  // namespace

SqliteDatabase::~SqliteDatabase() {
  while (readers_ != nullptr) readers_->Close();
}

void SqliteDatabaseCloser::operator()(sqlite3* database) const { sqlite3_close_v2(database); }

std::unique_ptr<RowSet> SqliteDatabase::Execute(std::string_view statement) {
  Shape shape = shapes_.Find(statement);
  return shape->rewritten.kind == StatementKind::kSelect ? Read(std::move(shape), statement) : Change(shape, statement);
}

std::unique_ptr<RowSet> SqliteDatabase::Open(std::string_view query) {
  Shape shape = shapes_.Find(query);
  if (shape->columns == nullptr) throw DatabaseError("the statement gives no rows", std::string(query));
  return shape->rewritten.kind == StatementKind::kSelect ? Read(std::move(shape), query) : Change(shape, query);
}

// ---- Handles --------------------------------------------------------------------------------------------------------

bool SqliteDatabase::PrepareHandle(SqliteShape& shape, std::string_view component_text) {
  const std::string& text = shape.rewritten.text;
  const char* tail = nullptr;
  sqlite3_stmt* prepared = nullptr;
  ++prepare_count_;
  const int result = sqlite3_prepare_v3(database_.get(), text.c_str(), static_cast<int>(text.size() + 1),
                                        SQLITE_PREPARE_PERSISTENT, &prepared, &tail);
  if (result != SQLITE_OK) return false;
  auto handle = std::make_unique<SqliteHandle>();
  handle->statement.reset(prepared);
  if (!HoldsNoStatement(tail)) {
    throw DatabaseError("a statement text holds one statement; something follows it", std::string(component_text));
  }
  if (prepared == nullptr) throw DatabaseError("the text holds no statement", std::string(component_text));
  if (shape.columns == nullptr && sqlite3_column_count(prepared) > 0) SetColumns(shape, prepared);
  shape.idle.push_back(std::move(handle));
  return true;
}

bool SqliteDatabase::Prepare(SqliteShape& shape, std::string_view text, const std::vector<Literal>& literals) {
  if (!PrepareHandle(shape, text)) return false;
  const int parameters = sqlite3_bind_parameter_count(shape.idle.back()->statement.get());
  return literals.empty() || static_cast<std::size_t>(parameters) == literals.size();
}

DatabaseError SqliteDatabase::Refusal(std::string_view text) { return ErrorOf(database_.get(), text); }

std::unique_ptr<SqliteHandle> SqliteDatabase::Acquire(SqliteShape& shape, std::string_view component_text) {
  if (shape.idle.empty() && !PrepareHandle(shape, component_text)) throw ErrorOf(database_.get(), component_text);
  auto handle = std::move(shape.idle.back());
  shape.idle.pop_back();
  return handle;
}

void SqliteDatabase::Release(SqliteShape& shape, std::unique_ptr<SqliteHandle> handle) {
  sqlite3_reset(handle->statement.get());
  if (shape.idle.size() == kMostIdleHandles) return;
  if (handle->text.capacity() > kLargestIdleText) handle->text = {};
  shape.idle.push_back(std::move(handle));
}

// ---- Running --------------------------------------------------------------------------------------------------------

bool SqliteDatabase::Start(SqliteShape& shape, std::unique_ptr<SqliteHandle>& handle, std::string_view text) {
  const int result = sqlite3_step(handle->statement.get());
  if (shape.columns != nullptr) {
    if (const int count = RepreparationsOf(handle->statement.get()); count != handle->repreparations) {
      handle->repreparations = count;
      SetColumns(shape, handle->statement.get());
    }
  }
  if (result == SQLITE_ROW) return true;
  if (result != SQLITE_DONE) {
    DatabaseError error = ErrorOf(database_.get(), text);
    Release(shape, std::move(handle));
    // What was learnt about the tables may be out of date: another connection can have changed them.
    if (result == SQLITE_ERROR) shapes_.Forget(shape);
    throw error;
  }
  Release(shape, std::move(handle));
  return false;
}

std::unique_ptr<RowSet> SqliteDatabase::Read(Shape shape, std::string_view text) {
  auto handle = Acquire(*shape, text);
  BindLiterals(*handle, text, shapes_.literals(), TextKeeper::kHandle);
  const bool has_row = Start(*shape, handle, text);
  return std::make_unique<SqliteRowSet>(*this, std::move(shape), std::move(handle), has_row);
}

std::unique_ptr<RowSet> SqliteDatabase::Change(const Shape& shape, std::string_view text) {
  TakeRemainingRows();
  auto handle = Acquire(*shape, text);
  const bool may_change_tables =
      shape->rewritten.kind == StatementKind::kOther && sqlite3_stmt_readonly(handle->statement.get()) == 0;
  BindLiterals(*handle, text, shapes_.literals(),
               shape->columns != nullptr ? TextKeeper::kHandle : TextKeeper::kCaller);
  const bool has_row = Start(*shape, handle, text);
  std::unique_ptr<SqliteRowSet> rows;
  if (shape->columns != nullptr) {
    rows = std::make_unique<SqliteRowSet>(*this, shape, std::move(handle), has_row);
    rows->TakeRemaining();
    if (rows->pending_error_) throw DatabaseError(*rows->pending_error_);
  }
  if (may_change_tables) shapes_.ForgetAll();
  return rows;
}

void SqliteDatabase::RunOwn(std::string_view text) {
  TakeRemainingRows();
  const Shape shape = shapes_.Own(text);
  auto handle = Acquire(*shape, text);
  Start(*shape, handle, text);
}

void SqliteDatabase::InsertRow(const TableName& table, const std::vector<NewField>& fields) {
  const std::string text = InsertStatement(dialect(), table, fields);
  TakeRemainingRows();
  const Shape shape = shapes_.Own(text);
  auto handle = Acquire(*shape, text);
  int number = 0;
  for (const NewField& field : fields) {
    ++number;
    if (field.binary) {
      BindBinary(handle->statement.get(), number, field.value.Text());
    } else {
      BindValue(handle->statement.get(), number, field.value);
    }
  }
  Start(*shape, handle, text);
}

bool SqliteDatabase::HasTable(std::string_view table) {
  return sqlite3_table_column_metadata(database_.get(), nullptr, std::string(table).c_str(), nullptr, nullptr, nullptr,
                                       nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool SqliteDatabase::HasColumn(const TableName& table, std::string_view column) {
  return sqlite3_table_column_metadata(database_.get(), table.schema.empty() ? nullptr : table.schema.c_str(),
                                       table.name.c_str(), std::string(column).c_str(), nullptr, nullptr, nullptr,
                                       nullptr, nullptr) == SQLITE_OK;
}

void SqliteDatabase::TakeRemainingRows() {
  while (readers_ != nullptr) readers_->TakeRemaining();
}

void SqliteDatabase::AddReader(SqliteRowSet& row_set) {
  row_set.next_ = readers_;
  if (readers_ != nullptr) readers_->previous_ = &row_set;
  readers_ = &row_set;
}

void SqliteDatabase::RemoveReader(SqliteRowSet& row_set) {
  (row_set.previous_ != nullptr ? row_set.previous_->next_ : readers_) = row_set.next_;
  if (row_set.next_ != nullptr) row_set.next_->previous_ = row_set.previous_;
  row_set.previous_ = row_set.next_ = nullptr;
}

// ---- Transactions ---------------------------------------------------------------------------------------------------

void SqliteDatabase::Begin() { RunOwn("begin immediate"); }
void SqliteDatabase::Commit() { RunOwn("commit"); }
void SqliteDatabase::Rollback() { RunOwn("rollback"); }
bool SqliteDatabase::InTransaction() const { return sqlite3_get_autocommit(database_.get()) == 0; }

// Savepoints of one name nest; the innermost is meant.
void SqliteDatabase::SetSavepoint() { RunOwn("savepoint unit_of_work"); }
void SqliteDatabase::ReleaseSavepoint() { RunOwn("release unit_of_work"); }
void SqliteDatabase::RollbackToSavepoint() {
  RunOwn("rollback to unit_of_work");
  RunOwn("release unit_of_work");
}

bool SqliteDatabase::MayBeRepeated(const DatabaseError& error) const {
  constexpr int kPrimaryCode = 0xFF;
  int code = 0;
  const std::string& state = error.State();
  if (std::from_chars(state.data(), state.data() + state.size(), code).ec != std::errc()) return false;
  return (code & kPrimaryCode) == SQLITE_BUSY || (code & kPrimaryCode) == SQLITE_LOCKED;
}

}  // namespace talm_flow::adapters
