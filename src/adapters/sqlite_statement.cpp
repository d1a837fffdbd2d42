#include "adapters/sqlite_statement.h"

#include <sqlite3.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>

namespace talm_flow::adapters {
namespace {

/// A double as the digits name it; digits beyond every double are infinite, as they are inside a text.
double DecimalOf(std::string_view digits) {
  double number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error == std::errc::result_out_of_range) return std::strtod(std::string(digits).c_str(), nullptr);
  return number;
}

void BindNumber(sqlite3_stmt* statement, int number, const Literal& literal) {
  const char* const end = literal.source.data() + literal.source.size();
  if (literal.kind == Literal::Kind::kWhole) {
    std::int64_t whole = 0;
    if (std::from_chars(literal.source.data(), end, whole).ec == std::errc()) {
      sqlite3_bind_int64(statement, number, whole);
      return;
    }
  }
  sqlite3_bind_double(statement, number, DecimalOf(literal.source));
}

void BindText(sqlite3_stmt* statement, int number, std::string_view text) {
  // A null pointer would bind Null.
  sqlite3_bind_text64(statement, number, text.empty() ? "" : text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

Value Bytes(const void* bytes, int size) {
  // An empty blob comes as a null pointer.
  return size == 0 ? std::string() : std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(size));
}

}  // namespace

void SqliteStatementDeleter::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

void BindLiterals(SqliteHandle& handle, std::string_view text, const std::vector<Literal>& literals,
                  TextKeeper keeper) {
  std::size_t size = keeper == TextKeeper::kHandle ? text.size() : 0;
  handle.text_size = size;
  for (const Literal& literal : literals) {
    if (literal.kind == Literal::Kind::kTextWithQuotes) size += literal.source.size();
  }
  handle.text.clear();
  handle.text.reserve(size);  // grown later, it would move what is bound already
  if (keeper == TextKeeper::kHandle) handle.text = text;
  const char* const base = keeper == TextKeeper::kHandle ? handle.text.data() : text.data();
  int number = 0;
  for (const Literal& literal : literals) {
    ++number;
    if (literal.kind == Literal::Kind::kText) {
      BindText(handle.statement.get(), number, {base + (literal.source.data() - text.data()), literal.source.size()});
    } else if (literal.kind == Literal::Kind::kTextWithQuotes) {
      const std::size_t begin = handle.text.size();
      AppendUnquoted(literal, handle.text);
      BindText(handle.statement.get(), number, std::string_view(handle.text).substr(begin));
    } else {
      BindNumber(handle.statement.get(), number, literal);
    }
  }
}

void BindValue(sqlite3_stmt* statement, int number, const Value& value) {
  switch (value.kind()) {
    case Value::Kind::kNull:
      sqlite3_bind_null(statement, number);
      break;
    case Value::Kind::kBoolean:
      sqlite3_bind_int(statement, number, value.Boolean() ? -1 : 0);
      break;
    case Value::Kind::kWhole:
      sqlite3_bind_int64(statement, number, value.Whole());
      break;
    case Value::Kind::kDouble:
      sqlite3_bind_double(statement, number, value.Double());
      break;
    case Value::Kind::kText:
      BindText(statement, number, value.Text());
      break;
  }
}

void BindBinary(sqlite3_stmt* statement, int number, std::string_view bytes) {
  sqlite3_bind_blob64(statement, number, bytes.empty() ? "" : bytes.data(), bytes.size(), SQLITE_STATIC);
}

Value ColumnValue(sqlite3_stmt* statement, std::size_t column) {
  const int index = static_cast<int>(column);
  switch (sqlite3_column_type(statement, index)) {
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_column_int64(statement, index));
    case SQLITE_FLOAT:
      return sqlite3_column_double(statement, index);
    case SQLITE_NULL:
      return {};
    case SQLITE_TEXT:
      return Bytes(sqlite3_column_text(statement, index), sqlite3_column_bytes(statement, index));
    default:
      return Bytes(sqlite3_column_blob(statement, index), sqlite3_column_bytes(statement, index));
  }
}

void SetColumns(SqliteShape& shape, sqlite3_stmt* statement) {
  ColumnNames columns;
  const int count = sqlite3_column_count(statement);
  for (int i = 0; i < count; ++i) columns.names.emplace_back(sqlite3_column_name(statement, i));
  if (shape.columns != nullptr && shape.columns->names == columns.names) return;
  shape.all_columns.push_back(std::make_unique<const ColumnNames>(std::move(columns)));
  shape.columns = shape.all_columns.back().get();
}

int RepreparationsOf(sqlite3_stmt* statement) { return sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_REPREPARE, 0); }

DatabaseError ErrorOf(sqlite3* database, std::string_view text) {
  return DatabaseError(sqlite3_errmsg(database), std::string(text), std::to_string(sqlite3_extended_errcode(database)));
}

}  // namespace talm_flow::adapters
