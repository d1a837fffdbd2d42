#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "json.h"
#include "lookup.h"
#include "page.h"

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
      : Subcommand(parent, "draw", "Draw a flow's tree of steps as a page",
                   "talmflow draw 3 -o leave.html\ntalmflow draw \"Leave request\" --editable -o leave.html") {
    app().add_option("FLOW", flow_, "The flow, by number or name")->required();
    app().add_option("-o,--output", file_, "The file to write, in place of standard output");
    app().add_flag("--editable", editable_, "Let a click on a step show its parameters in a form");
  }

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    const auto flow = FlowOf(workspace, flow_);
    std::string drawing;
    workspace.Together([&] { drawing = MakePage(workspace, flow, editable_); });
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
  std::string flow_;
  std::string file_;
  bool editable_ = false;
};

}  // namespace

void AddDrawSubcommands(CLI::App& parent, Subcommands& all) { all.push_back(std::make_unique<Draw>(parent)); }

}  // namespace talm_flow::program
