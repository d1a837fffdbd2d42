#include "recorded_statements.h"

#include <stdexcept>
#include <string_view>

namespace talm_flow::bench {
namespace {

void Require(bool good, sqlite3* database) {
  if (!good) throw std::runtime_error(sqlite3_errmsg(database));
}

/// Steps through all rows and reads every column.
void Drain(sqlite3_stmt* statement, sqlite3* database) {
  const int columns = sqlite3_column_count(statement);
  int result = SQLITE_ROW;
  while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
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
  Require(result == SQLITE_DONE, database);
}

void ReplaceNumber(std::string& text, std::int64_t from, std::int64_t to) {
  const std::string sought = std::to_string(from);
  const std::string put = std::to_string(to);
  for (std::size_t at = 0; (at = text.find(sought, at)) != std::string::npos; at += put.size()) {
    text.replace(at, sought.size(), put);
  }
}

}  // namespace

RecordedStatements::RecordedStatements(sqlite3* database, std::int64_t instance, std::int64_t task,
                                       const std::function<void()>& body)
    : instance_(instance), task_(task) {
  const auto record = [](unsigned, void* self, void* statement, void* text) {
    // Statements of triggers and the like come as comments.
    if (static_cast<const char*>(text)[0] != '-') {
      static_cast<RecordedStatements*>(self)->Record(static_cast<sqlite3_stmt*>(statement));
    }
    return 0;
  };
  sqlite3_trace_v2(database, SQLITE_TRACE_STMT, record, this);
  body();
  sqlite3_trace_v2(database, 0, nullptr, nullptr);

  std::map<std::string_view, std::shared_ptr<sqlite3_stmt>> handles;
  for (Statement& statement : statements_) {
    auto& handle = handles[statement.marked];
    if (!handle) {
      sqlite3_stmt* prepared = nullptr;
      Require(sqlite3_prepare_v3(database, statement.marked.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &prepared,
                                 nullptr) == SQLITE_OK,
              database);
      handle.reset(prepared, Finalize());
    }
    statement.handle = handle;
  }
}

void RecordedStatements::Record(sqlite3_stmt* running) {
  Statement statement;
  statement.marked = sqlite3_sql(running);
  char* const expanded = sqlite3_expanded_sql(running);
  statement.expanded = expanded;
  sqlite3_free(expanded);

  // Both texts are the same but for the values, which stand where the other has its marks.
  std::size_t at = 0;
  for (std::size_t i = 0; i < statement.marked.size(); ++i) {
    if (statement.marked[i] != '?') {
      ++at;
      continue;
    }
    Bound bound{Bound::Kind::kWhole, 0, {}};
    if (statement.expanded[at] == '\'') {
      bound.kind = Bound::Kind::kText;
      for (++at; statement.expanded[at] != '\'' || statement.expanded[at + 1] == '\''; ++at) {
        bound.text += statement.expanded[at];
        if (statement.expanded[at] == '\'') ++at;
      }
      ++at;
    } else {
      std::size_t length = 0;
      bound.whole = std::stoll(statement.expanded.substr(at), &length);
      at += length;
      if (bound.whole == instance_) bound.kind = Bound::Kind::kInstance;
      if (bound.whole == task_) bound.kind = Bound::Kind::kTask;
    }
    statement.values.push_back(std::move(bound));
  }
  statements_.push_back(std::move(statement));
}

void RecordedStatements::RunBound(sqlite3* database, std::int64_t instance, std::int64_t task) {
  for (const Statement& statement : statements_) {
    sqlite3_stmt* const handle = statement.handle.get();
    int number = 0;
    for (const Bound& bound : statement.values) {
      ++number;
      switch (bound.kind) {
        case Bound::Kind::kInstance:
          sqlite3_bind_int64(handle, number, instance);
          break;
        case Bound::Kind::kTask:
          sqlite3_bind_int64(handle, number, task);
          break;
        case Bound::Kind::kWhole:
          sqlite3_bind_int64(handle, number, bound.whole);
          break;
        case Bound::Kind::kText:
          sqlite3_bind_text(handle, number, bound.text.data(), static_cast<int>(bound.text.size()), SQLITE_STATIC);
          break;
      }
    }
    Drain(handle, database);
    sqlite3_reset(handle);
  }
}

void RecordedStatements::RunPreparedAnew(sqlite3* database, std::int64_t instance, std::int64_t task) {
  for (const Statement& statement : statements_) {
    std::string text = statement.expanded;
    ReplaceNumber(text, instance_, instance);
    ReplaceNumber(text, task_, task);
    sqlite3_stmt* prepared = nullptr;
    Require(sqlite3_prepare_v2(database, text.c_str(), -1, &prepared, nullptr) == SQLITE_OK, database);
    Drain(prepared, database);
    sqlite3_finalize(prepared);
  }
}

}  // namespace talm_flow::bench
