// What steps lead to: jumps, outcomes of tasks, child flows.

#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "check/checks.h"
#include "check/graph.h"
#include "design/catalogue.h"
#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::check {
namespace {

/// Whether the children run at once, whatever values there are.
bool RunsChildren(const Step& step) { return step.row == nullptr || step.row->effect == engine::Effect::kContinues; }

/// The steps that surely run after each step: its children, or a jump's target.
Graph SureEdges(const Tree& tree) {
  Graph edges(tree.steps().size());
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const Step& step = *tree.steps()[i];
    if (RunsChildren(step)) {
      edges[i] = tree.children()[i];
    } else if (step.Is(16)) {
      if (const auto target = tree.Target(step, 1); target && *target != i) edges[i].push_back(*target);
    }
  }
  return edges;
}

void CheckJumps(const Tree& tree, Report& report) {
  const Graph edges = SureEdges(tree);
  const auto components = Components(edges);
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const Step& step = *tree.steps()[i];
    if (!step.Is(16)) continue;
    const Place place{.step = &step, .parameter = step.Find(1)};
    const auto target = tree.Target(step, 1);
    if (target == i) {
      report.Add(Code::kJumpToItself, place,
                 "The step jumps to itself, which does nothing, and its children never run.",
                 "Name the step to go on with.");
    } else if (target && components[*target] == components[i]) {
      report.Add(Code::kEndlessJump, place,
                 "The jump comes back to itself with no condition, task or child flow in between; only the cap of 200 "
                 "runs ends it.",
                 "Put the jump below a condition (C_11) that ends the loop.");
    }
  }
}

/// Marks the steps that have a step with one of two commands above them. Steps in circles are left out.
std::vector<bool> Below(const Tree& tree, int command) {
  const std::size_t count = tree.steps().size();
  std::vector<std::size_t> parents(count, 0);
  for (const auto& children : tree.children()) {
    for (const std::size_t child : children) ++parents[child];
  }
  std::vector<bool> below(count, false);
  std::vector<std::size_t> pending;
  for (std::size_t i = 0; i < count; ++i) {
    if (parents[i] == 0) pending.push_back(i);
  }
  while (!pending.empty()) {
    const std::size_t at = pending.back();
    pending.pop_back();
    const bool inherits = below[at] || tree.steps()[at]->Is(command);
    for (const std::size_t child : tree.children()[at]) {
      if (inherits) below[child] = true;
      if (--parents[child] == 0) pending.push_back(child);
    }
  }
  return below;
}

void CheckOutcomes(const Tree& tree, Report& report) {
  const auto below_approval = Below(tree, 2);
  const auto below_fill_in = Below(tree, 97);
  const auto components = Components(tree.children());
  const auto on_circle = OnCircle(tree.children(), components);
  for (std::size_t i = 0; i < tree.steps().size(); ++i) {
    const Step& step = *tree.steps()[i];
    if (on_circle[i]) continue;
    if (step.Is(68) && !below_approval[i]) {
      report.Add(Code::kNoApproval, {.step = &step}, "No approval step (C_2) stands above; the outcome is always 0.",
                 "Put the step below the approval whose outcome it is to read.");
    } else if (step.Is(98) && below_fill_in[i]) {
      report.Add(Code::kFillInOutcome, {.step = &step},
                 "C_98 looks for a step with the command C_98 above it, not for the fill-in (C_97); the outcome is "
                 "always 0.",
                 "Read a field of the form with C_47, and decide by its value.");
    }
  }
}

/// A step of a flow that starts another flow.
struct Start {
  const Step* step;
  std::int64_t child;
  bool sure;
};

/// One flow of those that a definition leads to.
struct FlowNode {
  Definition definition;
  std::vector<Start> starts;
  std::size_t most_returned = 0;  ///< the highest position that its C_70 steps hand back
};

std::optional<std::int64_t> ChildFlow(const Step& step) {
  const auto number = ParseNumber(step.Data(1));
  if (!number || *number < -2147483648.0 || *number > 2147483647.0) return std::nullopt;
  return static_cast<std::int64_t>(RoundHalfEven(*number));
}

class ChildFlowCheck {
 public:
  ChildFlowCheck(db::Session& session, const Definition& definition, Report& report)
      : session_(session), definition_(definition), report_(report) {}

  void Run(const Tree& tree) {
    Describe(definition_, tree, 0);
    ReadChildren();
    CheckExistence();
    CheckCircles();
    CheckReturned();
  }

 private:
  void Describe(const Definition& definition, const Tree& tree, std::size_t at) {
    if (at == nodes_.size()) nodes_.emplace_back();
    FlowNode& node = nodes_[at];
    const auto sure = SurelyRun(tree);
    for (std::size_t i = 0; i < tree.steps().size(); ++i) {
      const Step& step = *tree.steps()[i];
      if (step.Is(70)) {
        const double position = ParseNumber(step.Data(1)).value_or(0);
        if (position >= 1 && position < 32768) {
          node.most_returned = std::max(node.most_returned, static_cast<std::size_t>(position));
        }
      }
      if (!step.Is(18)) continue;
      if (const auto child = ChildFlow(step)) node.starts.push_back({&step, *child, sure[i]});
    }
    if (definition.flow) by_number_.emplace(*definition.flow, at);
  }

