#include "recorded_statements.h"

#include <charconv>
#include <map>
#include <stdexcept>
#include <string_view>

namespace talm_flow::bench {
namespace {

/// The statements that ask which numbers an instance and its task were given.
constexpr std::string_view kAsksForInstance = "last_insert_rowid()";
constexpr std::string_view kAsksForTask = "DataAppID From DataApp Order By DataAppID Desc";

void AppendNumber(std::string& text, std::int64_t number) {
  char digits[24];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

/// Reads every column of the row.
void ReadRow(sqlite3_stmt* statement, int columns) {
  for (int i = 0; i < columns; ++i) {
    switch (sqlite3_column_type(statement, i)) {
      case SQLITE_INTEGER:
        (void)sqlite3_column_int64(statement, i);
        break;
      case SQLITE_TEXT:
        (void)sqlite3_column_text(statement, i);
        (void)sqlite3_column_bytes(statement, i);
        break;
      default:
        break;
    }
  }
}

}  // namespace

RecordedStatements::RecordedStatements(sqlite3* database, std::int64_t instance, std::int64_t task,
                                       const std::function<void()>& body)
    : database_(database) {
  struct Recorder {
    RecordedStatements& self;
    std::int64_t instance;
    std::int64_t task;
  } recorder{*this, instance, task};
  const auto record = [](unsigned, void* to, void* statement, void* text) {
    // Statements of triggers and the like come as comments.
    if (static_cast<const char*>(text)[0] != '-') {
      const auto& [self, its_instance, its_task] = *static_cast<Recorder*>(to);
      self.Record(static_cast<sqlite3_stmt*>(statement), its_instance, its_task);
    }
    return 0;
  };
  sqlite3_trace_v2(database, SQLITE_TRACE_STMT, record, &recorder);
  body();
  sqlite3_trace_v2(database, 0, nullptr, nullptr);
  Prepare();
}

void RecordedStatements::Prepare() {
  std::map<std::string_view, std::shared_ptr<sqlite3_stmt>> handles;
  for (Statement& statement : statements_) {
    auto& handle = handles[statement.marked];
    if (!handle) {
      sqlite3_stmt* prepared = nullptr;
      const int result =
          sqlite3_prepare_v3(database_, statement.marked.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
      if (result != SQLITE_OK) Fail();
      handle.reset(prepared, Finalize());
    }
    statement.handle = handle;
  }
}

void RecordedStatements::Record(sqlite3_stmt* running, std::int64_t instance, std::int64_t task) {
  Statement statement;
  statement.marked = sqlite3_sql(running);
  char* const expanded_sql = sqlite3_expanded_sql(running);
  const std::string expanded = expanded_sql;
  sqlite3_free(expanded_sql);
  if (statement.marked.find(kAsksForInstance) != std::string::npos) statement.gives = &Numbers::instance;
  if (statement.marked.find(kAsksForTask) != std::string::npos) statement.gives = &Numbers::task;

  // Both texts are the same but for the values, which stand where the other has its marks.
  Piece piece;
  std::size_t at = 0;
  for (const char c : statement.marked) {
    if (c != '?') {
      piece.text += expanded[at++];
      continue;
    }
    Bound bound;
    const std::size_t begin = at;
    if (expanded[at] == '\'') {
      bound.is_text = true;
      for (++at; expanded[at] != '\'' || expanded[at + 1] == '\''; ++at) {
        bound.text += expanded[at];
        if (expanded[at] == '\'') ++at;
      }
      ++at;
    } else {
      std::size_t length = 0;
      bound.whole = std::stoll(expanded.substr(at), &length);
      at += length;
      if (bound.whole == instance) bound.number = &Numbers::instance;
      if (bound.whole == task) bound.number = &Numbers::task;
    }
    if (bound.number == nullptr) {
      piece.text.append(expanded, begin, at - begin);
    } else {
      piece.number = bound.number;
      statement.pieces.push_back(std::move(piece));
      piece = {};
    }
    statement.values.push_back(std::move(bound));
  }
  statement.pieces.push_back(std::move(piece));
  statements_.push_back(std::move(statement));
}

void RecordedStatements::Fail() const { throw std::runtime_error(sqlite3_errmsg(database_)); }

void RecordedStatements::Drain(sqlite3_stmt* handle, Number gives, Numbers& numbers) const {
  const int columns = sqlite3_column_count(handle);
  int result = SQLITE_ROW;
  while ((result = sqlite3_step(handle)) == SQLITE_ROW) {
    if (gives != nullptr) numbers.*gives = sqlite3_column_int64(handle, 0);
    ReadRow(handle, columns);
  }
  if (result != SQLITE_DONE) Fail();
}

void RecordedStatements::RunBound() {
  Numbers numbers;
  for (const Statement& statement : statements_) {
    sqlite3_stmt* const handle = statement.handle.get();
    int mark = 0;
    for (const Bound& bound : statement.values) {
      ++mark;
      if (bound.is_text) {
        sqlite3_bind_text(handle, mark, bound.text.data(), static_cast<int>(bound.text.size()), SQLITE_STATIC);
      } else {
        sqlite3_bind_int64(handle, mark, bound.number == nullptr ? bound.whole : numbers.*bound.number);
      }
    }
    Drain(handle, statement.gives, numbers);
    sqlite3_reset(handle);
  }
}

void RecordedStatements::RunPreparedAnew() {
  Numbers numbers;
  for (const Statement& statement : statements_) {
    text_.clear();
    for (const Piece& piece : statement.pieces) {
      text_ += piece.text;
      if (piece.number != nullptr) AppendNumber(text_, numbers.*piece.number);
    }
    sqlite3_stmt* prepared = nullptr;
    const int size = static_cast<int>(text_.size() + 1);
    if (sqlite3_prepare_v2(database_, text_.c_str(), size, &prepared, nullptr) != SQLITE_OK) Fail();
    Drain(prepared, statement.gives, numbers);
    sqlite3_finalize(prepared);
  }
}

}  // namespace talm_flow::bench
