#pragma once

/// One statement of an ODBC connection: prepared or run at once, with its parameters, up to its rows.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/odbc_handles.h"
#include "adapters/row_sets.h"
#include "talm_flow/value.h"

namespace talm_flow::adapters {

/// What a parameter is sent as. The driver reads it while the statement runs.
struct OdbcParameter {
  enum class Kind { kNull, kWhole, kNumber, kText, kUtf8Text, kBinary };
  Kind kind = Kind::kNull;
  std::int64_t whole = 0;
  double number = 0;
  std::u16string text;
  std::string bytes;  ///< of binary content, or of a text in UTF-8
  SQLLEN size = 0;    ///< in bytes, or the mark of Null
};

/// How values come out of a driver.
struct OdbcReading {
  /// Columns of a whole-number type may hold texts and fractions as well, as the embedded engine has it.
  bool loose_types = false;
  /// The driver converts texts to UTF-16 wrongly, but gives their bytes, which are UTF-8.
  bool texts_in_utf8 = false;
};

/// All rows of a query.
struct OdbcRows {
  ColumnNames columns;
  std::vector<Value> values;  ///< row after row
  [[nodiscard]] std::size_t count() const { return columns.names.empty() ? 0 : values.size() / columns.names.size(); }
};

class OdbcStatement {
 public:
  /// @param connection  outlives this object.
  explicit OdbcStatement(const OdbcHandle& connection);

  /// @param component_text  what errors tell as the statement.
  void Prepare(std::string_view text, std::string_view component_text);
  /// Runs what was prepared. @param parameters  stay until the rows are read.
  void Execute(std::vector<OdbcParameter>& parameters, std::string_view component_text);
  void ExecuteDirect(std::string_view text, std::string_view component_text);

  /// Of the result; 0 without one. Known when the statement is prepared; a driver may have to ask for it.
  [[nodiscard]] std::size_t ColumnCount();

  /// Reads the whole result and ends it.
  [[nodiscard]] OdbcRows TakeRows(OdbcReading reading, std::string_view component_text);
  /// Ends a result that nobody reads.
  void Finish() noexcept;

 private:
  struct Column {
    SQLSMALLINT type = 0;
  };

  /// Hands a text to one of the manager's functions.
  SQLRETURN Hand(std::string_view text, std::string_view component_text,
                 SQLRETURN (*wide)(SQLHSTMT, SQLWCHAR*, SQLINTEGER),
                 SQLRETURN (*narrow)(SQLHSTMT, SQLCHAR*, SQLINTEGER));
  void CheckRun(SQLRETURN result, std::string_view component_text);
  void Bind(SQLUSMALLINT number, OdbcParameter& parameter);
  template <typename Text, typename Call>
  void ReadName(Text& name, std::string_view component_text, Call call);
  std::vector<Column> Describe(ColumnNames& names, std::string_view component_text);
  Value Read(SQLUSMALLINT number, const Column& column, OdbcReading reading);
  template <typename Number>
  bool ReadPlain(SQLUSMALLINT number, SQLSMALLINT type, Number& value);
  /// In pieces, whatever its length. @returns false for Null.
  template <typename Units>
  bool ReadPieces(SQLUSMALLINT number, SQLSMALLINT type, std::size_t terminator, Units& units);

  OdbcHandle handle_;
  std::size_t bound_ = 0;
  std::u16string text_buffer_;
};

}  // namespace talm_flow::adapters
