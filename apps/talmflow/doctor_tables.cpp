#include <algorithm>

#include "doctor.h"
#include "lookup.h"
#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::program {
namespace {

using adapters::IndexDescription;
using adapters::TableDescription;

constexpr const char* kCreate = "create what is missing with talmflow init";
constexpr const char* kMove =
    "copy the database into a new one with talmflow copy, or change the table with the engine's own tools";

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& word : words) text.append(text.empty() ? "" : ",").append(word);
  return text;
}

bool HasIndex(const TableDescription& table, const IndexDescription& sought) {
  return std::any_of(table.indexes.begin(), table.indexes.end(),
                     [&](const IndexDescription& index) { return index.columns == sought.columns; });
}

void CompareColumns(const TableDescription& wanted, const TableDescription& found, Ailments& ailments) {
  if (!EqualIgnoringAsciiCase(wanted.key, found.key)) {
    ailments.push_back({true, "schema", wanted.name, "the key is not the column " + wanted.key, kMove});
  }
  for (const auto& column : wanted.columns) {
    const auto* const present = found.FindColumn(column.name);
    if (present == nullptr) {
      ailments.push_back({true, "schema", wanted.name, "the column " + column.name + " is missing", kMove});
      continue;
    }
    if (present->kind != column.kind) {
      ailments.push_back({true, "schema", wanted.name,
                          "the column " + column.name + " is of the kind \"" + std::string(Told(present->kind)) +
                              "\", not \"" + std::string(Told(column.kind)) + "\"",
                          kMove});
    }
    if (present->initial != column.initial) {
      const auto told = [](const std::string& initial) { return initial.empty() ? std::string("Null") : initial; };
      ailments.push_back(
          {true, "schema", wanted.name,
           "the column " + column.name + " is " + told(present->initial) + " by default, not " + told(column.initial),
           kMove});
    }
  }
}

void CompareIndexes(const TableDescription& wanted, const TableDescription& found, Ailments& ailments) {
  for (const auto& index : wanted.indexes) {
    if (HasIndex(found, index)) continue;
    ailments.push_back(
        {true, "schema", wanted.name, "the index on (" + Joined(index.columns) + ") is missing", kCreate});
  }
  for (const auto& index : found.indexes) {
    if (HasIndex(wanted, index)) continue;
    ailments.push_back({false, "schema", wanted.name,
                        "the index " + index.name + " on (" + Joined(index.columns) + ") is of no use known here",
                        "drop it unless the host needs it: an index on a flag alone misleads the engine"});
  }
}

void CompareKeys(adapters::Database& database, const TableDescription& table, Ailments& ailments) {
  if (table.key.empty()) return;
  const auto rows =
      database.Open("Select Top 1 " + table.key + " From " + table.name + " Order By " + table.key + " Desc");
  const auto highest = rows->AtEnd() ? 0 : NumberOf(rows->FieldAt(0));
  const auto last = database.LastKey(table);
  if (highest <= last) return;
  ailments.push_back(
      {true, "key", table.name,
       "the key " + std::to_string(highest) + " exists, but the database would continue behind " + std::to_string(last),
       "copy the database into a new one with talmflow copy, which sets the counters"});
}

void ExamineForms(const std::vector<TableDescription>& tables, adapters::Database& database, Ailments& ailments) {
  const auto rows = database.Open("Select TableID From TableName Order By TableID");
  std::vector<std::int64_t> registered;
  for (; !rows->AtEnd(); rows->MoveNext()) registered.push_back(NumberOf(rows->FieldAt(0)));
  std::vector<std::int64_t> present;
  for (const auto& table : tables) {
    const auto number = table.FormNumber();
    if (!number) continue;
    present.push_back(*number);
    if (std::find(registered.begin(), registered.end(), *number) != registered.end()) continue;
    ailments.push_back({false, "orphan", table.name, "the form " + std::to_string(*number) + " has no row in TableName",
                        "insert one, or drop the table"});
  }
  for (const auto number : registered) {
    if (std::find(present.begin(), present.end(), number) != present.end()) continue;
    ailments.push_back({true, "orphan", "TableName",
                        "the form " + std::to_string(number) + " has no table TableData" + std::to_string(number),
                        "delete the row, or create the table"});
  }
}

}  // namespace

Ailments ExamineTables(adapters::Database& database) {
  Ailments ailments;
  const auto found = database.DescribeTables();
  bool forms = false;
  for (const auto& wanted : adapters::CompleteTables()) {
    const auto table = std::find_if(found.begin(), found.end(),
                                    [&](const TableDescription& candidate) { return candidate.name == wanted.name; });
    if (table == found.end()) {
      ailments.push_back({true, "schema", wanted.name, "the table is missing", kCreate});
      continue;
    }
    forms = forms || wanted.name == "TableName";
    CompareColumns(wanted, *table, ailments);
    CompareIndexes(wanted, *table, ailments);
  }
  for (const auto& table : found) CompareKeys(database, table, ailments);
  if (forms) ExamineForms(found, database, ailments);
  return ailments;
}

}  // namespace talm_flow::program