  /// Reads every flow that is led to, once. One that does not exist gets no node.
  void ReadChildren() {
    for (std::size_t at = 0; at < nodes_.size(); ++at) {
      for (std::size_t i = 0; i < nodes_[at].starts.size(); ++i) {
        const std::int64_t child = nodes_[at].starts[i].child;
        if (by_number_.contains(child) || missing_.contains(child)) continue;
        if (!design::FlowExists(session_, child)) {
          missing_.insert(child);
          continue;
        }
        Report ignored;
        auto& node = nodes_.emplace_back();
        node.definition = ReadFlow(session_, child, ignored);
        Describe(node.definition, Tree(node.definition), nodes_.size() - 1);
      }
    }
  }

  void CheckExistence() {
    for (const Start& start : nodes_.front().starts) {
      if (!missing_.contains(start.child)) continue;
      report_.Add(Code::kNoSuchFlow, PlaceOf(start),
                  "There is no flow " + std::to_string(start.child) + "; nothing is started, and the branch ends here.",
                  "Write the number of a flow; talmflow flows lists them.");
    }
  }

  [[nodiscard]] Graph Edges(bool only_sure) const {
    Graph edges(nodes_.size());
    for (std::size_t at = 0; at < nodes_.size(); ++at) {
      for (const Start& start : nodes_[at].starts) {
        const auto child = by_number_.find(start.child);
        if (child != by_number_.end() && (start.sure || !only_sure)) edges[at].push_back(child->second);
      }
    }
    return edges;
  }

  void CheckCircles() {
    const auto any = Components(Edges(false));
    const auto sure = Components(Edges(true));
    for (const Start& start : nodes_.front().starts) {
      const auto child = by_number_.find(start.child);
      if (child == by_number_.end() || any[child->second] != any.front()) continue;
      const bool endless = start.sure && sure[child->second] == sure.front();
      const std::string flow = std::to_string(start.child);
      report_.Add(endless ? Code::kEndlessChildren : Code::kChildCircle, PlaceOf(start),
                  child->second == 0 ? "The flow starts itself" + std::string(endless ? " whenever it runs." : ".")
                  : endless          ? "Flow " + flow + " starts this flow again whenever it runs."
                                     : "Flow " + flow + " starts this flow again.",
                  endless
                      ? "Put one of the starts below a condition (C_11) that ends the circle."
                      : "Make sure that a condition ends the circle before 1000 flows are started inside each other.");
    }
  }

  void CheckReturned() {
    for (const Start& start : nodes_.front().starts) {
      const auto child = by_number_.find(start.child);
      const std::string_view names = start.step->Data(3);
      if (child == by_number_.end() || names.empty()) continue;
      const std::size_t count = Split(names, "|^|").size();
      const std::size_t returned = nodes_[child->second].most_returned;
      if (returned <= count) continue;
      report_.Add(Code::kReturnedTooMuch, {.step = start.step, .parameter = start.step->Find(3)},
                  "Flow " + std::to_string(start.child) + " hands back a value at position " +
                      std::to_string(returned) + ", but only " + std::to_string(count) +
                      (count == 1 ? " variable receives." : " variables receive."),
                  "Name a variable for each position, separated by \"|^|\".");
    }
  }

  static Place PlaceOf(const Start& start) { return {.step = start.step, .parameter = start.step->Find(1)}; }

  db::Session& session_;
  const Definition& definition_;
  Report& report_;
  std::deque<FlowNode> nodes_;  // the checked flow first
  std::unordered_map<std::int64_t, std::size_t> by_number_;
  std::unordered_set<std::int64_t> missing_;
};

}  // namespace

std::vector<bool> SurelyRun(const Tree& tree) {
  std::vector<bool> runs(tree.steps().size(), false);
  const auto first = tree.Find(1);
  if (!first) return runs;
  const Graph edges = SureEdges(tree);
  std::vector<std::size_t> pending = {*first};
  runs[*first] = true;
  while (!pending.empty()) {
    const std::size_t at = pending.back();
    pending.pop_back();
    for (const std::size_t next : edges[at]) {
      if (!runs[next]) pending.push_back(next);
      runs[next] = true;
    }
  }
  return runs;
}

void CheckFlowOfControl(const Tree& tree, Report& report) {
  CheckJumps(tree, report);
  CheckOutcomes(tree, report);
}

void CheckChildFlows(db::Session& session, const Definition& definition, const Tree& tree, Report& report) {
  ChildFlowCheck(session, definition, report).Run(tree);
}

}  // namespace talm_flow::check
