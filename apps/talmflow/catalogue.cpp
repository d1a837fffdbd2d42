#include <iostream>

#include "listing.h"
#include "lookup.h"
#include "talm_flow/command_catalogue.h"
#include "talm_flow/conversion.h"
#include "talm_flow/name.h"
#include "talm_flow/text.h"
#include "terminal.h"
#include "tree.h"

namespace talm_flow::program {
namespace {

class Flows : public Subcommand {
 public:
  explicit Flows(CLI::App& parent)
      : Subcommand(parent, "flows", "List the flows", "talmflow flows\ntalmflow flows --json") {}

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    Listing listing;
    workspace.Together([&] {
      listing = Listing({"Flow", "Name", "Creater", "Steps", "Remark"});
      const auto flows = Name(workspace.services()).GetRs(workspace.connection());
      for (; !flows->AtEnd(); flows->MoveNext()) {
        const auto flow = flows->Field("FlowID");
        const auto steps =
            workspace.FirstField("Select count(*) From WorkFlowConstruction Where FlowID=" + JoinedText(flow));
        listing.Add({ToJson(flow), ToJson(flows->Field("FlowName")), ToJson(flows->Field("Creater")), ToJson(steps),
                     ToJson(flows->Field("Remark"))});
      }
    });
    listing.Print(options, "There are no flows.");
  }
};

class Show : public Subcommand {
 public:
  explicit Show(CLI::App& parent)
      : Subcommand(parent, "show", "Draw a flow's tree of steps",
                   "talmflow show 3\ntalmflow show \"Leave request\"\ntalmflow show 3 --json") {
    app().add_option("FLOW", flow_, "The flow, by number or name")->required();
  }

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    const auto flow = FlowOf(workspace, flow_);
    Value name;
    Value creater;
    Value remark;
    workspace.Together(
        [&] { (void)Name(workspace.services()).GetAll(workspace.connection(), flow, name, creater, remark); });
    const auto steps = ReadSteps(workspace, flow);
    Listing inputs({"Title", "Order", "Sort", "Content"});
    for (const auto& row : workspace.Rows("Select InputTitle,OrderNo,Sort,ClassContent From WorkFlowFunctionInput "
                                          "Where FlowID=" +
                                          std::to_string(flow) + " Order By OrderNo,InputTitle")) {
      inputs.Add({ToJson(row[0]), ToJson(row[1]), ToJson(row[2]), ToJson(row[3])});
    }
    if (options.json) {
      std::cout << Dump({{"flow", flow},
                         {"name", ToJson(name)},
                         {"creater", ToJson(creater)},
                         {"remark", ToJson(remark)},
                         {"steps", StepsAsJson(steps)},
                         {"inputs", inputs.AsJson()}},
                        2)
                << '\n';
      return;
    }
    std::cout << Bold(Printable(JoinedText(name))) << " (flow " << flow << ")";
    if (!JoinedText(creater).empty()) std::cout << " by " << Printable(JoinedText(creater));
    std::cout << '\n';
    const auto remark_text = JoinedText(remark);
    for (const auto line : Split(remark_text, "\r\n")) std::cout << Printable(line) << '\n';
    std::cout << '\n' << (steps.empty() ? "It has no steps.\n" : DrawTree(steps));
    if (!inputs.AsJson().empty()) {
      std::cout << "\nInput parameters:\n";
      inputs.PrintColumns("  ");
    }
  }

 private:
  static Json StepsAsJson(const std::vector<StepRow>& steps) {
    Json result = Json::array();
    for (const auto& step : steps) {
      Json parameters = Json::object();
      for (const auto& [name, data] : step.parameters) parameters[name] = data;
      const auto command = DescribeCommand(step.command);
      result.push_back({{"step", step.number},
                        {"parent", step.parent},
                        {"serial", ToJson(step.serial)},
                        {"caption", step.caption},
                        {"command", step.command},
                        {"title", command ? Json(command->title) : Json()},
                        {"parameters", std::move(parameters)}});
    }
    return result;
  }

  std::string flow_;
};

}  // namespace

void AddCatalogueSubcommands(CLI::App& parent, Subcommands& all) {
  all.push_back(std::make_unique<Flows>(parent));
  all.push_back(std::make_unique<Show>(parent));
}

}  // namespace talm_flow::program
