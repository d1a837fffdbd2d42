#include "support/world.h"

#include <string>

#include "talm_flow/conversion.h"

namespace talm_flow::test {

World::World()
    : database_(ChosenDatabase()),
      recording_(*database_),
      tracing_(recording_, [this](std::string_view text) { trace_.emplace_back(text); }),
      host_({.fixed_clock = MakeDateTime(2026, 1, 31, 9, 5, 0)}) {}

void World::Run(std::string_view statement) { (void)database_->Execute(statement); }

std::vector<std::string> World::Rows(std::string_view query) {
  std::vector<std::string> result;
  const auto rows = database_->Open(query);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::string line;
    for (std::size_t i = 0; i < rows->ColumnCount(); ++i) {
      if (i > 0) line += '|';
      const Value field = rows->FieldAt(i);
      line += field.IsNull() ? "NULL" : JoinedText(field);
    }
    result.push_back(std::move(line));
  }
  return result;
}

std::string World::Row(std::string_view query) {
  auto rows = Rows(query);
  return rows.empty() ? std::string() : rows.front();
}

void World::Step(int flow_id, int flow_no, int parent_no, std::string_view command) {
  Run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values (" +
      std::to_string(flow_id) + "," + std::to_string(flow_no) + "," + std::to_string(parent_no) + ",0,'Step " +
      std::to_string(flow_no) + "'," + Literal(command) + ")");
}

void World::Parameter(int flow_id, int flow_no, std::string_view name, std::string_view data) {
  Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (" + std::to_string(flow_id) +
      "," + std::to_string(flow_no) + "," + Literal(name) + "," + Literal(data) + ")");
}

std::string Literal(std::string_view text) {
  std::string literal = "'";
  for (const char c : text) {
    if (c == '\'') literal += '\'';
    literal += c;
  }
  return literal + '\'';
}

}  // namespace talm_flow::test
