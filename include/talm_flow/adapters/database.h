#pragma once

/// The shipped connections: a URL opens one.
///
///   sqlite:PATH                      a file; a write-ahead log with full synchronisation
///   sqlite:PATH?synchronous=normal   faster; a power cut may take back the last committed calls, never tear one
///   sqlite::memory:                  a private database in memory, gone when the connection is
///
/// An adapter takes the component's texts as they are and speaks its engine's dialect below: row limits
/// ("Select Top n"), "@@IDENTITY", key order for unordered and tied rows. Literals travel as parameters and prepared
/// statements are kept by the shape that remains. A text that holds a second statement or a parameter mark is refused.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "talm_flow/host/connection.h"
#include "talm_flow/host/transaction.h"

namespace talm_flow::adapters {

/// Whether `Open` may create a database that does not exist.
enum class OpenMode { kExisting, kCreate };

/// A connection that an adapter opened. One thread at a time; connections of different threads are independent.
class Database : public Connection, public host::Transaction {
 public:
  /// Names of the tables that a complete installation has and this database lacks.
  [[nodiscard]] virtual std::vector<std::string> MissingTables() = 0;

  /// Creates the missing tables and indexes; what exists is left alone.
  virtual void CreateTables() = 0;

  /// Creates the form table "TableData" + `table_id`, registered in `TableName` with its input units, unless it exists.
  /// @param units  code and type of each input unit, in order.
  /// @throws ArgumentError  an input unit's code is no valid column name, or appears twice.
  virtual void CreateFormTable(std::int32_t table_id,
                               const std::vector<std::pair<std::string, std::string>>& units) = 0;
};

/// Opens the database that the URL names.
/// @throws ArgumentError  the URL is malformed or names an unknown engine or option.
/// @throws DatabaseError  the database is missing (`kExisting`), cannot be opened, or is no database.
[[nodiscard]] std::unique_ptr<Database> Open(std::string_view url, OpenMode mode = OpenMode::kCreate);

/// The script that creates all tables and indexes of an engine ("sqlite"), idempotent, one statement a line.
/// @throws ArgumentError  unknown engine.
[[nodiscard]] std::string SchemaScript(std::string_view engine);

}  // namespace talm_flow::adapters
