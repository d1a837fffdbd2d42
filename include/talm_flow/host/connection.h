#pragma once

/// @file
/// The database as the component reaches it: a connection that runs texts, and the row sets it opens.
///
/// Threading: none; a connection and its row sets belong to one thread at a time.
/// Ownership: the caller opens the connection and keeps it alive during every call and until the last of its row sets
/// is gone. A row set is closed by `Close` or by its destruction.
/// Errors: everything that fails raises `DatabaseError` with the database's own message.
///
/// A host may bring its own connection by implementing these two interfaces; the shipped adapters are opened with
/// talm_flow/adapters/database.h.

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "talm_flow/export.h"
#include "talm_flow/value.h"

namespace talm_flow {

/// The rows of one query, as they were when it was opened: rows that appear, change or vanish later are not seen.
/// Opened before the first row when there are rows at all, a row set stands on its first row.
class TALM_FLOW_API RowSet {
 public:
  RowSet() = default;
  RowSet(const RowSet&) = delete;
  RowSet& operator=(const RowSet&) = delete;
  virtual ~RowSet() = default;

  /// True behind the last row; also when there are no rows.
  [[nodiscard]] virtual bool AtEnd() const = 0;

  /// True before the first row, which is so only when there are no rows.
  [[nodiscard]] virtual bool BeforeBegin() const = 0;

  /// To the next row, or behind the last. @throws DatabaseError when already behind the last.
  virtual void MoveNext() = 0;

  /// The current row's value of a column; `name` in any case (ASCII). Binary content comes as a text of its bytes.
  /// @throws DatabaseError  no current row, or no such column.
  [[nodiscard]] virtual Value Field(std::string_view name) const = 0;

  /// How many columns the query has.
  [[nodiscard]] virtual std::size_t ColumnCount() const = 0;
  /// The name of the column at 0-based `index`, in the order of the query; valid as long as the row set.
  [[nodiscard]] virtual std::string_view ColumnName(std::size_t index) const = 0;
  /// The current row's value of the column at 0-based `index`. @throws DatabaseError  no current row.
  [[nodiscard]] virtual Value FieldAt(std::size_t index) const = 0;

  /// Begins a new row of the queried table. Fields that are not set take the table's defaults.
  virtual void AddNew() = 0;
  /// Sets a column of the row begun with `AddNew`. @throws DatabaseError  no row was begun, or no such column.
  virtual void SetField(std::string_view name, const Value& value) = 0;
  /// As `SetField`, storing the bytes as binary content.
  virtual void SetBinary(std::string_view name, std::string_view bytes) = 0;
  /// Stores the row begun with `AddNew`. The row set itself does not show it.
  virtual void Update() = 0;

  /// Ends the reading; closing twice is allowed. Afterwards the row set is at its end.
  virtual void Close() = 0;
};

/// An open database connection of the host.
class TALM_FLOW_API Connection {
 public:
  Connection() = default;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  virtual ~Connection() = default;

  /// Runs one statement. @returns its rows when it gives any ("SELECT @@IDENTITY AS ExecuteID" is run this way), else
  /// null.
  virtual std::unique_ptr<RowSet> Execute(std::string_view statement) = 0;

  /// Opens a query. @returns never null. @throws DatabaseError when the text is no query.
  [[nodiscard]] virtual std::unique_ptr<RowSet> Open(std::string_view query) = 0;

  /// The connection below any wrapper that observes or disturbs what passes through it. Host services read through it,
  /// so that a trace holds the component's own statements and nothing else.
  [[nodiscard]] virtual Connection& Unobserved() { return *this; }
};

}  // namespace talm_flow
