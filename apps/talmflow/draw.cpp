#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "json.h"
#include "lookup.h"
#include "page.h"
#include "picture.h"
#include "talm_flow/conversion.h"
#include "talm_flow/name.h"
#include "tree.h"
#include "waiting.h"

namespace talm_flow::program {
namespace {

void WriteFile(const std::string& file, const std::string& text) {
  errno = 0;
  std::ofstream stream(file, std::ios::binary);
  stream << text;
  stream.close();
  if (!stream) throw UserError("cannot write \"" + file + "\": " + std::strerror(errno == 0 ? EIO : errno));
}

class Draw : public Subcommand {
 public:
  explicit Draw(CLI::App& parent)
      : Subcommand(parent, "draw", "Draw a flow's tree of steps as a page or a picture",
                   "talmflow draw 3 -o leave.html\ntalmflow draw \"Leave request\" --editable -o leave.html\n"
                   "talmflow draw 3 --svg -o leave.svg\ntalmflow draw 3 --svg --instance 5") {
    app().add_option("FLOW", flow_, "The flow, by number or name")->required();
    app().add_option("-o,--output", file_, "The file to write, in place of standard output");
    auto* const editable =
        app().add_flag("--editable", editable_, "Let a click on a step show its parameters in a form");
    auto* const svg =
        app().add_flag("--svg", svg_, "A picture for documents, in place of the page")->excludes(editable);
    app().add_option("--instance", instance_, "Mark the steps at which this instance waits")->needs(svg);
  }

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    const auto flow = FlowOf(workspace, flow_);
    std::string drawing;
    workspace.Together([&] { drawing = svg_ ? Picture(workspace, flow) : MakePage(workspace, flow, editable_); });
    if (!file_.empty()) WriteFile(file_, drawing);
    if (options.json) {
      std::cout << Dump({{"flow", flow}, {file_.empty() ? "text" : "file", file_.empty() ? drawing : file_}}) << '\n';
    } else if (file_.empty()) {
      std::cout << drawing;
    } else {
      std::cout << "Drew " << FlowTitle(workspace, flow) << " in " << file_ << '\n';
    }
  }

 private:
  std::string Picture(Workspace& workspace, std::int64_t flow) const {
    const auto steps = ReadSteps(workspace, flow);
    Waiting waiting;
    std::string subtitle = "Flow " + std::to_string(flow) + " · " + std::to_string(steps.size()) +
                           (steps.size() == 1 ? " step" : " steps");
    if (!instance_.empty()) {
      const auto instance = IdOf(instance_, "instance number");
      waiting = WaitingSteps(workspace, flow, instance);
      subtitle += " · instance " + std::to_string(instance);
    }
    const auto name = Name(workspace.services()).GetFlowName(workspace.connection(), flow);
    return MakePicture({name, subtitle}, steps, waiting);
  }

  std::string flow_;
  std::string file_;
  std::string instance_;
  bool editable_ = false;
  bool svg_ = false;
};

}  // namespace

void AddDrawSubcommands(CLI::App& parent, Subcommands& all) { all.push_back(std::make_unique<Draw>(parent)); }

}  // namespace talm_flow::program
