#include "adapters/postgresql_catalog.h"

#include <charconv>
#include <cstdint>

#include "adapters/sql_tokens.h"
#include "db/schema.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

constexpr std::string_view kColumns =
    "select c.oid, c.relname, a.attnum, a.attname, array_position(i.indkey::int2[], a.attnum) as place, "
    "i.indnkeyatts from pg_catalog.pg_class c "
    "join pg_catalog.pg_attribute a on a.attrelid=c.oid and a.attnum>0 and not a.attisdropped "
    "left join pg_catalog.pg_index i on i.indrelid=c.oid and i.indisprimary where c.oid=";

std::string_view Field(const PGresult* result, int row, int column) {
  return {PQgetvalue(result, row, column), static_cast<std::size_t>(PQgetlength(result, row, column))};
}

template <typename Number>
Number NumberFrom(std::string_view digits) {
  Number number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

template <typename Columns>
void SpellAs(std::string_view spelling, Columns& columns) {
  for (auto& column : columns) {
    if (EqualIgnoringAsciiCase(column.name, spelling)) column.spelling = spelling;
  }
}

/// A name as it is written, without its quotes.
std::string Unquoted(std::string_view name) {
  if (name.size() < 2 || name.front() != '"') return std::string(name);
  return ReplaceAll(name.substr(1, name.size() - 2), "\"\"", "\"");
}

/// The number of a form whose table has this name.
std::optional<std::int32_t> FormOf(std::string_view table) {
  const std::size_t prefix = db::kFormTablePrefix.size();
  if (!EqualIgnoringAsciiCase(table.substr(0, prefix), db::kFormTablePrefix)) return std::nullopt;
  const std::string_view digits = table.substr(prefix);
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

}  // namespace

TableKey PostgresqlCatalog::Find(const TableName& table) { return OfName(table).key; }

bool PostgresqlCatalog::HasColumn(const TableName& table, std::string_view column) {
  for (const Column& candidate : OfName(table).columns) {
    if (EqualIgnoringAsciiCase(candidate.name, column)) return true;
  }
  return false;
}

std::optional<std::string> PostgresqlCatalog::Spelling(Oid table, int column, std::string_view shown_as) {
  if (table == 0) return std::nullopt;
  for (const Column& candidate : OfOid(table).columns) {
    if (candidate.number == column && candidate.name == shown_as) return candidate.spelling;
  }
  return std::nullopt;
}

std::string PostgresqlCatalog::KeyFollowing(std::string_view statement) {
  const std::vector<Token> tokens = Tokenize(statement);
  const auto text = [&](std::size_t i) {
    return i < tokens.size() ? statement.substr(tokens[i].begin, tokens[i].end - tokens[i].begin) : std::string_view();
  };
  if (!EqualIgnoringAsciiCase(text(0), "insert") || !EqualIgnoringAsciiCase(text(1), "into")) return {};
  TableName table{.schema = {}, .name = Unquoted(text(2))};
  std::string written(text(2));
  std::size_t behind = 3;
  if (text(3) == ".") {
    table = {.schema = table.name, .name = Unquoted(text(4))};
    written.append(".").append(text(4));
    behind = 5;
  }
  const TableKey key = Find(table);
  if (key.names.size() != 1) return {};
  // Without a list of columns a row begins with the key.
  bool given = !EqualIgnoringAsciiCase(text(behind), "default");
  if (text(behind) == "(") {
    given = false;
    for (std::size_t i = behind + 1; i < tokens.size() && text(i) != ")"; ++i) {
      given = given || EqualIgnoringAsciiCase(Unquoted(text(i)), key.names.front());
    }
  }
  if (!given) return {};
  const Dialect& dialect = PostgresqlDialect();
  return "select setval(s,m) from (select pg_get_serial_sequence(" + QuotedText(dialect, written) + "," +
         QuotedText(dialect, key.names.front()) + ")::regclass as s, (select max(" + key.order.front() + ") from " +
         written + ") as m) k where m>coalesce(pg_sequence_last_value(s),0)";
}

void PostgresqlCatalog::Forget() {
  by_name_.clear();
  by_oid_.clear();
}

const PostgresqlCatalog::Table& PostgresqlCatalog::OfName(const TableName& name) {
  const auto quoted = [&name](const Dialect& dialect) {
    const std::string table = QuotedName(dialect, name.name);
    return name.schema.empty() ? table : QuotedName(dialect, name.schema) + "." + table;
  };
  // A name without quotes is folded; with quotes it stands for itself.
  const std::string as_written = quoted(SqliteDialect());
  const auto known = by_name_.find(as_written);
  if (known != by_name_.end()) return known->second;
  PostgresqlParameters parameters;
  parameters.AddWritten(quoted(PostgresqlDialect()));
  parameters.AddWritten(as_written);
  return by_name_.emplace(as_written, Read("coalesce(to_regclass($1), to_regclass($2))", parameters)).first->second;
}

const PostgresqlCatalog::Table& PostgresqlCatalog::OfOid(Oid oid) {
  const auto known = by_oid_.find(oid);
  if (known != by_oid_.end()) return known->second;
  for (const auto& [name, table] : by_name_) {
    if (table.oid == oid) return table;
  }
  PostgresqlParameters parameters;
  parameters.AddWritten(std::to_string(oid));
  return by_oid_.emplace(oid, Read("$1::oid", parameters)).first->second;
}

PostgresqlCatalog::Table PostgresqlCatalog::Read(std::string_view condition, PostgresqlParameters& parameters) {
  const std::string text = std::string(kColumns).append(condition).append(" order by place, a.attnum");
  const PostgresqlResult result = connection_.RunOnce(text, parameters, "");
  Table table;
  const int rows = PQntuples(result.get());
  if (rows == 0) return table;
  table.oid = NumberFrom<Oid>(Field(result.get(), 0, 0));
  for (int row = 0; row < rows; ++row) {
    const std::string_view name = Field(result.get(), row, 3);
    table.columns.push_back({NumberFrom<int>(Field(result.get(), row, 2)), std::string(name), std::string(name)});
    const bool in_key = PQgetisnull(result.get(), row, 4) == 0 &&
                        NumberFrom<int>(Field(result.get(), row, 4)) < NumberFrom<int>(Field(result.get(), row, 5));
    if (in_key) table.key.order.push_back(QuotedName(SqliteDialect(), name));
    if (in_key) table.key.names.emplace_back(name);
  }
  // A name is the whole key only when it is all of it.
  if (table.key.names.size() != 1) table.key.names.clear();
  Spell(Field(result.get(), 0, 1), table.columns);
  return table;
}

void PostgresqlCatalog::Spell(std::string_view table, std::vector<Column>& columns) {
  for (const db::Table& known : db::Tables()) {
    if (!EqualIgnoringAsciiCase(known.name, table)) continue;
    SpellAs(known.key, columns);
    for (const db::Column& column : known.columns) SpellAs(column.name, columns);
    return;
  }
  const auto form = FormOf(table);
  if (!form) return;
  SpellAs(db::kFormTableKey, columns);
  for (const db::Column& column : db::FormTableColumns()) SpellAs(column.name, columns);
  if (!HasTable({.schema = {}, .name = "TableInUnitConstruction"})) return;
  PostgresqlParameters parameters;
  parameters.AddWritten(std::to_string(*form));
  const std::string text = "select InUnitID from TableInUnitConstruction where TableID=$1 order by ID";
  const PostgresqlResult units = connection_.RunOnce(text, parameters, "");
  for (int row = 0; row < PQntuples(units.get()); ++row) SpellAs(Field(units.get(), row, 0), columns);
}

}  // namespace talm_flow::adapters
