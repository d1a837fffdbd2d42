#include "adapters/odbc_database.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "adapters/schema_text.h"
#include "db/schema.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

/// The rows of one query.
class OdbcRowSet : public CompleteRowSet {
 public:
  OdbcRowSet(RowAdder& adder, const TableName& table, OdbcRows rows)
      : CompleteRowSet(adder, rows.count()), table_(table), rows_(std::move(rows)) {}

 protected:
  [[nodiscard]] const TableName& Table() const override { return table_; }
  [[nodiscard]] const ColumnNames& Columns() const override { return rows_.columns; }
  [[nodiscard]] Value ValueAt(std::size_t row, std::size_t column) const override {
    return rows_.values[row * rows_.columns.names.size() + column];
  }
  void DropRows() override { rows_.values = {}; }

 private:
  TableName table_;
  OdbcRows rows_;
};

void SetText(OdbcParameter& parameter, std::string_view text, std::string_view statement, OdbcReading reading) {
  parameter.text = WideText(text, statement);
  parameter.kind = reading.texts_in_utf8 ? OdbcParameter::Kind::kUtf8Text : OdbcParameter::Kind::kText;
  if (reading.texts_in_utf8) parameter.bytes = text;
}

/// A literal as the number that its digits name. Whole numbers beyond 64 bits are doubles.
void SetNumber(OdbcParameter& parameter, const Literal& literal, bool negative) {
  const char* const begin = literal.source.data();
  const char* const end = begin + literal.source.size();
  parameter.kind = OdbcParameter::Kind::kWhole;
  if (literal.kind == Literal::Kind::kWhole && std::from_chars(begin, end, parameter.whole).ec == std::errc()) {
    if (negative) parameter.whole = -parameter.whole;
    return;
  }
  parameter.kind = OdbcParameter::Kind::kNumber;
  std::from_chars(begin, end, parameter.number);
  if (negative) parameter.number = -parameter.number;
}

/// A number as a text of its digits, as it would be beside a text.
std::string DigitsOf(const Literal& literal, bool negative) {
  std::string_view digits = literal.source;
  if (literal.kind == Literal::Kind::kWhole) {
    while (digits.size() > 1 && digits.front() == '0') digits.remove_prefix(1);
  }
  return (negative ? "-" : "") + std::string(digits);
}

OdbcParameter ParameterOf(const NewField& field, std::string_view statement, OdbcReading reading) {
  OdbcParameter parameter;
  switch (field.value.kind()) {
    case Value::Kind::kNull:
      break;
    case Value::Kind::kBoolean:
      parameter.kind = OdbcParameter::Kind::kWhole;
      parameter.whole = field.value.Boolean() ? -1 : 0;
      break;
    case Value::Kind::kWhole:
      parameter.kind = OdbcParameter::Kind::kWhole;
      parameter.whole = field.value.Whole();
      break;
    case Value::Kind::kDouble:
      parameter.kind = OdbcParameter::Kind::kNumber;
      parameter.number = field.value.Double();
      break;
    case Value::Kind::kText:
      if (field.binary) {
        parameter.kind = OdbcParameter::Kind::kBinary;
        parameter.bytes = field.value.Text();
      } else {
        SetText(parameter, field.value.Text(), statement, reading);
      }
      break;
  }
  return parameter;
}

/// A connection string with an option that belongs to the adapter.
std::string WithOwnOption(const std::string& connection_string, std::string_view option) {
  const std::string_view key = option.substr(0, option.find('='));
  if (option.empty()) return connection_string;
  if (HasOption(connection_string, key)) {
    throw ArgumentError("the odbc URL has the option " + std::string(key) + ", which the adapter sets itself");
  }
  return connection_string + ";" + std::string(option);
}

/// Whether a statement makes or changes tables.
bool IsDefinition(std::string_view text) {
  constexpr std::array<std::string_view, 5> kWords = {"create", "alter", "drop", "truncate", "rename"};
  const std::string_view trimmed = TrimBlanks(text);
  const std::string_view word = trimmed.substr(0, trimmed.find_first_of(" \t\r\n"));
  return std::any_of(kWords.begin(), kWords.end(),
                     [word](std::string_view sought) { return EqualIgnoringAsciiCase(word, sought); });
}

}  // namespace

// ---- Connecting -----------------------------------------------------------------------------------------------------

