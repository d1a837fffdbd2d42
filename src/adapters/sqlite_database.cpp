#include "adapters/sqlite_database.h"

#include <sqlite3.h>

#include <charconv>
#include <utility>

#include "adapters/sqlite_row_set.h"
#include "adapters/sqlite_schema.h"
#include "adapters/sqlite_table_keys.h"

namespace talm_flow::adapters {
namespace {

constexpr Dialect kDialect = {.identity = "last_insert_rowid()"};
constexpr std::size_t kMostIdleHandles = 8;
/// Longer shapes and longer texts with literals in them are seldom seen twice.
constexpr std::size_t kLongestKept = std::size_t{16} * 1024;
/// A handle whose text was longer gives the memory back.
constexpr std::size_t kLargestIdleText = std::size_t{64} * 1024;

}  // namespace

SqliteDatabase::~SqliteDatabase() {
  while (readers_ != nullptr) readers_->Close();
}

void SqliteDatabaseCloser::operator()(sqlite3* database) const { sqlite3_close_v2(database); }

std::unique_ptr<RowSet> SqliteDatabase::Execute(std::string_view statement) {
  Shape shape = Find(statement);
  return shape->rewritten.kind == StatementKind::kSelect ? Read(std::move(shape), statement) : Change(shape, statement);
}

std::unique_ptr<RowSet> SqliteDatabase::Open(std::string_view query) {
  Shape shape = Find(query);
  if (shape->columns == nullptr) throw DatabaseError("the statement gives no rows", std::string(query));
  return shape->rewritten.kind == StatementKind::kSelect ? Read(std::move(shape), query) : Change(shape, query);
}

// ---- Shapes ---------------------------------------------------------------------------------------------------------

SqliteDatabase::Shape SqliteDatabase::Find(std::string_view text) {
  if (const Shape* const follower = shapes_.Follow(text, scanned_.literals)) return *follower;
  scanned_.Scan(text);
  if (!scanned_.unterminated) {
    const Shape* const known = shapes_.Find(scanned_.shape);
    if (known == nullptr) return Analyse(text);
    Shape shape = *known;
    return shape->rewritten.literals_inline ? FindInline(text, *shape) : shape;
  }
  // The engine's own words for it, if it has any.
  SqliteShape as_it_is;
  as_it_is.rewritten.text = text;
  if (!Prepare(as_it_is, text)) throw ErrorOf(database_.get(), text);
  throw DatabaseError("a quote is not closed", std::string(text));
}

SqliteDatabase::Shape SqliteDatabase::Analyse(std::string_view text) {
  if (scanned_.shape.find('\0') != std::string::npos) {
    throw DatabaseError("a statement text holds no NUL character outside of quotes", std::string(text));
  }
  SqliteTableKeys keys(database_.get());
  ShapePattern pattern(scanned_);
  auto shape = std::make_shared<SqliteShape>();
  shape->rewritten = Rewrite(scanned_.shape, kDialect, keys);
  Shape to_run = shape;
  if (!shape->rewritten.literals_inline && !PrepareWithMarks(*shape, text)) {
    if (scanned_.literals.empty()) throw ErrorOf(database_.get(), text);
    // Where the engine takes no parameter it may still take a literal; if not, its message speaks of the literal.
    shape->rewritten.literals_inline = true;
  }
  if (shape->rewritten.literals_inline) to_run = FindInline(text, *shape);
  if (IsKept(*shape, scanned_.shape)) {
    if (shape->rewritten.literals_inline) pattern = {};
    shapes_.Insert(scanned_.shape, std::move(shape), std::move(pattern));
  }
  return to_run;
}

SqliteDatabase::Shape SqliteDatabase::FindInline(std::string_view text, const SqliteShape& with_marks) {
  const bool kept = IsKept(with_marks, text);
  const Shape* const known = kept ? shapes_.Find(text) : nullptr;
  Shape shape = known != nullptr ? *known : std::make_shared<SqliteShape>();
  if (known == nullptr) {
    shape->rewritten = with_marks.rewritten;
    shape->rewritten.text = WithLiterals(with_marks.rewritten, scanned_.literals);
    if (!Prepare(*shape, text)) throw ErrorOf(database_.get(), text);
    if (kept) shapes_.Insert(text, shape);
  }
  scanned_.literals.clear();  // nothing is left to bind
  return shape;
}

bool SqliteDatabase::IsKept(const SqliteShape& shape, std::string_view key) {
  return shape.rewritten.kind != StatementKind::kOther && key.size() <= kLongestKept;
}

SqliteDatabase::Shape SqliteDatabase::Own(std::string_view text) {
  if (const Shape* const known = shapes_.Find(text)) return *known;
  auto shape = std::make_shared<SqliteShape>();
  shape->rewritten.text = text;
  shape->rewritten.kind = StatementKind::kChange;
  if (!Prepare(*shape, text)) throw ErrorOf(database_.get(), text);
  return shapes_.Insert(text, std::move(shape));
}

// ---- Handles --------------------------------------------------------------------------------------------------------

bool SqliteDatabase::Prepare(SqliteShape& shape, std::string_view component_text) {
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

bool SqliteDatabase::PrepareWithMarks(SqliteShape& shape, std::string_view component_text) {
  if (!Prepare(shape, component_text)) return false;
  const int parameters = sqlite3_bind_parameter_count(shape.idle.back()->statement.get());
  return static_cast<std::size_t>(parameters) == scanned_.literals.size();
}

std::unique_ptr<SqliteHandle> SqliteDatabase::Acquire(SqliteShape& shape, std::string_view component_text) {
  if (shape.idle.empty() && !Prepare(shape, component_text)) throw ErrorOf(database_.get(), component_text);
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
    if (result == SQLITE_ERROR) {
      // What was learnt about the tables may be out of date: another connection can have changed them.
      if (shape.rewritten.literals_inline) shapes_.Erase(scanned_.shape);
      shapes_.Erase(shape);
    }
    throw error;
  }
  Release(shape, std::move(handle));
  return false;
}

std::unique_ptr<RowSet> SqliteDatabase::Read(Shape shape, std::string_view text) {
  auto handle = Acquire(*shape, text);
  BindLiterals(*handle, text, scanned_.literals, TextKeeper::kHandle);
  const bool has_row = Start(*shape, handle, text);
  return std::make_unique<SqliteRowSet>(*this, std::move(shape), std::move(handle), has_row);
}

std::unique_ptr<RowSet> SqliteDatabase::Change(const Shape& shape, std::string_view text) {
  TakeRemainingRows();
  auto handle = Acquire(*shape, text);
  const bool may_change_tables =
      shape->rewritten.kind == StatementKind::kOther && sqlite3_stmt_readonly(handle->statement.get()) == 0;
  BindLiterals(*handle, text, scanned_.literals, shape->columns != nullptr ? TextKeeper::kHandle : TextKeeper::kCaller);
  const bool has_row = Start(*shape, handle, text);
  std::unique_ptr<SqliteRowSet> rows;
  if (shape->columns != nullptr) {
    rows = std::make_unique<SqliteRowSet>(*this, shape, std::move(handle), has_row);
    rows->TakeRemaining();
    if (rows->pending_error_) throw DatabaseError(*rows->pending_error_);
  }
  if (may_change_tables) shapes_.Clear();
  return rows;
}

void SqliteDatabase::RunOwn(std::string_view text) {
  TakeRemainingRows();
  const Shape shape = Own(text);
  auto handle = Acquire(*shape, text);
  Start(*shape, handle, text);
}

void SqliteDatabase::InsertRow(const TableName& table, const std::vector<SqliteNewField>& fields) {
  std::string text =
      "insert into " + (table.schema.empty() ? "" : QuotedName(table.schema) + ".") + QuotedName(table.name);
  std::string marks;
  for (const SqliteNewField& field : fields) {
    text.append(marks.empty() ? " (" : ",").append(QuotedName(field.name));
    marks += marks.empty() ? "?" : ",?";
  }
  text += fields.empty() ? " default values" : ") values (" + marks + ")";
  TakeRemainingRows();
  const Shape shape = Own(text);
  auto handle = Acquire(*shape, text);
  int number = 0;
  for (const SqliteNewField& field : fields) {
    ++number;
    if (field.binary) {
      BindBinary(handle->statement.get(), number, field.value.Text());
    } else {
      BindValue(handle->statement.get(), number, field.value);
    }
  }
  Start(*shape, handle, text);
}

bool SqliteDatabase::HasTable(std::string_view table) const {
  return sqlite3_table_column_metadata(database_.get(), nullptr, std::string(table).c_str(), nullptr, nullptr, nullptr,
                                       nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool SqliteDatabase::HasColumn(const TableName& table, std::string_view column) const {
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
