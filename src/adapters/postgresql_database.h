#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/engine_database.h"
#include "adapters/postgresql_catalog.h"
#include "adapters/postgresql_connection.h"
#include "adapters/postgresql_statement.h"
#include "adapters/shape_finder.h"

namespace talm_flow::adapters {

/// A connection to a PostgreSQL server. A statement whose shape is known costs one round trip.
///
/// A statement that the server refuses while it prepares it leaves an open transaction usable; one that fails while it
/// runs makes the server refuse everything until the transaction, or the savepoint around the statement, is taken back.
class PostgresqlDatabase : public EngineDatabase, private ShapeFinder<PostgresqlShape>::Engine {
 public:
  /// As `PostgresqlConnection`.
  explicit PostgresqlDatabase(const std::string& url);

  std::unique_ptr<RowSet> Execute(std::string_view statement) override;
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override;

  /// Begins a transaction that sees what others have committed before each of its statements ("read committed"), and
  /// holds the database's one lock for units of work until its end. So the highest key that it reads right after an
  /// insert is its own, and units of work never wait for each other's rows in a circle. The isolation has to be this
  /// one: a stricter one would take its view of the database before the lock is granted. Statements outside of units of
  /// work take no lock and are not kept out.
  void Begin() override;
  void Commit() override;
  void Rollback() override;
  [[nodiscard]] bool InTransaction() const override { return connection_.InTransaction(); }
  [[nodiscard]] bool OffersSavepoints() const override { return true; }
  void SetSavepoint() override;
  void ReleaseSavepoint() override;
  void RollbackToSavepoint() override;
  /// A serialisation failure, a deadlock, or a lock not given in time ("lock_timeout"). Work on a connection that is lost is not repeated.
  [[nodiscard]] bool MayBeRepeated(const DatabaseError& error) const override;

  void CreateTables() override;
  void CreateFormTable(std::int32_t table_id, const std::vector<std::pair<std::string, std::string>>& units) override;

  /// The client library's connection, for measuring what it costs by itself.
  [[nodiscard]] PGconn* engine() const { return connection_.engine(); }

  /// How many statements the connection has had prepared so far.
  [[nodiscard]] std::size_t prepare_count() const { return prepare_count_; }

 private:
  using Shape = std::shared_ptr<PostgresqlShape>;

  TableKeys& Keys() override { return catalog_; }
  bool Prepare(PostgresqlShape& shape, std::string_view text, const std::vector<Literal>& literals) override;
  [[nodiscard]] DatabaseError Refusal(std::string_view text) override;

  /// @param any_number  parameters that get numbers of any size; empty for none.
  PostgresqlPrepared& PrepareFor(PostgresqlShape& shape, const std::vector<bool>& any_number, std::string_view text);
  PostgresqlPrepared& PreparedFor(PostgresqlShape& shape, std::string_view text);
  std::shared_ptr<const ColumnNames> NamesOf(const PGresult* description, const Rewritten& rewritten);
  void DropUnneeded();

  PostgresqlResult Run(PostgresqlShape& shape, std::string_view text);
  /// @param fill  sets the parameters and gives what they are for; called again after the shape was prepared anew.
  template <typename Fill>
  PostgresqlResult RunWith(PostgresqlShape& shape, std::string_view text, Fill fill);
  std::unique_ptr<RowSet> RunOther(const Shape& shape, std::string_view text, bool must_give_rows);
  std::unique_ptr<RowSet> Rows(Shape shape, PostgresqlResult result, std::shared_ptr<const ColumnNames> columns);
  void NoteDefinition(const PGresult* result);
  void Lock();
  /// What is known of tables may be wrong after this.
  void ForgetTables();

  void InsertRow(const TableName& table, const std::vector<NewField>& fields) override;
  [[nodiscard]] bool HasTable(std::string_view table) override;
  [[nodiscard]] bool HasColumn(const TableName& table, std::string_view column) override;

  PostgresqlConnection connection_;
  PostgresqlCatalog catalog_{connection_};
  PostgresqlPrepared::Names unneeded_ = std::make_shared<std::vector<std::string>>();
  ShapeFinder<PostgresqlShape> shapes_{dialect(), *this};
  PostgresqlParameters parameters_;
  std::optional<DatabaseError> refusal_;
  std::size_t prepare_count_ = 0;
  bool tables_changed_in_transaction_ = false;
};

}  // namespace talm_flow::adapters
