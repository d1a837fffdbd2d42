#include "adapters/catalogue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <utility>

#include "db/schema.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

/// The questions of one dialect. "{table}" and "{key}" stand for names as text literals, "{number}" for a number.
struct Questions {
  std::string_view dialect;
  /// table_name, column_name, type_name, initial, key_place (0 for what is no key), in the order of the columns.
  std::string_view columns;
  /// table_name, index_name, column_name, in the order of the columns.
  std::string_view indexes;
  /// last_key
  std::string_view last_key;
  /// Sets the counter of the key; empty where an insert with that key does.
  std::string_view set_key;
};

constexpr std::array kQuestions = {
    Questions{.dialect = "sqlite",
              .columns =
                  "select m.name as table_name,c.name as column_name,c.type as type_name,c.dflt_value as initial,"
                  "c.pk as key_place from sqlite_master m join pragma_table_info(m.name) c where m.type='table' "
                  "order by m.name,c.cid",
              .indexes = "select m.name as table_name,i.name as index_name,c.name as column_name from sqlite_master m "
                         "join pragma_index_list(m.name) i join pragma_index_info(i.name) c where m.type='table' and "
                         "i.origin='c' order by m.name,i.name,c.seqno",
              .last_key = "select seq as last_key from sqlite_sequence where name={table}",
              .set_key = ""},
    Questions{.dialect = "postgresql",
              .columns = "select t.relname as table_name,a.attname as column_name,"
                         "format_type(a.atttypid,a.atttypmod) as type_name,pg_get_expr(d.adbin,d.adrelid) as initial,"
                         "case when a.attnum=any(k.conkey) then 1 else 0 end as key_place from pg_class t "
                         "join pg_attribute a on a.attrelid=t.oid and a.attnum>0 and not a.attisdropped "
                         "left join pg_attrdef d on d.adrelid=t.oid and d.adnum=a.attnum "
                         "left join pg_constraint k on k.conrelid=t.oid and k.contype='p' "
                         "where t.relkind in ('r','p') and t.relnamespace=current_schema()::regnamespace "
                         "order by t.relname,a.attnum",
              .indexes = "select t.relname as table_name,i.relname as index_name,a.attname as column_name "
                         "from pg_index x join pg_class t on t.oid=x.indrelid join pg_class i on i.oid=x.indexrelid "
                         "join pg_attribute a on a.attrelid=i.oid "
                         "where not x.indisprimary and t.relnamespace=current_schema()::regnamespace "
                         "order by t.relname,i.relname,a.attnum",
              .last_key = "select pg_sequence_last_value(pg_get_serial_sequence({table},{key})::regclass) as last_key",
              .set_key = "select setval(pg_get_serial_sequence({table},{key})::regclass,{number})"},
    Questions{.dialect = "mariadb",
              .columns = "select table_name as table_name,column_name as column_name,data_type as type_name,"
                         "column_default as initial,case when column_key='PRI' then 1 else 0 end as key_place "
                         "from information_schema.columns where table_schema=database() "
                         "order by table_name,ordinal_position",
              .indexes = "select table_name as table_name,index_name as index_name,column_name as column_name "
                         "from information_schema.statistics where table_schema=database() and index_name<>'PRIMARY' "
                         "order by table_name,index_name,seq_in_index",
              .last_key = "select auto_increment-1 as last_key from information_schema.tables "
                          "where table_schema=database() and table_name={table}",
              .set_key = ""},
};

const Questions& QuestionsOf(const Dialect& dialect) {
  const auto* const found = std::find_if(kQuestions.begin(), kQuestions.end(),
                                         [&](const Questions& questions) { return questions.dialect == dialect.name; });
  if (found != kQuestions.end()) return *found;
  throw DatabaseError("the catalogue of a database that speaks \"" + std::string(dialect.name) + "\" cannot be read");
}

std::string Question(const Dialect& dialect, std::string_view question, const TableDescription& table,
                     std::int64_t number = 0) {
  // A function that takes a name as a text takes it as the engine keeps it.
  const auto name = [&](const std::string& spelled) {
    return QuotedText(dialect, dialect.quotes == NameQuotes::kAnsiLowerCase ? AsciiLowerCase(spelled) : spelled);
  };
  return ReplaceAll(ReplaceAll(ReplaceAll(question, "{table}", name(table.name)), "{key}", name(table.key)), "{number}",
                    std::to_string(number));
}

