#include "adapters/odbc_statement.h"

#include <algorithm>
#include <charconv>

#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

/// The first piece of a long value; as much is asked for as the driver says is left, or twice as much each time.
constexpr std::size_t kFirstPiece = 1024;

/// Longer texts and binary values have types of their own.
constexpr std::size_t kLongestPlain = 4000;

constexpr std::size_t kUsualName = 128;
constexpr std::size_t kLongestName = 32000;

SQLULEN SizeOf(std::size_t size) { return static_cast<SQLULEN>(std::max<std::size_t>(size, 1)); }

/// A number in a text that an engine gave for it: whole when it can be, otherwise a double; a text that is none stays.
Value NumberIn(std::string text) {
  const char* const end = text.data() + text.size();
  std::int64_t whole = 0;
  if (const auto read = std::from_chars(text.data(), end, whole); read.ec == std::errc() && read.ptr == end) {
    return whole;
  }
  double number = 0;
  if (const auto read = std::from_chars(text.data(), end, number); read.ec == std::errc() && read.ptr == end) {
    return number;
  }
  return text;
}

}  // namespace

OdbcStatement::OdbcStatement(const OdbcHandle& connection) : handle_(SQL_HANDLE_STMT, connection) {
  // What looks like the manager's own escapes, "{fn ...}", is a part of the text. Not every driver knows the attribute.
  SQLSetStmtAttr(handle_.get(), SQL_ATTR_NOSCAN, reinterpret_cast<SQLPOINTER>(SQL_NOSCAN_ON), 0);
}

SQLRETURN OdbcStatement::Hand(std::string_view text, std::string_view component_text,
                              SQLRETURN (*wide)(SQLHSTMT, SQLWCHAR*, SQLINTEGER),
                              SQLRETURN (*narrow)(SQLHSTMT, SQLCHAR*, SQLINTEGER)) {
  if (handle_.texts() == OdbcTexts::kNarrow) {
    std::string copy(text);
    return narrow(handle_.get(), NarrowBuffer(copy), static_cast<SQLINTEGER>(copy.size()));
  }
  std::u16string copy = WideText(text, component_text);
  return wide(handle_.get(), WideBuffer(copy), static_cast<SQLINTEGER>(copy.size()));
}

void OdbcStatement::Prepare(std::string_view text, std::string_view component_text) {
  CheckOdbc(Hand(text, component_text, SQLPrepareW, SQLPrepare), handle_, component_text);
}

void OdbcStatement::Execute(std::vector<OdbcParameter>& parameters, std::string_view component_text) {
  for (std::size_t i = 0; i < parameters.size(); ++i) Bind(static_cast<SQLUSMALLINT>(i + 1), parameters[i]);
  bound_ = parameters.size();
  CheckRun(SQLExecute(handle_.get()), component_text);
}

void OdbcStatement::ExecuteDirect(std::string_view text, std::string_view component_text) {
  CheckRun(Hand(text, component_text, SQLExecDirectW, SQLExecDirect), component_text);
}

void OdbcStatement::CheckRun(SQLRETURN result, std::string_view component_text) {
  if (SQL_SUCCEEDED(result) || result == SQL_NO_DATA) return;
  const DatabaseError error = OdbcError(handle_, component_text);
  Finish();
  throw error;
}

void OdbcStatement::Bind(SQLUSMALLINT number, OdbcParameter& parameter) {
  SQLSMALLINT value_type = SQL_C_WCHAR;
  SQLSMALLINT type = SQL_WVARCHAR;
  SQLULEN size = 1;
  SQLPOINTER value = nullptr;
  switch (parameter.kind) {
    case OdbcParameter::Kind::kNull:
      parameter.size = SQL_NULL_DATA;
      break;
    case OdbcParameter::Kind::kWhole:
      value_type = SQL_C_SBIGINT;
      type = SQL_BIGINT;
      size = 19;
      value = &parameter.whole;
      break;
    case OdbcParameter::Kind::kNumber:
      value_type = SQL_C_DOUBLE;
      type = SQL_DOUBLE;
      size = 15;
      value = &parameter.number;
      break;
    case OdbcParameter::Kind::kText:
      type = parameter.text.size() > kLongestPlain ? SQL_WLONGVARCHAR : SQL_WVARCHAR;
      size = SizeOf(parameter.text.size());
      value = parameter.text.data();
      parameter.size = static_cast<SQLLEN>(parameter.text.size() * sizeof(char16_t));
      break;
    case OdbcParameter::Kind::kUtf8Text:
      value_type = SQL_C_CHAR;
      type = parameter.bytes.size() > kLongestPlain ? SQL_LONGVARCHAR : SQL_VARCHAR;
      size = SizeOf(parameter.bytes.size());
      value = parameter.bytes.data();
      parameter.size = static_cast<SQLLEN>(parameter.bytes.size());
      break;
    case OdbcParameter::Kind::kBinary:
      value_type = SQL_C_BINARY;
      type = parameter.bytes.size() > kLongestPlain ? SQL_LONGVARBINARY : SQL_VARBINARY;
      size = SizeOf(parameter.bytes.size());
      value = parameter.bytes.data();
      parameter.size = static_cast<SQLLEN>(parameter.bytes.size());
      break;
  }
  CheckOdbc(SQLBindParameter(handle_.get(), number, SQL_PARAM_INPUT, value_type, type, size, 0, value,
                             parameter.size > 0 ? parameter.size : 0, &parameter.size),
            handle_);
}

std::size_t OdbcStatement::ColumnCount() {
  SQLSMALLINT count = 0;
  CheckOdbc(SQLNumResultCols(handle_.get(), &count), handle_);
  return static_cast<std::size_t>(std::max<SQLSMALLINT>(count, 0));
}

