// The tree of steps: numbers, parents, circles, and what is never run.

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "check/checks.h"
#include "check/graph.h"

namespace talm_flow::check {
namespace {

constexpr std::int64_t kLastStep = 32767;
constexpr std::size_t kMostChildren = 10000;

void CheckNumbers(const Definition& definition, Report& report) {
  std::unordered_set<std::int64_t> seen;
  for (const Step& step : definition.steps) {
    if (!step.number || *step.number < 1 || *step.number > kLastStep) {
      report.Add(Code::kBadStepNumber, {.step = &step},
                 (step.number ? "The step number " + std::to_string(*step.number) + " lies"
                              : std::string("The step has no whole number that lies")) +
                     (step.number ? " outside 1 to 32767." : " in 1 to 32767."),
                 "Number the steps from 1 to 32767.");
    } else if (!seen.insert(*step.number).second) {
      report.Add(Code::kDuplicateStep, {.step = &step},
                 "The number " + std::to_string(*step.number) +
                     " was given to a step before this one, whose command runs in place of this one's.",
                 "Give every step a number of its own.");
    }
  }
}

void CheckChildren(const Tree& tree, Report& report) {
  for (std::size_t i = 0; i < tree.steps().size(); ++i) {
    const std::size_t count = tree.children()[i].size();
    if (count <= kMostChildren) continue;
    report.Add(Code::kTooManyChildren, {.step = tree.steps()[i]},
               "The step has " + std::to_string(count) + " children; those behind the 10000th are never run.",
               "Put a step in between and some of the children below it.");
  }
}

/// Reports every circle once, at its step that comes first.
std::vector<bool> CheckCircles(const Tree& tree, Report& report) {
  const auto components = Components(tree.children());
  auto on_circle = OnCircle(tree.children(), components);
  std::vector<std::vector<std::size_t>> members(tree.steps().size());
  for (std::size_t i = 0; i < tree.steps().size(); ++i) {
    if (on_circle[i]) members[components[i]].push_back(i);
  }
  constexpr std::size_t kNamed = 5;
  for (const auto& circle : members) {
    if (circle.empty()) continue;
    const Step& first = *tree.steps()[circle.front()];
    std::string problem = "The step is its own parent; running or drawing it never ends.";
    if (circle.size() > 1) {
      problem = "The steps ";
      for (std::size_t i = 0; i < std::min(circle.size(), kNamed); ++i) {
        problem += (i == 0 ? "" : ", ") + std::to_string(*tree.steps()[circle[i]]->number);
      }
      if (circle.size() > kNamed) problem += " and " + std::to_string(circle.size() - kNamed) + " more";
      problem += " stand below each other in a circle; running or drawing them never ends.";
    }
    report.Add(Code::kCircle, {.step = &first}, std::move(problem),
               "Give one of them a parent outside the circle; to run a step again, jump to it with C_16.");
  }
  return on_circle;
}

/// The steps that are run from step 1: below it, targets of jumps and timers, and what is below those.
std::vector<bool> Reached(const Tree& tree, std::size_t first) {
  std::vector<bool> reached(tree.steps().size(), false);
  std::vector<std::size_t> pending = {first};
  reached[first] = true;
  const auto reach = [&](std::size_t step) {
    if (!reached[step]) pending.push_back(step);
    reached[step] = true;
  };
  while (!pending.empty()) {
    const std::size_t at = pending.back();
    pending.pop_back();
    const Step& step = *tree.steps()[at];
    const int parameter = step.Is(16) ? 1 : step.Is(15) ? 3 : step.Is(86) ? 2 : 0;
    if (parameter != 0) {
      if (const auto target = tree.Target(step, parameter)) reach(*target);
    }
    if (step.Is(16)) continue;
    for (const std::size_t child : tree.children()[at]) reach(child);
  }
  return reached;
}

void CheckReached(const Tree& tree, const std::vector<bool>& on_circle, Report& report) {
  const auto first = tree.Find(1);
  if (!first) return;
  const auto reached = Reached(tree, *first);
  for (std::size_t i = 0; i < tree.steps().size(); ++i) {
    const Step& step = *tree.steps()[i];
    if (reached[i] || on_circle[i] || !step.parent) continue;
    const auto parent = tree.Find(*step.parent);
    if (*step.parent == 0) {
      report.Add(Code::kNeverRun, {.step = &step}, "No step stands above this one, and no jump or timer runs it.",
                 "Give it a parent, or make it the target of a jump or a timer.");
    } else if (!parent) {
      report.Add(
          Code::kOrphan, {.step = &step},
          "The parent, step " + std::to_string(*step.parent) + ", does not exist, and no jump or timer runs the step.",
          "Name a step of the flow as the parent.");
    } else if (reached[*parent]) {
      report.Add(Code::kNeverRun, {.step = &step},
                 "The step is never run: a jump runs its target in place of its own children.",
                 "Put the step below another one, or above the jump.");
    }
  }
}

}  // namespace

Tree::Tree(const Definition& definition) {
  for (const Step& step : definition.steps) {
    if (!step.number || *step.number == 0 || !by_number_.emplace(*step.number, steps_.size()).second) continue;
    steps_.push_back(&step);
  }
  children_.resize(steps_.size());
  for (const Step& step : definition.steps) {
    if (!step.number || !step.parent) continue;
    const auto parent = Find(*step.parent);
    const auto child = Find(*step.number);
    if (parent && child) children_[*parent].push_back(*child);
  }
}

std::optional<std::size_t> Tree::Find(std::int64_t number) const {
  const auto found = by_number_.find(number);
  if (found == by_number_.end()) return std::nullopt;
  return found->second;
}

void CheckStructure(const Definition& definition, const Tree& tree, Report& report) {
  if (definition.steps.empty()) {
    report.Add(Code::kNoSteps, {}, "The flow has no steps; starting it does nothing.",
               "Add the step 1, with the parent 0.");
  } else if (!tree.Find(1)) {
    report.Add(Code::kNoFirstStep, {}, "The flow has no step 1; starting it does nothing.",
               "Give the step with which the flow begins the number 1, and the parent 0.");
  }
  CheckNumbers(definition, report);
  CheckChildren(tree, report);
  CheckReached(tree, CheckCircles(tree, report), report);
}

}  // namespace talm_flow::check