ColumnKind KindOf(std::string_view type) {
  static constexpr std::array<std::pair<std::string_view, ColumnKind>, 17> kTypes = {{
      {"integer", ColumnKind::kInteger},
      {"bigint", ColumnKind::kInteger},
      {"int", ColumnKind::kInteger},
      {"smallint", ColumnKind::kInteger},
      {"tinyint", ColumnKind::kInteger},
      {"real", ColumnKind::kReal},
      {"double precision", ColumnKind::kReal},
      {"double", ColumnKind::kReal},
      {"float", ColumnKind::kReal},
      {"text", ColumnKind::kText},
      {"longtext", ColumnKind::kText},
      {"varchar", ColumnKind::kText},
      {"character varying", ColumnKind::kText},
      {"blob", ColumnKind::kBinary},
      {"bytea", ColumnKind::kBinary},
      {"longblob", ColumnKind::kBinary},
      {"varbinary", ColumnKind::kBinary},
  }};
  const std::string word = AsciiLowerCase(type.substr(0, type.find('(')));
  for (const auto& [name, kind] : kTypes) {
    if (name == word) return kind;
  }
  return ColumnKind::kOther;
}

/// A default as the engine tells it: it may stand in quotes, with a type behind.
std::string InitialOf(const Value& told) {
  std::string text = told.IsNull() ? std::string() : JoinedText(told);
  if (AsciiLowerCase(text) == "null") return {};
  if (const std::size_t type = text.find("::"); type != text.npos) text.resize(type);
  if (text.size() >= 2 && text.front() == '\'' && text.back() == '\'') text = text.substr(1, text.size() - 2);
  return text;
}

TableDescription Described(const db::Table& table) {
  TableDescription description{std::string(table.name), std::string(table.key), {}, {}};
  for (const db::Column& column : table.columns) {
    static constexpr std::array kKinds = {ColumnKind::kInteger, ColumnKind::kReal, ColumnKind::kText,
                                          ColumnKind::kBinary};
    static constexpr std::array<std::string_view, 3> kInitials = {"", "0", "1"};
    description.columns.push_back({std::string(column.name), kKinds.at(static_cast<std::size_t>(column.kind)),
                                   std::string(kInitials.at(static_cast<std::size_t>(column.initial)))});
  }
  for (const db::Index& index : table.indexes) {
    IndexDescription& described = description.indexes.emplace_back();
    described.name = table.name;
    for (const std::string_view column : Split(index.columns, ",")) {
      described.name.append("_").append(column);
      described.columns.emplace_back(column);
    }
  }
  return description;
}

/// Spelled as in the schema where that knows the name.
void Spell(std::string& name, std::string_view known) {
  if (EqualIgnoringAsciiCase(name, known)) name = known;
}

void SpellAs(TableDescription& table, const TableDescription& known) {
  Spell(table.key, known.key);
  const auto spell = [&](std::string& name) {
    Spell(name, known.key);
    if (const ColumnDescription* const column = known.FindColumn(name)) name = column->name;
  };
  for (ColumnDescription& column : table.columns) spell(column.name);
  for (IndexDescription& index : table.indexes) {
    for (const IndexDescription& other : known.indexes) Spell(index.name, other.name);
    for (std::string& column : index.columns) spell(column);
  }
}

using TablesByName = std::map<std::string, TableDescription>;

void ReadColumns(Connection& connection, const Questions& questions, TablesByName& tables) {
  const auto rows = connection.Open(questions.columns);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const std::string name = JoinedText(rows->Field("table_name"));
    TableDescription& table = tables[AsciiLowerCase(name)];
    table.name = name;
    const std::string column = JoinedText(rows->Field("column_name"));
    if (table.key.empty() && ToDouble(rows->Field("key_place")) != 0) {
      table.key = column;
    } else {
      table.columns.push_back(
          {column, KindOf(JoinedText(rows->Field("type_name"))), InitialOf(rows->Field("initial"))});
    }
  }
}

void ReadIndexes(Connection& connection, const Questions& questions, TablesByName& tables) {
  const auto rows = connection.Open(questions.indexes);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const auto table = tables.find(AsciiLowerCase(JoinedText(rows->Field("table_name"))));
    if (table == tables.end()) continue;
    const std::string name = JoinedText(rows->Field("index_name"));
    auto& indexes = table->second.indexes;
    if (indexes.empty() || indexes.back().name != name) indexes.push_back({name, {}});
    indexes.back().columns.push_back(JoinedText(rows->Field("column_name")));
  }
}

