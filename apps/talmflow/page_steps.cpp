#include "page_steps.h"

#include <algorithm>
#include <unordered_map>

#include "html.h"
#include "lookup.h"
#include "talm_flow/conversion.h"

namespace talm_flow::program {
namespace {

/// "C_" n "_" k, with any numbers: a name that is no word of scripts and no property of forms.
bool IsFieldName(std::string_view name) {
  constexpr std::string_view kBeginning = "C_";
  constexpr std::size_t kLongest = 24;
  if (!name.starts_with(kBeginning) || name.size() > kLongest) return false;
  name.remove_prefix(kBeginning.size());
  const auto middle = name.find('_');
  return middle != std::string_view::npos && IsDigits(name.substr(0, middle)) && IsDigits(name.substr(middle + 1));
}

bool IsStepNumber(const Value& number) { return number.IsWhole() || number.IsNull(); }

}  // namespace

std::vector<PageStep> ReadPageSteps(Workspace& workspace, std::int64_t flow) {
  const auto condition = " Where FlowID=" + std::to_string(flow) + " Order By ID";
  std::vector<PageStep> steps;
  std::unordered_map<std::string, std::size_t> by_number;
  for (auto& row : workspace.Rows("Select FlowNo,ParentNo,Remark,Command From WorkFlowConstruction" + condition)) {
    by_number.emplace(JoinedText(row[0]), steps.size());
    steps.push_back({std::move(row[0]), std::move(row[1]), std::move(row[2]), std::move(row[3]), {}});
  }
  for (auto& row : workspace.Rows("Select FlowNo,ParameterName,ParameterData From WorkFlowParameter" + condition)) {
    const auto step = by_number.find(JoinedText(row[0]));
    if (step == by_number.end()) continue;
    steps[step->second].parameters.emplace_back(JoinedText(row[1]), std::move(row[2]));
  }
  return steps;
}

bool FitsForm(const PageStep& step) {
  return IsStepNumber(step.number) && IsStepNumber(step.parent) &&
         std::ranges::all_of(step.parameters, [](const auto& parameter) { return IsFieldName(parameter.first); });
}

std::string BoxHandler(const PageStep& step, const host::CommonFunctions& common) {
  std::string handler;
  const auto assign = [&](std::string_view field, const std::string& value) {
    handler += "document.";
    handler += kStepForm;
    handler += '.';
    handler += field;
    handler += ".value='";
    handler += value;
    handler += "';";
  };
  for (const std::string_view field : {"FlowNo", "FlowNoNow", "OldFlowNo"}) assign(field, JoinedText(step.number));
  assign("ParentNo", JoinedText(step.parent));
  assign("Remark", common.DisplayText(step.remark));
  assign("Command", common.DisplayText(step.command));
  for (const auto& [name, data] : step.parameters) assign(name, common.DisplayText(data));
  handler += "buttoncon();opendiv();return false;";
  return WithoutReferences(WellFormed(handler));
}

}  // namespace talm_flow::program
