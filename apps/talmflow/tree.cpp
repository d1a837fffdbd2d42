#include "tree.h"

#include <unordered_map>

#include "lookup.h"
#include "talm_flow/command_catalogue.h"
#include "talm_flow/conversion.h"
#include "terminal.h"

namespace talm_flow::program {
namespace {

/// A step that is still to be drawn.
struct Pending {
  std::size_t step = 0;
  std::size_t depth = 0;
  bool is_last = true;  ///< among its siblings
};

class Drawing {
 public:
  explicit Drawing(const std::vector<StepRow>& steps) : steps_(steps), drawn_(steps.size()) {
    for (std::size_t i = 0; i < steps.size(); ++i) children_[steps[i].parent].push_back(i);
  }

  std::string Make() {
    for (std::size_t i = 0; i < steps_.size(); ++i) {
      if (steps_[i].number == 1 && !drawn_[i]) DrawFrom(i);
    }
    bool told = false;
    for (std::size_t i = 0; i < steps_.size(); ++i) {
      if (drawn_[i]) continue;
      if (!told) text_ += "\nNot reached from step 1:\n";
      told = true;
      DrawFrom(i);
    }
    return std::move(text_);
  }

 private:
  void DrawFrom(std::size_t root) {
    std::vector<Pending> pending = {{root, 0, true}};
    while (!pending.empty()) {
      const auto next = pending.back();
      pending.pop_back();
      if (drawn_[next.step]) continue;
      drawn_[next.step] = true;
      DrawStep(next);
      const auto& children = children_[steps_[next.step].number];
      for (std::size_t i = children.size(); i-- > 0;) {
        pending.push_back({children[i], next.depth + 1, i + 1 == children.size()});
      }
    }
  }

  void DrawStep(const Pending& at) {
    const auto& step = steps_[at.step];
    const auto command = DescribeCommand(step.command);
    continued_.resize(at.depth);
    AppendRails(at.depth == 0 ? 0 : at.depth - 1);
    if (at.depth > 0) text_ += at.is_last ? "└─ " : "├─ ";
    if (at.depth > 0) continued_[at.depth - 1] = !at.is_last;
    text_ += Bold(std::to_string(step.number)) + " " + Printable(command ? command->title : "unknown command") + " (" +
             Printable(step.command) + ")";
    if (!step.caption.empty()) text_ += "  " + Printable(step.caption);
    text_ += '\n';
    for (const auto& [name, data] : step.parameters) DrawParameter(at, command, name, data);
  }

  void DrawParameter(const Pending& at, const std::optional<CommandDescription>& command, const std::string& name,
                     const std::string& data) {
    AppendRails(at.depth);
    text_ += children_[steps_[at.step].number].empty() ? "     " : "│    ";
    text_ += Dim(Title(command, name) + ":") + " " + Printable(data) + "\n";
  }

  static std::string Title(const std::optional<CommandDescription>& command, const std::string& name) {
    if (command) {
      for (std::size_t k = 1; k <= command->parameters.size(); ++k) {
        if (name == std::string(command->name) + "_" + std::to_string(k)) {
          return std::string(command->parameters[k - 1].title);
        }
      }
    }
    return Printable(name);
  }

  /// The lines of the levels above; of a very deep tree the lowest only, so that the drawing stays readable and small.
  void AppendRails(std::size_t depth) {
    constexpr std::size_t kShown = 40;
    std::size_t level = 0;
    if (depth > kShown) {
      level = depth - kShown;
      text_ += "[" + std::to_string(level) + "] ";
    }
    for (; level < depth; ++level) text_ += continued_[level] ? "│  " : "   ";
  }

  const std::vector<StepRow>& steps_;
  std::unordered_map<std::int64_t, std::vector<std::size_t>> children_;
  std::vector<bool> drawn_;
  std::vector<bool> continued_;  ///< by level: whether a sibling of the step drawn there follows
  std::string text_;
};

}  // namespace

std::vector<StepRow> ReadSteps(Workspace& workspace, std::int64_t flow) {
  const auto condition = " Where FlowID=" + std::to_string(flow) + " Order By ";
  std::vector<StepRow> steps;
  std::unordered_map<std::int64_t, std::size_t> by_number;
  for (const auto& row :
       workspace.Rows("Select FlowNo,ParentNo,Serial,Remark,Command From WorkFlowConstruction" + condition + "ID")) {
    by_number.emplace(NumberOf(row[0]), steps.size());
    steps.push_back({NumberOf(row[0]), NumberOf(row[1]), row[2], JoinedText(row[3]), JoinedText(row[4]), {}});
  }
  for (const auto& row :
       workspace.Rows("Select FlowNo,ParameterName,ParameterData From WorkFlowParameter" + condition + "FlowNo,ID")) {
    const auto step = by_number.find(NumberOf(row[0]));
    if (step != by_number.end()) steps[step->second].parameters.emplace_back(JoinedText(row[1]), JoinedText(row[2]));
  }
  return steps;
}

std::string DrawTree(const std::vector<StepRow>& steps) { return Drawing(steps).Make(); }

}  // namespace talm_flow::program