/// An engine may keep the names of columns in lower case; the units tell how they were meant.
void SpellAsUnits(Connection& connection, std::map<std::int64_t, TableDescription>& forms) {
  const auto rows = connection.Open("select TableID,InUnitID from TableInUnitConstruction");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const Value number = rows->Field("TableID");
    const auto form = number.IsNull() ? forms.end() : forms.find(static_cast<std::int64_t>(ToDouble(number)));
    if (form == forms.end()) continue;
    for (ColumnDescription& column : form->second.columns) Spell(column.name, JoinedText(rows->Field("InUnitID")));
  }
}

}  // namespace

std::string_view Told(ColumnKind kind) {
  static constexpr std::array<std::string_view, 5> kWords = {"integer", "floating-point number", "text", "binary",
                                                             "other"};
  return kWords.at(static_cast<std::size_t>(kind));
}

std::optional<std::int64_t> TableDescription::FormNumber() const {
  const std::string_view prefix = db::kFormTablePrefix;
  if (name.size() <= prefix.size() ||
      !EqualIgnoringAsciiCase(std::string_view(name).substr(0, prefix.size()), prefix)) {
    return std::nullopt;
  }
  std::int32_t number = 0;
  const char* const end = name.data() + name.size();
  const auto [last, error] = std::from_chars(name.data() + prefix.size(), end, number);
  if (error != std::errc() || last != end || number < 1 || name[prefix.size()] == '0') return std::nullopt;
  return number;
}

const ColumnDescription* TableDescription::FindColumn(std::string_view column) const {
  for (const ColumnDescription& candidate : columns) {
    if (EqualIgnoringAsciiCase(candidate.name, column)) return &candidate;
  }
  return nullptr;
}

std::vector<TableDescription> CompleteTables() {
  std::vector<TableDescription> tables;
  for (const db::Table& table : db::Tables()) tables.push_back(Described(table));
  return tables;
}

std::vector<TableDescription> DescribeTables(Connection& connection, const Dialect& dialect) {
  const Questions& questions = QuestionsOf(dialect);
  TablesByName found;
  ReadColumns(connection, questions, found);
  ReadIndexes(connection, questions, found);
  std::vector<TableDescription> tables;
  for (const TableDescription& known : CompleteTables()) {
    const auto table = found.find(AsciiLowerCase(known.name));
    if (table == found.end()) continue;
    table->second.name = known.name;
    SpellAs(table->second, known);
    tables.push_back(std::move(table->second));
  }
  std::map<std::int64_t, TableDescription> forms;
  for (auto& [name, table] : found) {
    const auto number = table.FormNumber();
    if (!number) continue;
    table.name = std::string(db::kFormTablePrefix) + std::to_string(*number);
    Spell(table.key, db::kFormTableKey);
    forms.emplace(*number, std::move(table));
  }
  if (found.contains("tableinunitconstruction")) SpellAsUnits(connection, forms);
  for (auto& [number, table] : forms) tables.push_back(std::move(table));
  return tables;
}

std::int64_t LastKey(Connection& connection, const Dialect& dialect, const TableDescription& table) {
  const auto rows = connection.Open(Question(dialect, QuestionsOf(dialect).last_key, table));
  if (rows->AtEnd()) return 0;
  const Value last = rows->Field("last_key");
  return last.IsNull() ? 0 : static_cast<std::int64_t>(ToDouble(last));
}

void ContinueKeys(Connection& connection, const Dialect& dialect, const TableDescription& table, std::int64_t key) {
  if (LastKey(connection, dialect, table) >= key) return;
  const std::string_view set_key = QuestionsOf(dialect).set_key;
  if (!set_key.empty()) {
    (void)connection.Open(Question(dialect, set_key, table, key));
    return;
  }
  // No row has the key: the counter of such an engine is never below one.
  const std::string number = std::to_string(key);
  (void)connection.Execute("insert into " + table.name + " (" + table.key + ") values (" + number + ")");
  (void)connection.Execute("delete from " + table.name + " where " + table.key + "=" + number);
}

}  // namespace talm_flow::adapters
