#include <filesystem>
#include <iostream>

#include "check.h"
#include "definition_text.h"
#include "difference.h"
#include "json.h"
#include "lookup.h"
#include "talm_flow/conversion.h"
#include "talm_flow/in_out.h"
#include "talm_flow/name.h"
#include "talm_flow/text.h"
#include "workspace.h"

namespace talm_flow::program {
namespace {

class Import : public Subcommand {
 public:
  explicit Import(CLI::App& parent)
      : Subcommand(parent, "import", "Load a flow definition from a text file",
                   "talmflow import leave.txt\n"
                   "talmflow import leave.txt --name \"Leave request\" --creater kim\n"
                   "talmflow import leave.txt --flow 3\n"
                   "\nLine ends may be LF or CR LF. A new flow is named like the file unless --name tells otherwise.\n"
                   "What is wrong with the definition is told, and one that holds errors is refused without --force.\n"
                   "--dry-run tells how the flow would change, and writes nothing.") {
    app().add_option("FILE", file_, "The definition text, UTF-8; - for standard input")->required();
    app().add_option("--name", name_, "The flow's name");
    app().add_option("--flow", flow_, "The flow whose steps to replace, by number or name");
    app().add_option("--creater", creater_, "Who made the flow");
    app().add_flag("--force", force_, "Load the definition though it holds errors");
    app().add_flag("--dry-run", dry_run_, "Write nothing, but tell what would change");
  }

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    const auto text = ReadDefinition(file_);
    const auto findings = Checked(workspace, text);
    if (dry_run_) return TellChanges(options, workspace, text, findings);
    std::int64_t flow = 0;
    workspace.Together([&] { flow = flow_.empty() ? Add(workspace, text) : Replace(workspace, text); });
    const auto steps = NumberOf(
        workspace.FirstField("Select count(*) From WorkFlowConstruction Where FlowID=" + std::to_string(flow)));
    const auto name =
        JoinedText(workspace.FirstField("Select FlowName From WorkFlowName Where FlowID=" + std::to_string(flow)));
    if (options.json) {
      Json told = {{"flow", flow}, {"name", name}, {"steps", steps}};
      if (!findings.empty()) told["findings"] = FindingsAsJson(findings);
      std::cout << Dump(told) << '\n';
    } else {
      std::cout << (flow_.empty() ? "Added " : "Replaced ") << FlowTitle(workspace, flow) << " with " << steps
                << (steps == 1 ? " step\n" : " steps\n");
      std::cout.flush();
      if (!findings.empty()) std::cerr << FindingsAsText(findings, Source()) << '\n';
    }
  }

 private:
  /// What the checker finds. @throws UserError  errors, without --force; a dry run tells them last.
  [[nodiscard]] Findings Checked(Workspace& workspace, const std::string& text) const {
    const Value replaced = flow_.empty() ? Value() : Value(FlowOf(workspace, flow_));
    auto findings = CheckDefinition(workspace.database(), workspace.services(), text, replaced);
    if (!dry_run_) RequireFit(findings);
    return findings;
  }

  void RequireFit(const Findings& findings) const {
    if (!HasErrors(findings) || force_) return;
    throw UserError("the definition holds errors and was not loaded; --force loads it all the same\n" +
                    FindingsAsText(findings, Source()));
  }

  [[nodiscard]] std::string Source() const { return file_ == "-" ? "standard input" : file_; }

  /// Ends like the import itself would for the findings, after the changes are told.
  void TellChanges(const GlobalOptions& options, Workspace& workspace, const std::string& text,
                   const Findings& findings) const {
    // A new flow is compared with nothing.
    const auto flow = flow_.empty() ? 0 : FlowOf(workspace, flow_);
    const DefinitionSource before = StoredFlow{workspace.connection(), workspace.services(), flow};
    const auto changes = CompareDefinitions(before, text);
    const auto subject = flow == 0 ? std::string("a new flow") : FlowTitle(workspace, flow);
    if (options.json) {
      std::cout << Dump({{"changes", AsJson(changes)}, {"findings", FindingsAsJson(findings)}}, 2) << '\n';
    } else if (changes.empty()) {
      std::cout << "Nothing would change in " << subject << ".\n";
    } else {
      std::cout << "What would change in " << subject << ":\n" << Told(changes);
    }
    RequireFit(findings);
    std::cout.flush();
    if (!options.json && !findings.empty()) std::cerr << FindingsAsText(findings, Source()) << '\n';
  }

  std::int64_t Add(Workspace& workspace, const std::string& text) const {
    if (name_.empty() && file_ == "-") throw UsageError("--name is needed when the text comes from standard input");
    const auto name = name_.empty() ? std::filesystem::path(file_).stem().string() : name_;
    Name names(workspace.services());
    Check(names.FlowAdd(workspace.connection(), name, creater_, text), 1);
    return names.MaxFlowID(workspace.connection());
  }

  std::int64_t Replace(Workspace& workspace, const std::string& text) const {
    const auto flow = FlowOf(workspace, flow_);
    Value name;
    Value creater;
    Value remark;
    Name names(workspace.services());
    (void)names.GetAll(workspace.connection(), flow, name, creater, remark);
    if (!name_.empty()) name = name_;
    if (!creater_.empty()) creater = creater_;
    Check(names.FlowSave(workspace.connection(), flow, name, creater, text), 2);
    return flow;
  }

  /// @param blank  the result code that tells a blank name.
  void Check(std::int16_t code, std::int16_t blank) const {
    if (code == blank) throw UserError("a flow's name must not be blank");
    if (code != 0) throw UserError("\"" + file_ + "\" is no flow definition");
  }

  std::string file_;
  std::string name_;
  std::string flow_;
  std::string creater_;
  bool force_ = false;
  bool dry_run_ = false;
};

class Export : public Subcommand {
 public:
  explicit Export(CLI::App& parent)
      : Subcommand(parent, "export", "Write a flow definition as a text",
                   "talmflow export 3\ntalmflow export \"Leave request\" -o leave.txt") {
    app().add_option("FLOW", flow_, "The flow, by number or name")->required();
    app().add_option("-o,--output", file_, "The file to write, in place of standard output");
  }

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    const auto flow = FlowOf(workspace, flow_);
    InOut in_out(workspace.services());
    std::string text;
    workspace.Together([&] { text = in_out.MakeConstructionBak(workspace.connection(), flow); });
    if (!file_.empty()) in_out.CreateTxt(file_, text);
    if (options.json) {
      std::cout << Dump({{"flow", flow}, {"text", text}}) << '\n';
    } else if (file_.empty()) {
      std::cout << text;
    } else {
      std::cout << "Wrote " << FlowTitle(workspace, flow) << " to " << file_ << '\n';
    }
  }

 private:
  std::string flow_;
  std::string file_;
};

}  // namespace

void AddTransferSubcommands(CLI::App& parent, Subcommands& all) {
  all.push_back(std::make_unique<Import>(parent));
  all.push_back(std::make_unique<Export>(parent));
}

}  // namespace talm_flow::program