OdbcDatabase::OdbcDatabase(const OdbcUrl& url)
    : EngineDatabase(OdbcEngineOf(*url.dialect).dialect),
      engine_(OdbcEngineOf(*url.dialect)),
      environment_(SQL_HANDLE_ENV, {}),
      shapes_(engine_.dialect, *this) {
  const auto number = [](auto value) { return reinterpret_cast<SQLPOINTER>(static_cast<SQLULEN>(value)); };
  CheckOdbc(SQLSetEnvAttr(environment_.get(), SQL_ATTR_ODBC_VERSION, number(SQL_OV_ODBC3), 0), environment_);
  connection_ = OdbcHandle(SQL_HANDLE_DBC, environment_);
  SQLSetConnectAttrW(connection_.get(), SQL_ATTR_LOGIN_TIMEOUT, number(url.login_timeout), 0);
  std::string options = WithOwnOption(url.connection_string, engine_.connection_option);
  if (!engine_.timeout_option.empty() && !HasOption(options, engine_.timeout_option)) {
    options.append(";").append(engine_.timeout_option).append("=").append(std::to_string(url.login_timeout));
  }
  std::u16string text = WideText(options, {});
  CheckOdbc(SQLDriverConnectW(connection_.get(), nullptr, WideBuffer(text), static_cast<SQLSMALLINT>(text.size()),
                              nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT),
            connection_);
  connected_ = true;
  if (engine_.may_be_narrow && LosesCharacters()) connection_.SetTexts(OdbcTexts::kNarrow);
  for (const std::string_view setting : engine_.settings) RunOwn(setting);
  if (!engine_.cluster_question.empty() && Ask(engine_.cluster_question, {}).count() > 0) {
    in_cluster_ = true;
    for (const std::string_view setting : engine_.cluster_settings) RunOwn(setting);
  }
}

bool OdbcDatabase::LosesCharacters() {
  constexpr std::string_view kSample = "中";
  const OdbcRows rows = Ask("select '" + std::string(kSample) + "'", {});
  return rows.count() != 1 || rows.values.front() != Value(kSample);
}

OdbcDatabase::~OdbcDatabase() {
  shapes_.ForgetAll();
  if (connected_) SQLDisconnect(connection_.get());
}

// ---- Statements -----------------------------------------------------------------------------------------------------

std::unique_ptr<RowSet> OdbcDatabase::Execute(std::string_view statement) { return Run(statement, false); }

std::unique_ptr<RowSet> OdbcDatabase::Open(std::string_view query) { return Run(query, true); }

std::unique_ptr<RowSet> OdbcDatabase::Run(std::string_view text, bool wants_rows) {
  RefuseInEndedTransaction(text);
  try {
    if (dialect().native) return RunNative(text, wants_rows);
    const Shape shape = shapes_.Find(text);
    if (shape->prepared == nullptr) return RunAsItIs(shape->rewritten.text, text, wants_rows);
    return RunShape(shape, text, wants_rows);
  } catch (const DatabaseError& error) {
    Note(error);
    throw;
  }
}

bool OdbcDatabase::Prepare(OdbcShape& shape, std::string_view text, const std::vector<Literal>& literals) {
  // What is neither query nor change is not seen twice, and not every server prepares it.
  if (shape.rewritten.kind == StatementKind::kOther && literals.empty()) return true;
  try {
    auto statement = std::make_unique<OdbcStatement>(connection_);
    statement->Prepare(shape.rewritten.text, text);
    shape.prepared = std::move(statement);
    return true;
  } catch (const DatabaseError& error) {
    // The text is not to blame when the transaction or the connection is gone; tried in another form it might even
    // succeed, outside of the transaction.
    Note(error);
    if (lost_ || failure_ || MayBeRepeated(error)) throw;
    refusal_ = error;
    return false;
  }
}

DatabaseError OdbcDatabase::Refusal(std::string_view /*text*/) { return *refusal_; }

std::unique_ptr<RowSet> OdbcDatabase::RunShape(const Shape& shape, std::string_view text, bool wants_rows) {
  OdbcStatement& statement = *shape->prepared;
  if (wants_rows && shape->rewritten.kind != StatementKind::kSelect && statement.ColumnCount() == 0) {
    throw DatabaseError("the statement gives no rows", std::string(text));
  }
  std::vector<OdbcParameter> parameters = ParametersFor(*shape, text);
  try {
    statement.Execute(parameters, text);
    return TakeResult(statement, shape->rewritten.table, text);
  } catch (const DatabaseError&) {
    // What was learnt about the tables may be out of date.
    shapes_.Forget(*shape);
    throw;
  }
}

std::unique_ptr<RowSet> OdbcDatabase::RunNative(std::string_view text, bool wants_rows) {
  ScannedText scanned;
  scanned.Scan(text);
  // The shape is analysed only to know where new rows of the query would go.
  const Rewritten outline = Rewrite(scanned.shape, dialect(), *this);
  if (wants_rows && outline.kind == StatementKind::kChange) {
    throw DatabaseError("the statement gives no rows", std::string(text));
  }
  OdbcStatement statement(connection_);
  statement.ExecuteDirect(text, text);
  NoteStatement(text);
  return TakeResult(statement, outline.table, text);
}

