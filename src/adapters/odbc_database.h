#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/engine_database.h"
#include "adapters/odbc_engine.h"
#include "adapters/odbc_handles.h"
#include "adapters/odbc_statement.h"
#include "adapters/odbc_url.h"
#include "adapters/shape_finder.h"

namespace talm_flow::adapters {

/// Everything known of a shape.
struct OdbcShape {
  Rewritten rewritten;
  /// Prepared and not in use. Rows are read at once, so that more than one is never needed.
  std::unique_ptr<OdbcStatement> prepared;
};

/// A connection through the platform's ODBC driver manager. The server's dialect is named in the URL; see
/// adapters/odbc_url.h for the URL and adapters/odbc_engine.h for what is done for each dialect. To a server that speaks
/// the component's dialect natively the texts go as they are.
class OdbcDatabase : public EngineDatabase, private ShapeFinder<OdbcShape>::Engine, private TableKeys {
 public:
  /// @throws DatabaseError  there is no such driver, or it does not come to a connection in the URL's time.
  explicit OdbcDatabase(const OdbcUrl& url);
  ~OdbcDatabase() override;

  std::unique_ptr<RowSet> Execute(std::string_view statement) override;
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override;

  void Begin() override;
  void Commit() override;
  void Rollback() override;
  [[nodiscard]] bool InTransaction() const override { return in_transaction_ && !lost_; }
  [[nodiscard]] bool OffersSavepoints() const override { return true; }
  void SetSavepoint() override;
  void ReleaseSavepoint() override;
  void RollbackToSavepoint() override;
  [[nodiscard]] bool MayBeRepeated(const DatabaseError& error) const override;

  void CreateTables() override;

 protected:
  [[nodiscard]] bool HasTable(std::string_view table) override;
  [[nodiscard]] bool CreatesTablesInTransactions() const override { return engine_.creates_tables_in_transactions; }
  void RunDefinition(const std::string& statement) override;

 private:
  using Shape = std::shared_ptr<OdbcShape>;

  // What shapes need of the engine.
  TableKeys& Keys() override { return *this; }
  bool Prepare(OdbcShape& shape, std::string_view text, const std::vector<Literal>& literals) override;
  [[nodiscard]] DatabaseError Refusal(std::string_view text) override;
  [[nodiscard]] TableKey Find(const TableName& table) override;

  // What row sets need to add rows.
  [[nodiscard]] bool HasColumn(const TableName& table, std::string_view column) override;
  void InsertRow(const TableName& table, const std::vector<NewField>& fields) override;

  /// @param wants_rows  a statement that gives none is refused before it does anything.
  std::unique_ptr<RowSet> Run(std::string_view text, bool wants_rows);
  std::unique_ptr<RowSet> RunShape(const Shape& shape, std::string_view text, bool wants_rows);
  /// For a server that speaks the component's dialect: the text goes to it to the letter.
  std::unique_ptr<RowSet> RunNative(std::string_view text, bool wants_rows);
  /// What is neither query nor change.
  std::unique_ptr<RowSet> RunAsItIs(std::string_view engine_text, std::string_view text, bool wants_rows);
  std::unique_ptr<RowSet> TakeResult(OdbcStatement& statement, const TableName& table, std::string_view text);
  [[nodiscard]] std::vector<OdbcParameter> ParametersFor(const OdbcShape& shape, std::string_view text) const;
  /// A statement of the adapter's own that is not prepared.
  /// Whether characters beyond ASCII get lost on their way to the driver.
  bool LosesCharacters();
  void RunOwn(std::string_view text);
  /// Begins a transaction, on a cluster one that cannot vanish unseen.
  void StartTransaction();
  void TakeTurn();
  /// @throws DatabaseError  the cluster has taken the transaction back.
  void CheckThatNothingIsLost();
  /// Behind the end of a transaction: on a cluster statements are again kept at once.
  void LetGo();
  /// The rows of a question to the catalogue.
  [[nodiscard]] OdbcRows Ask(std::string_view question, const std::vector<std::string>& names);
  [[nodiscard]] std::string SavepointName() const;
  /// What an error means for the transaction and the connection.
  void Note(const DatabaseError& error);
  /// Transactions are also begun and ended by the host's own texts.
  void NoteStatement(std::string_view text);
  void RefuseInEndedTransaction(std::string_view text) const;

  const OdbcEngine& engine_;
  OdbcHandle environment_;
  OdbcHandle connection_;
  ShapeFinder<OdbcShape> shapes_;
  std::map<std::string, TableKey, std::less<>> keys_;
  std::optional<DatabaseError> refusal_;

  bool connected_ = false;
  bool in_cluster_ = false;
  bool in_transaction_ = false;
  bool holds_back_ = false;  ///< what is in no transaction
  bool lost_ = false;
  int savepoints_ = 0;
  /// Why the transaction can only be taken back, from which depth of savepoints on.
  std::optional<DatabaseError> failure_;
  int failure_depth_ = 0;
};

}  // namespace talm_flow::adapters
