#include "adapters/postgresql_database.h"

#include <algorithm>
#include <array>

#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

constexpr char kSerialisationFailure[] = "40001";
constexpr char kDeadlock[] = "40P01";
constexpr char kLockNotGiven[] = "55P03";
constexpr char kNoSuchPrepared[] = "26000";
constexpr char kResultChanged[] = "0A000";
constexpr char kAborted[] = "25P02";

/// All rows of one result.
class PostgresqlRowSet : public CompleteRowSet {
 public:
  PostgresqlRowSet(RowAdder& adder, std::shared_ptr<const PostgresqlShape> shape, PostgresqlResult result,
                   std::shared_ptr<const ColumnNames> columns)
      : CompleteRowSet(adder, static_cast<std::size_t>(PQntuples(result.get()))),
        shape_(std::move(shape)),
        result_(std::move(result)),
        columns_(std::move(columns)) {}

 private:
  [[nodiscard]] const TableName& Table() const override { return shape_->rewritten.table; }
  [[nodiscard]] const ColumnNames& Columns() const override { return *columns_; }
  [[nodiscard]] Value ValueAt(std::size_t row, std::size_t column) const override {
    return FieldOf(result_.get(), static_cast<int>(row), static_cast<int>(column));
  }
  void DropRows() override { result_.reset(); }

  std::shared_ptr<const PostgresqlShape> shape_;
  PostgresqlResult result_;
  std::shared_ptr<const ColumnNames> columns_;
};

/// Errors name the text that was to be run, also when a question of the adapter's own failed.
template <typename Work>
auto Naming(std::string_view text, Work work) {
  try {
    return work();
  } catch (const DatabaseError& error) {
    if (!error.Statement().empty()) throw;
    throw DatabaseError(error.what(), std::string(text), error.State());
  }
}

}  // namespace

PostgresqlDatabase::PostgresqlDatabase(const std::string& url)
    : EngineDatabase(PostgresqlDialect()), connection_(url) {}

std::unique_ptr<RowSet> PostgresqlDatabase::Execute(std::string_view statement) {
  return Naming(statement, [&] {
    const Shape shape = shapes_.Find(statement);
    if (shape->rewritten.kind == StatementKind::kOther) return RunOther(shape, statement, false);
    PostgresqlResult result = Run(*shape, statement);
    if (!shape->key_follows.empty()) {
      parameters_.Clear();
      (void)connection_.RunOnce(shape->key_follows, parameters_, statement);
    }
    return Rows(shape, std::move(result), shape->prepared.front()->columns);
  });
}

std::unique_ptr<RowSet> PostgresqlDatabase::Open(std::string_view query) {
  return Naming(query, [&] {
    const Shape shape = shapes_.Find(query);
    if (shape->rewritten.kind == StatementKind::kOther) return RunOther(shape, query, true);
    if (!shape->prepared.front()->columns) throw DatabaseError("the statement gives no rows", std::string(query));
    PostgresqlResult result = Run(*shape, query);
    return Rows(shape, std::move(result), shape->prepared.front()->columns);
  });
}

// ---- Preparing ------------------------------------------------------------------------------------------------------

bool PostgresqlDatabase::Prepare(PostgresqlShape& shape, std::string_view text, const std::vector<Literal>&) {
  // What is no query and no change is not prepared: the server takes its text as it comes.
  if (shape.rewritten.kind == StatementKind::kOther) return true;
  try {
    PrepareFor(shape, {}, text);
    shape.key_follows = catalog_.KeyFollowing(shape.rewritten.text);
    return true;
  } catch (const DatabaseError& error) {
    refusal_ = error;
    return false;
  }
}

DatabaseError PostgresqlDatabase::Refusal(std::string_view) { return *refusal_; }

