#include "check/definition.h"

#include <charconv>
#include <cmath>
#include <unordered_map>

#include "check/blanks.h"
#include "check/report.h"
#include "commands/command_table.h"
#include "design/definition_text.h"
#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::check {
namespace {

std::string ParameterNameOf(const engine::CommandRow& row, int k) {
  return std::string(row.name) + "_" + std::to_string(k);
}

/// The line, behind the first, with which a value could not be written into a definition text.
std::optional<std::string_view> LineThatCannotBeCarried(std::string_view value) {
  auto [line, rest] = design::SeparateLine(value);
  while (!rest.empty()) {
    const auto next = design::SeparateLine(rest);
    if (design::IsSeparateLine(next.front)) return next.front;
    rest = next.back;
  }
  return std::nullopt;
}

void ReportIfNotCarried(std::string_view value, const Place& place, Report& report) {
  if (const auto line = LineThatCannotBeCarried(value)) {
    report.Add(Code::kNotCarried, place,
               "The value has a line that begins like a key, " + Shown(*line) +
                   "; exported and loaded again, it would end before it.",
               "Put a blank in front of that line.");
  }
}

}  // namespace

const Parameter* Step::Find(int k) const {
  if (row == nullptr) return nullptr;
  const std::string name = ParameterNameOf(*row, k);
  for (const Parameter& parameter : parameters) {
    if (parameter.name == name) return &parameter;
  }
  return nullptr;
}

std::string_view Step::Data(int k) const {
  const Parameter* const found = Find(k);
  return found == nullptr ? std::string_view() : found->data;
}

std::optional<std::int64_t> WholeNumber(std::string_view text) {
  text = Trimmed(text);
  if (text.empty() || text.find(',') != std::string_view::npos) return std::nullopt;
  const auto number = ParseNumber(text);
  constexpr double kLargest = 1E15;
  if (!number || *number != std::trunc(*number) || std::fabs(*number) > kLargest) return std::nullopt;
  return static_cast<std::int64_t>(*number);
}

Definition ReadFlow(db::Session& session, std::int64_t flow_id, Report& report) {
  Definition definition;
  definition.flow = flow_id;
  std::unordered_map<std::int64_t, Step*> by_number;
  const auto steps = session.Open(
      "Select FlowNo,ParentNo,Serial,Remark,Command From WorkFlowConstruction Where FlowID=", flow_id, " Order By ID");
  for (; !steps->AtEnd(); steps->MoveNext()) {
    Step& step = definition.steps.emplace_back();
    step.number = WholeNumber(JoinedText(steps->Field("FlowNo")));
    step.parent = WholeNumber(JoinedText(steps->Field("ParentNo")));
    step.serial = JoinedText(steps->Field("Serial"));
    step.remark = JoinedText(steps->Field("Remark"));
    step.command = JoinedText(steps->Field("Command"));
    step.row = engine::FindCommand(commands::Commands(), step.command);
    if (step.number) by_number.emplace(*step.number, &step);
    ReportIfNotCarried(step.remark, {.step = &step}, report);
  }
  steps->Close();
  const auto parameters =
      session.Open("Select FlowNo,ParameterName,ParameterData From WorkFlowParameter Where FlowID=", flow_id);
  for (; !parameters->AtEnd(); parameters->MoveNext()) {
    const auto number = WholeNumber(JoinedText(parameters->Field("FlowNo")));
    const auto found = number ? by_number.find(*number) : by_number.end();
    // What is left of a step that was deleted harms nothing.
    if (found == by_number.end()) continue;
    Parameter& parameter = found->second->parameters.emplace_back();
    parameter.name = JoinedText(parameters->Field("ParameterName"));
    parameter.data = JoinedText(parameters->Field("ParameterData"));
    ReportIfNotCarried(parameter.data, {.step = found->second, .parameter = &parameter}, report);
  }
  return definition;
}

void ReadSurroundings(db::Session& session, std::int64_t flow_id, Definition& definition) {
  const auto flow = session.Open("Select Remark From WorkFlowName Where FlowID=", flow_id);
  definition.remark = flow->AtEnd() ? std::string() : JoinedText(flow->Field("Remark"));
  flow->Close();
  const auto inputs = session.Open(
      "Select InputTitle,OrderNo,Sort,ClassContent From WorkFlowFunctionInput Where FlowID=", flow_id, " Order By ID");
  for (; !inputs->AtEnd(); inputs->MoveNext()) {
    definition.inputs.push_back({JoinedText(inputs->Field("InputTitle")), JoinedText(inputs->Field("OrderNo")),
                                 JoinedText(inputs->Field("Sort")), JoinedText(inputs->Field("ClassContent"))});
  }
}

}  // namespace talm_flow::check
