#include <algorithm>
#include <filesystem>
#include <iostream>

#include "check.h"
#include "definition_text.h"
#include "lookup.h"
#include "terminal.h"
#include "workspace.h"

namespace talm_flow::program {
namespace {

Json FindingAsJson(const Finding& finding) {
  Json json = {{"code", finding.code}, {"severity", finding.IsError() ? "error" : "warning"}};
  json["flow"] = finding.flow ? Json(*finding.flow) : Json();
  json["step"] = finding.step ? Json(*finding.step) : Json();
  json["parameter"] = finding.parameter.empty() ? Json() : Json(finding.parameter);
  json["line"] = finding.line == 0 ? Json() : Json(finding.line);
  json["problem"] = finding.problem;
  json["advice"] = finding.advice;
  return json;
}

/// "leave.flow:45: error E206, step 5, C_16_1: ..."
std::string Heading(const Finding& finding, const std::string& source) {
  std::string heading = source;
  if (finding.line != 0) heading += ":" + std::to_string(finding.line);
  heading += finding.IsError() ? ": error " : ": warning ";
  heading += finding.code;
  if (finding.step) heading += ", step " + std::to_string(*finding.step);
  if (!finding.parameter.empty()) heading += ", " + finding.parameter;
  return heading + ":";
}

class Check : public Subcommand {
 public:
  explicit Check(CLI::App& parent)
      : Subcommand(parent, "check", "Tell what in a flow can never work, and what is hardly meant",
                   "talmflow check leave.flow\n"
                   "talmflow check 3\n"
                   "talmflow check \"Leave request\" --json\n"
                   "\nA FILE is checked without a database. The exit status is 1 when there is an error, 0 when there\n"
                   "are warnings at most. docs/checks.md explains every code with an example.") {
    app().add_option("FLOW", flow_, "A definition text's file, or a stored flow by number or name")->required();
  }

  void Run(const GlobalOptions& options) override {
    std::error_code ignored;
    const bool is_file = flow_ == "-" || std::filesystem::is_regular_file(flow_, ignored);
    const auto findings = is_file ? CheckDefinition(ReadDefinitionUnchecked(flow_)) : OfStored(options);
    const auto source = is_file ? (flow_ == "-" ? std::string("standard input") : flow_) : title_;
    if (options.json) {
      std::cout << Dump(FindingsAsJson(findings), 2) << '\n';
    } else {
      if (!findings.empty()) std::cout << FindingsAsText(findings, source) << '\n';
      std::cout << FindingsCounted(findings) << '\n';
    }
    if (HasErrors(findings)) status_ = 1;
  }

  [[nodiscard]] int Status() const override { return status_; }

 private:
  Findings OfStored(const GlobalOptions& options) {
    Workspace workspace(options, Need::kComplete);
    const auto flow = FlowOf(workspace, flow_);
    title_ = FlowTitle(workspace, flow);
    return CheckFlow(workspace.connection(), workspace.services(), flow);
  }

  std::string flow_;
  std::string title_;
  int status_ = 0;
};

}  // namespace

bool HasErrors(const Findings& findings) {
  return std::any_of(findings.begin(), findings.end(), [](const Finding& finding) { return finding.IsError(); });
}

std::string FindingsAsText(const Findings& findings, const std::string& source) {
  std::string text;
  for (const auto& finding : findings) {
    if (!text.empty()) text += '\n';
    text +=
        Printable(Heading(finding, source)) + " " + Printable(finding.problem) + "\n    " + Printable(finding.advice);
  }
  return text;
}

std::string FindingsCounted(const Findings& findings) {
  if (findings.empty()) return "No findings.";
  const auto errors = static_cast<std::size_t>(
      std::count_if(findings.begin(), findings.end(), [](const Finding& finding) { return finding.IsError(); }));
  return Counted(errors, "error") + ", " + Counted(findings.size() - errors, "warning") + ".";
}

Json FindingsAsJson(const Findings& findings) {
  Json json = Json::array();
  for (const auto& finding : findings) json.push_back(FindingAsJson(finding));
  return json;
}

void AddCheckSubcommands(CLI::App& parent, Subcommands& all) { all.push_back(std::make_unique<Check>(parent)); }

}  // namespace talm_flow::program