PostgresqlPrepared& PostgresqlDatabase::PrepareFor(PostgresqlShape& shape, const std::vector<bool>& any_number,
                                                   std::string_view text) {
  DropUnneeded();
  // A statement that cannot be prepared is to leave an open transaction as it was.
  const bool guarded = connection_.Status() == PQTRANS_INTRANS;
  if (guarded) connection_.Run("savepoint preparing", text);
  try {
    std::vector<Oid> types;
    if (!any_number.empty()) types = shape.prepared.front()->types;
    for (std::size_t i = 0; i < any_number.size(); ++i) {
      if (any_number[i]) types[i] = postgresql_type::kNumeric;
    }
    const std::string name = "talm_flow_" + std::to_string(++prepare_count_);
    connection_.Prepare(name, shape.rewritten.text, types, text);
    auto prepared = std::make_unique<PostgresqlPrepared>(name, unneeded_);
    const PostgresqlResult description = connection_.Describe(prepared->name(), text);
    const int parameters = PQnparams(description.get());
    for (int i = 0; i < parameters; ++i) prepared->types.push_back(PQparamtype(description.get(), i));
    prepared->any_number = any_number;
    prepared->any_number.resize(prepared->types.size());
    if (PQnfields(description.get()) > 0) prepared->columns = NamesOf(description.get(), shape.rewritten);
    if (guarded) connection_.Run("release savepoint preparing", text);
    shape.prepared.push_back(std::move(prepared));
  } catch (const DatabaseError&) {
    if (guarded && connection_.InTransaction()) {
      connection_.Run("rollback to savepoint preparing; release savepoint preparing", text);
    }
    throw;
  }
  return *shape.prepared.back();
}

/// What the shape's text of the moment can be run with.
PostgresqlPrepared& PostgresqlDatabase::PreparedFor(PostgresqlShape& shape, std::string_view text) {
  PostgresqlPrepared& usual = *shape.prepared.front();
  const std::vector<bool> unfit = UnfitLiterals(shape.rewritten, usual, shapes_.literals());
  if (unfit.empty()) return usual;
  for (const auto& prepared : shape.prepared) {
    if (prepared->any_number == unfit) return *prepared;
  }
  return PrepareFor(shape, unfit, text);
}

std::shared_ptr<const ColumnNames> PostgresqlDatabase::NamesOf(const PGresult* description,
                                                               const Rewritten& rewritten) {
  auto columns = std::make_shared<ColumnNames>();
  for (int i = 0; i < PQnfields(description); ++i) {
    const std::string name = PQfname(description, i);
    const auto& as = rewritten.result_names;
    const auto given = std::find_if(as.begin(), as.end(),
                                    [&name](const std::string& alias) { return EqualIgnoringAsciiCase(alias, name); });
    if (given != as.end()) {
      columns->names.push_back(*given);
    } else {
      columns->names.push_back(
          catalog_.Spelling(PQftable(description, i), PQftablecol(description, i), name).value_or(name));
    }
  }
  return columns;
}

/// Inside a transaction a name that the server has forgotten already would spoil it.
void PostgresqlDatabase::DropUnneeded() {
  if (unneeded_->empty() || connection_.Status() != PQTRANS_IDLE) return;
  std::string text;
  for (const std::string& name : *unneeded_) text += "deallocate " + name + ";";
  unneeded_->clear();
  try {
    connection_.Run(text, "");
  } catch (const DatabaseError&) {  // gone already: that was wanted
  }
}

// ---- Running --------------------------------------------------------------------------------------------------------

template <typename Fill>
PostgresqlResult PostgresqlDatabase::RunWith(PostgresqlShape& shape, std::string_view text, Fill fill) {
  const bool outside = connection_.Status() == PQTRANS_IDLE;
  try {
    return connection_.RunPrepared(fill().name(), parameters_, text);
  } catch (const DatabaseError& error) {
    // The server lost what was prepared, or the tables became others: nothing has been done yet.
    const bool stale = error.State() == kNoSuchPrepared || error.State() == kResultChanged;
    if (!stale || !outside) {
      // Another connection can have changed the tables.
      if (stale || error.State().starts_with("42")) ForgetTables();
      throw;
    }
  }
  catalog_.Forget();
  shape.prepared.clear();
  PrepareFor(shape, {}, text);
  return connection_.RunPrepared(fill().name(), parameters_, text);
}

PostgresqlResult PostgresqlDatabase::Run(PostgresqlShape& shape, std::string_view text) {
  return RunWith(shape, text, [&]() -> const PostgresqlPrepared& {
    const PostgresqlPrepared& prepared = PreparedFor(shape, text);
    AddLiterals(shape.rewritten, prepared, shapes_.literals(), parameters_);
    return prepared;
  });
}

std::unique_ptr<RowSet> PostgresqlDatabase::RunOther(const Shape& shape, std::string_view text, bool must_give_rows) {
  parameters_.Clear();
  if (must_give_rows) {
    connection_.Prepare("", shape->rewritten.text, {}, text);
    const PostgresqlResult description = connection_.Describe("", text);
    if (PQnfields(description.get()) == 0) throw DatabaseError("the statement gives no rows", std::string(text));
  }
  PostgresqlResult result = connection_.RunOnce(shape->rewritten.text, parameters_, text);
  NoteDefinition(result.get());
  if (PQresultStatus(result.get()) != PGRES_TUPLES_OK) return nullptr;
  auto columns = NamesOf(result.get(), shape->rewritten);
  return Rows(shape, std::move(result), std::move(columns));
}