std::vector<OdbcStatement::Column> OdbcStatement::Describe(ColumnNames& names, std::string_view component_text) {
  std::vector<Column> columns(ColumnCount());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const auto number = static_cast<SQLUSMALLINT>(i + 1);
    SQLULEN width = 0;
    SQLSMALLINT digits = 0;
    SQLSMALLINT nullable = 0;
    SQLSMALLINT* const type = &columns[i].type;
    if (handle_.texts() == OdbcTexts::kNarrow) {
      std::string name;
      ReadName(name, component_text, [&](SQLSMALLINT room, SQLSMALLINT* size) {
        return SQLDescribeCol(handle_.get(), number, NarrowBuffer(name), room, size, type, &width, &digits, &nullable);
      });
      names.names.push_back(std::move(name));
    } else {
      std::u16string name;
      ReadName(name, component_text, [&](SQLSMALLINT room, SQLSMALLINT* size) {
        return SQLDescribeColW(handle_.get(), number, WideBuffer(name), room, size, type, &width, &digits, &nullable);
      });
      names.names.push_back(ToUtf8(name));
    }
  }
  return columns;
}

template <typename Text, typename Call>
void OdbcStatement::ReadName(Text& name, std::string_view component_text, Call call) {
  for (std::size_t room = kUsualName;;) {
    name.resize(room);
    SQLSMALLINT size = 0;
    CheckOdbc(call(static_cast<SQLSMALLINT>(room), &size), handle_, component_text);
    // A terminator stands behind the name.
    const auto needed = static_cast<std::size_t>(std::max<SQLSMALLINT>(size, 0));
    if (needed < room || needed >= kLongestName) {
      name.resize(std::min(needed, room - 1));
      return;
    }
    room = needed + 1;
  }
}

OdbcRows OdbcStatement::TakeRows(OdbcReading reading, std::string_view component_text) {
  OdbcRows rows;
  try {
    const std::vector<Column> columns = Describe(rows.columns, component_text);
    for (;;) {
      const SQLRETURN result = SQLFetch(handle_.get());
      if (result == SQL_NO_DATA) break;
      CheckOdbc(result, handle_, component_text);
      for (std::size_t i = 0; i < columns.size(); ++i) {
        rows.values.push_back(Read(static_cast<SQLUSMALLINT>(i + 1), columns[i], reading));
      }
    }
  } catch (const DatabaseError& error) {
    Finish();
    throw DatabaseError(error.what(), std::string(component_text), error.State());
  }
  Finish();
  return rows;
}

void OdbcStatement::Finish() noexcept {
  SQLFreeStmt(handle_.get(), SQL_CLOSE);
  // What was bound goes with the caller.
  if (bound_ > 0) SQLFreeStmt(handle_.get(), SQL_RESET_PARAMS);
  bound_ = 0;
}

Value OdbcStatement::Read(SQLUSMALLINT number, const Column& column, OdbcReading reading) {
  switch (column.type) {
    case SQL_BIT:
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT: {
      if (reading.loose_types) break;
      std::int64_t whole = 0;
      return ReadPlain(number, SQL_C_SBIGINT, whole) ? Value(whole) : Value();
    }
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE: {
      if (reading.loose_types) break;
      double decimal = 0;
      return ReadPlain(number, SQL_C_DOUBLE, decimal) ? Value(decimal) : Value();
    }
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY: {
      std::string bytes;
      return ReadPieces(number, SQL_C_BINARY, 0, bytes) ? Value(std::move(bytes)) : Value();
    }
    default:
      break;
  }
  std::string text;
  if (reading.texts_in_utf8) {
    if (!ReadPieces(number, SQL_C_BINARY, 0, text)) return {};
  } else {
    if (!ReadPieces(number, SQL_C_WCHAR, 1, text_buffer_)) return {};
    text = ToUtf8(text_buffer_);
  }
  switch (column.type) {
    case SQL_BIT:
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
    case SQL_NUMERIC:
    case SQL_DECIMAL:
      return NumberIn(std::move(text));
    default:
      return text;
  }
}

template <typename Number>
bool OdbcStatement::ReadPlain(SQLUSMALLINT number, SQLSMALLINT type, Number& value) {
  SQLLEN size = 0;
  CheckOdbc(SQLGetData(handle_.get(), number, type, &value, sizeof value, &size), handle_);
  return size != SQL_NULL_DATA;
}

template <typename Units>
bool OdbcStatement::ReadPieces(SQLUSMALLINT number, SQLSMALLINT type, std::size_t terminator, Units& units) {
  constexpr std::size_t kUnit = sizeof(typename Units::value_type);
  std::size_t have = 0;
  std::size_t room = kFirstPiece;
  for (;;) {
    units.resize(have + room);
    SQLLEN left = 0;
    const SQLRETURN result =
        SQLGetData(handle_.get(), number, type, units.data() + have, static_cast<SQLLEN>(room * kUnit), &left);
    if (result == SQL_NO_DATA) break;
    CheckOdbc(result, handle_);
    if (left == SQL_NULL_DATA) return false;
    const std::size_t most = room - terminator;
    if (left != SQL_NO_TOTAL && static_cast<std::size_t>(left) <= most * kUnit) {
      have += static_cast<std::size_t>(left) / kUnit;
      break;
    }
    have += most;
    room = left == SQL_NO_TOTAL ? have : static_cast<std::size_t>(left) / kUnit - most + terminator;
  }
  units.resize(have);
  return true;
}

}  // namespace talm_flow::adapters
