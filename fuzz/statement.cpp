#include <algorithm>
#include <optional>

#include "properties.h"
#include "property.h"
#include "reference_engine.h"
#include "statement_maker.h"
#include "taken_back.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::fuzz {
namespace {

std::string FieldText(const Value& field) {
  switch (field.kind()) {
    case Value::Kind::kNull:
      return "Null";
    case Value::Kind::kWhole:
      return "whole " + std::to_string(field.Whole());
    case Value::Kind::kDouble:
      return "number " + NumberText(field.Double());
    default:
      return "text " + JoinedText(field);
  }
}

std::optional<Given> RunThroughAdapter(Connection& connection, const std::string& statement) {
  try {
    Given given;
    const auto rows = connection.Execute(statement);
    if (!rows) return given;
    for (std::size_t i = 0; i < rows->ColumnCount(); ++i) given.columns.emplace_back(rows->ColumnName(i));
    for (; !rows->AtEnd(); rows->MoveNext()) {
      auto& row = given.rows.emplace_back();
      for (std::size_t i = 0; i < rows->ColumnCount(); ++i) row.push_back(FieldText(rows->FieldAt(i)));
    }
    return given;
  } catch (const DatabaseError&) {
    return std::nullopt;
  }
}

std::string Shown(const Given& given) {
  std::string text;
  for (const std::string& name : given.columns) {
    // A select inside of a list names its column by its text, in which the limit stands elsewhere.
    const bool from_text = LowerCase(name).find("select") != name.npos;
    text += (from_text ? "select" : name) + " | ";
  }
  for (const auto& row : given.rows) {
    text += '\n';
    for (const std::string& field : row) text += field + " | ";
  }
  return text;
}

/// The same tables behind an adapter and in the engine alone.
class Twins {
 public:
  Twins() : adapter_(adapters::Open("sqlite::memory:")) {
    for (const std::string& statement : StatementsOfTables()) {
      (void)adapter_->Execute(statement);
      Require(engine_.Run(statement).has_value(), "the tables can be made");
    }
  }

  void Check(Choices& choices) {
    constexpr int kMostCompared = 8;
    const TakenBack taken_back(*adapter_);
    const TakenBack engine_taken_back(engine_);
    for (int i = 0; i < kMostCompared && !choices.AtEnd(); ++i) Compare(MakeStatement(choices));
    for (const std::string table : {"t", "u"}) {
      Compare({"select * from " + table, "select * from " + table + " order by rowid", true});
    }
  }

 private:
  void Compare(const MadeStatement& statement) {
    auto found = RunThroughAdapter(*adapter_, statement.component);
    auto due = engine_.Run(statement.engine);
    const std::string texts = "\n" + statement.component + "\n" + statement.engine;
    Require(found.has_value() == due.has_value(), "the adapter takes what the engine takes" + texts);
    if (!found) return;
    if (!statement.ordered) {
      std::sort(found->rows.begin(), found->rows.end());
      std::sort(due->rows.begin(), due->rows.end());
    }
    RequireEqual(Shown(*found), Shown(*due), "the adapter gives what the engine gives" + texts);
  }

  std::unique_ptr<adapters::Database> adapter_;
  ReferenceEngine engine_;
};

}  // namespace

void CheckStatement(std::string_view input) {
  static Twins twins;
  Choices choices(input);
  twins.Check(choices);
}

}  // namespace talm_flow::fuzz