std::unique_ptr<RowSet> PostgresqlDatabase::Rows(Shape shape, PostgresqlResult result,
                                                 std::shared_ptr<const ColumnNames> columns) {
  if (!columns) return nullptr;
  RowAdder& adder = *this;
  return std::make_unique<PostgresqlRowSet>(adder, std::move(shape), std::move(result), std::move(columns));
}

void PostgresqlDatabase::NoteDefinition(const PGresult* result) {
  constexpr std::array<std::string_view, 8> kDefining = {"CREATE", "ALTER", "DROP",    "DO",
                                                         "SET",    "RESET", "DISCARD", "DEALLOCATE"};
  const std::string_view tag = PQcmdStatus(const_cast<PGresult*>(result));
  const bool defines = std::any_of(kDefining.begin(), kDefining.end(),
                                   [tag](std::string_view word) { return tag.substr(0, tag.find(' ')) == word; });
  if (!defines) return;
  ForgetTables();
  tables_changed_in_transaction_ = InTransaction();
}

void PostgresqlDatabase::ForgetTables() {
  catalog_.Forget();
  shapes_.ForgetAll();
}

// ---- Tables and rows ------------------------------------------------------------------------------------------------

void PostgresqlDatabase::InsertRow(const TableName& table, const std::vector<NewField>& fields) {
  const std::string text = InsertStatement(dialect(), table, fields);
  const Shape shape = shapes_.Own(text);
  (void)RunWith(*shape, text, [&]() -> const PostgresqlPrepared& {
    const PostgresqlPrepared& prepared = *shape->prepared.front();
    parameters_.Clear();
    for (std::size_t i = 0; i < fields.size(); ++i) AddField(fields[i], prepared.types[i], parameters_);
    return prepared;
  });
}

bool PostgresqlDatabase::HasTable(std::string_view table) {
  return catalog_.HasTable({.schema = {}, .name = std::string(table)});
}

bool PostgresqlDatabase::HasColumn(const TableName& table, std::string_view column) {
  return catalog_.HasColumn(table, column);
}

/// Two connections that create the same table at once would fail.
void PostgresqlDatabase::CreateTables() {
  catalog_.Forget();
  if (InTransaction()) Lock();
  EngineDatabase::CreateTables();
}

void PostgresqlDatabase::CreateFormTable(std::int32_t table_id,
                                         const std::vector<std::pair<std::string, std::string>>& units) {
  catalog_.Forget();
  if (InTransaction()) Lock();
  EngineDatabase::CreateFormTable(table_id, units);
}

// ---- Transactions ---------------------------------------------------------------------------------------------------

void PostgresqlDatabase::Lock() { (void)connection_.Run(kPostgresqlTakeTurn, ""); }

void PostgresqlDatabase::Begin() {
  tables_changed_in_transaction_ = false;
  connection_.Run("begin isolation level read committed", "begin");
  try {
    Lock();
  } catch (const DatabaseError&) {
    if (connection_.InTransaction()) Rollback();
    throw;
  }
}

void PostgresqlDatabase::Commit() {
  const PostgresqlResult result = connection_.Run("commit", "commit");
  // After a failed statement the server answers a commit by taking everything back, and calls that no error.
  if (std::string_view(PQcmdStatus(result.get())) == "ROLLBACK") {
    throw DatabaseError("a statement of the transaction failed; nothing of it was committed", "commit", kAborted);
  }
}

void PostgresqlDatabase::Rollback() {
  connection_.Run("rollback", "rollback");
  if (std::exchange(tables_changed_in_transaction_, false)) ForgetTables();
}

// Savepoints of one name nest; the innermost is meant.
void PostgresqlDatabase::SetSavepoint() { connection_.Run("savepoint unit_of_work", "savepoint"); }
void PostgresqlDatabase::ReleaseSavepoint() { connection_.Run("release savepoint unit_of_work", "release savepoint"); }
void PostgresqlDatabase::RollbackToSavepoint() {
  connection_.Run("rollback to savepoint unit_of_work; release savepoint unit_of_work", "rollback to savepoint");
  if (tables_changed_in_transaction_) ForgetTables();
}

bool PostgresqlDatabase::MayBeRepeated(const DatabaseError& error) const {
  return error.State() == kSerialisationFailure || error.State() == kDeadlock || error.State() == kLockNotGiven;
}

}  // namespace talm_flow::adapters