std::unique_ptr<RowSet> OdbcDatabase::RunAsItIs(std::string_view engine_text, std::string_view text, bool wants_rows) {
  OdbcStatement statement(connection_);
  if (wants_rows) {
    std::vector<OdbcParameter> none;
    statement.Prepare(engine_text, text);
    if (statement.ColumnCount() == 0) throw DatabaseError("the statement gives no rows", std::string(text));
    statement.Execute(none, text);
  } else {
    statement.ExecuteDirect(engine_text, text);
  }
  NoteStatement(text);
  if (holds_back_ && IsDefinition(text)) StartTransaction();
  // It may have changed the tables.
  shapes_.ForgetAll();
  keys_.clear();
  return TakeResult(statement, {}, text);
}

std::unique_ptr<RowSet> OdbcDatabase::TakeResult(OdbcStatement& statement, const TableName& table,
                                                 std::string_view text) {
  if (statement.ColumnCount() == 0) {
    statement.Finish();
    return nullptr;
  }
  return std::make_unique<OdbcRowSet>(static_cast<RowAdder&>(*this), table, statement.TakeRows(engine_.reading, text));
}

std::vector<OdbcParameter> OdbcDatabase::ParametersFor(const OdbcShape& shape, std::string_view text) const {
  const std::vector<Literal>& literals = shapes_.literals();
  std::vector<OdbcParameter> parameters(literals.size());
  std::string content;
  for (std::size_t i = 0; i < literals.size(); ++i) {
    const Literal& literal = literals[i];
    const Mark& mark = shape.rewritten.marks[i];
    if (IsText(literal)) {
      content.clear();
      AppendUnquoted(literal, content);
      SetText(parameters[i], content, text, engine_.reading);
    } else if (engine_.compares_numbers_as_texts && mark.in_condition) {
      SetText(parameters[i], DigitsOf(literal, mark.negative), text, engine_.reading);
    } else {
      SetNumber(parameters[i], literal, mark.negative);
    }
  }
  return parameters;
}

void OdbcDatabase::RunOwn(std::string_view text) {
  OdbcStatement statement(connection_);
  try {
    statement.ExecuteDirect(text, text);
    statement.Finish();
  } catch (const DatabaseError& error) {
    Note(error);
    throw;
  }
}

void OdbcDatabase::RunDefinition(const std::string& statement) {
  RunOwn(statement);
  // The server has committed what was open.
  if (holds_back_) StartTransaction();
  shapes_.ForgetAll();
  keys_.clear();
}

void OdbcDatabase::InsertRow(const TableName& table, const std::vector<NewField>& fields) {
  const std::string text = InsertStatement(dialect(), table, fields);
  RefuseInEndedTransaction(text);
  std::vector<OdbcParameter> parameters;
  parameters.reserve(fields.size());
  for (const NewField& field : fields) parameters.push_back(ParameterOf(field, text, engine_.reading));
  try {
    OdbcStatement statement(connection_);
    statement.Prepare(text, text);
    statement.Execute(parameters, text);
    statement.Finish();
  } catch (const DatabaseError& error) {
    Note(error);
    throw;
  }
}

// ---- The catalogue --------------------------------------------------------------------------------------------------

OdbcRows OdbcDatabase::Ask(std::string_view question, const std::vector<std::string>& names) {
  std::vector<OdbcParameter> parameters(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) SetText(parameters[i], names[i], question, engine_.reading);
  OdbcStatement statement(connection_);
  statement.Prepare(question, question);
  statement.Execute(parameters, question);
  return statement.TakeRows(engine_.reading, question);
}

bool OdbcDatabase::HasTable(std::string_view table) { return Ask(engine_.has_table, {std::string(table)}).count() > 0; }

bool OdbcDatabase::HasColumn(const TableName& table, std::string_view column) {
  return Ask(engine_.has_column, {table.name, std::string(column)}).count() > 0;
}

TableKey OdbcDatabase::Find(const TableName& table) {
  if (const auto known = keys_.find(table.name); known != keys_.end()) return known->second;
  TableKey key;
  if (!engine_.key_columns.empty()) {
    for (const Value& column : Ask(engine_.key_columns, {table.name}).values) {
      key.order.push_back(QuotedName(dialect(), column.Text()));
      key.names.push_back(column.Text());
    }
    if (key.names.size() > 1) key.names.clear();
  }
  return keys_.emplace(table.name, std::move(key)).first->second;
}

void OdbcDatabase::CreateTables() {
  EngineDatabase::CreateTables();
  if (!engine_.create_turn.empty()) RunOwn(engine_.create_turn);
}

}  // namespace talm_flow::adapters
