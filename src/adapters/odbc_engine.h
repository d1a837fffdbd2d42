#pragma once

/// What differs between the servers behind ODBC, as data: one entry a dialect.
///
/// Units of work take turns, as `host::Transaction::Begin` promises:
///
///   sqlite       the transaction begins with the engine's only lock for writing
///   postgresql   an advisory lock that lasts as long as the transaction, the same as of the adapter without ODBC
///   mariadb      one row of the table `TalmFlowTurn`, which every unit of work writes first. On one server the others
///                wait for it. On a Galera cluster named locks, and rows that are only locked, stop nobody on another
///                node; a row that is written does: of those that overlap the first to commit wins, and each of the
///                others gets error 1213, which `MayBeRepeated` knows.
///   tsql         an application lock that belongs to the transaction

#include <span>
#include <string_view>

#include "adapters/dialect.h"
#include "adapters/odbc_handles.h"
#include "adapters/odbc_statement.h"

namespace talm_flow::adapters {

struct OdbcEngine {
  const Dialect& dialect;

  /// Added to the connection string, which may not have an option of this name.
  std::string_view connection_option = {};
  /// The driver's option for the seconds that connecting may take, where it does not heed the attribute.
  std::string_view timeout_option = {};
  /// There are drivers for it without wide functions.
  bool may_be_narrow = false;
  /// Run when the connection is new.
  std::span<const std::string_view> settings;
  /// Gives a row when the server is a node of a cluster; `cluster_settings` are then run too.
  std::string_view cluster_question = {};
  std::span<const std::string_view> cluster_settings = {};
  /// A node may take a transaction back without any statement telling it; what follows would then be kept, each
  /// statement for itself. These hold back and let go again what is in no transaction; they stand around each one.
  std::string_view cluster_hold = {};
  std::string_view cluster_let_go = {};

  std::string_view begin;
  /// Run right behind `begin`: waits for this transaction's turn.
  std::string_view take_turn = {};
  /// Creates what `take_turn` needs; empty when it needs nothing.
  std::string_view create_turn = {};
  std::string_view savepoint;
  std::string_view release_savepoint = {};  ///< empty where savepoints need no end
  std::string_view rollback_to_savepoint;
  bool creates_tables_in_transactions = true;
  /// After a statement that failed in it a transaction can only be taken back.
  bool failure_ends_transaction = false;

  // Questions to the catalogue. A mark stands for a table's name, a second one for a column's.
  std::string_view has_table;
  std::string_view has_column;
  /// The columns of a table's primary key, in order.
  std::string_view key_columns = {};
  /// By this rows can be ordered as well as by their key; empty when there is nothing such.
  std::string_view row_number = {};

  /// The database's own numbers of errors that say that another connection was in the way.
  std::span<const int> disturbed = {};
  /// Those of them with which the server has taken the whole transaction back.
  std::span<const int> taken_back = {};

  OdbcReading reading = {};
  /// Numbers are compared as texts where the text asks for a comparison. The engine turns such a parameter into a number
  /// beside a number, and beside a text it compares texts, where a number would turn the text into a number.
  bool compares_numbers_as_texts = false;
};

[[nodiscard]] const OdbcEngine& OdbcEngineOf(const Dialect& dialect);

}  // namespace talm_flow::adapters
