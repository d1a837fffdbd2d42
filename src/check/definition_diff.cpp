#include "talm_flow/definition_diff.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <span>
#include <utility>

#include "check/definition.h"
#include "check/report.h"
#include "talm_flow/conversion.h"

namespace talm_flow {
namespace {

using check::Definition;
using check::InputParameter;
using check::Parameter;
using check::Step;

Definition Read(const DefinitionSource& source) {
  check::Report unread;
  if (const auto* const text = std::get_if<std::string_view>(&source)) return check::ReadText(*text, unread);
  const auto& flow = std::get<StoredFlow>(source);
  db::Session session(flow.connection, flow.services);
  const auto flow_id = ToInt32(flow.flow_id);
  auto definition = check::ReadFlow(session, flow_id, unread);
  check::ReadSurroundings(session, flow_id, definition);
  return definition;
}

std::string NumberText(const std::optional<std::int64_t>& number) { return number ? std::to_string(*number) : "?"; }

/// A number as it is stored, however it was written.
std::string Number(const std::string& text) {
  const auto whole = check::WholeNumber(text);
  return whole ? std::to_string(*whole) : text;
}

/// The things of one definition by key. Those with the same key follow each other in stored order.
template <typename Thing, typename Key>
class Index {
 public:
  void Add(Key key, const Thing& thing) { things_.emplace(std::pair(key, counts_[key]++), &thing); }
  [[nodiscard]] const std::map<std::pair<Key, std::size_t>, const Thing*>& things() const { return things_; }
  [[nodiscard]] const Thing* Find(const std::pair<Key, std::size_t>& place) const {
    const auto found = things_.find(place);
    return found == things_.end() ? nullptr : found->second;
  }

 private:
  std::map<std::pair<Key, std::size_t>, const Thing*> things_;
  std::map<Key, std::size_t> counts_;
};

/// Calls `pair(before, after)` for everything in either index, by key; a null pointer stands for what is missing.
template <typename Thing, typename Key, typename Pair>
void Together(const Index<Thing, Key>& before, const Index<Thing, Key>& after, const Pair& pair) {
  auto left = before.things().begin();
  auto right = after.things().begin();
  while (left != before.things().end() || right != after.things().end()) {
    const bool take_left =
        left != before.things().end() && (right == after.things().end() || left->first <= right->first);
    const bool take_right =
        right != after.things().end() && (left == before.things().end() || right->first <= left->first);
    pair(take_left ? left->second : nullptr, take_right ? right->second : nullptr);
    if (take_left) ++left;
    if (take_right) ++right;
  }
}

using StepIndex = Index<Step, std::optional<std::int64_t>>;

StepIndex ByNumber(const Definition& definition) {
  StepIndex index;
  for (const Step& step : definition.steps) index.Add(step.number, step);
  return index;
}

class Comparison {
 public:
  Comparison(const Definition& before, const Definition& after) : before_(before), after_(after) {}

  DefinitionChanges Take() {
    if (before_.remark && after_.remark) {
      Texts({.part = DefinitionPart::kRemark}, *before_.remark, *after_.remark);
    }
    const auto steps_before = ByNumber(before_);
    const auto steps_after = ByNumber(after_);
    Together(steps_before, steps_after, [&](const Step* before, const Step* after) { Steps(before, after); });
    CompareChildOrder();
    CompareInputs();
    return std::move(changes_);
  }

 private:
  void Add(DefinitionChange change) { changes_.push_back(std::move(change)); }

  void Texts(DefinitionChange change, const std::string& before, const std::string& after) {
    if (before == after) return;
    change.kind = ChangeKind::kChanged;
    change.before = before;
    change.after = after;
    Add(std::move(change));
  }

  void Steps(const Step* before, const Step* after) {
    const auto number = NumberText((before != nullptr ? before : after)->number);
    if (after == nullptr) {
      return Add({ChangeKind::kRemoved, DefinitionPart::kStep, number, {}, before->remark, {}});
    }
    if (before == nullptr) return AddStep(number, *after);
    if (before->parent != after->parent) {
      Add({ChangeKind::kMoved,
           DefinitionPart::kStep,
           number,
           {},
           NumberText(before->parent),
           NumberText(after->parent)});
    }
    Texts({.part = DefinitionPart::kStepRemark, .step = number}, before->remark, after->remark);
    Texts({.part = DefinitionPart::kStepCommand, .step = number}, before->command, after->command);
    Texts({.part = DefinitionPart::kStepSerial, .step = number}, Number(before->serial), Number(after->serial));
    Parameters(number, before->parameters, after->parameters);
  }

  void AddStep(const std::string& number, const Step& step) {
    constexpr auto kAdded = ChangeKind::kAdded;
    Add({kAdded, DefinitionPart::kStep, number, {}, {}, step.remark});
    Add({kAdded, DefinitionPart::kStepCommand, number, {}, {}, step.command});
    Add({kAdded, DefinitionPart::kStepSerial, number, {}, {}, Number(step.serial)});
    Parameters(number, {}, step.parameters);
  }

  void Parameters(const std::string& step, std::span<const Parameter> before, std::span<const Parameter> after) {
    Index<Parameter, std::string_view> index_before;
    Index<Parameter, std::string_view> index_after;
    for (const auto& parameter : before) index_before.Add(parameter.name, parameter);
    for (const auto& parameter : after) index_after.Add(parameter.name, parameter);
    Together(index_before, index_after, [&](const Parameter* old, const Parameter* now) {
      const auto& name = (old != nullptr ? old : now)->name;
      if (now == nullptr) {
        Add({ChangeKind::kRemoved, DefinitionPart::kParameter, step, name, old->data, {}});
      } else if (old == nullptr) {
        Add({ChangeKind::kAdded, DefinitionPart::kParameter, step, name, {}, now->data});
      } else {
        Texts({.part = DefinitionPart::kParameter, .step = step, .name = name}, old->data, now->data);
      }
    });
  }

  /// Children run in stored order. Of those that come, go or move the order tells nothing.
  void CompareChildOrder() {
    using Edge = std::pair<std::optional<std::int64_t>, std::optional<std::int64_t>>;
    std::set<Edge> edges;
    for (const Step& step : before_.steps) edges.emplace(step.parent, step.number);
    std::set<Edge> common;
    for (const Step& step : after_.steps) {
      if (edges.contains({step.parent, step.number})) common.emplace(step.parent, step.number);
    }
    const auto by_parent = [&](const Definition& definition) {
      std::map<std::optional<std::int64_t>, std::vector<std::string>> children;
      auto left = common;
      for (const Step& step : definition.steps) {
        if (left.erase({step.parent, step.number}) > 0) children[step.parent].push_back(NumberText(step.number));
      }
      return children;
    };
    const auto before = by_parent(before_);
    for (const auto& [parent, children] : by_parent(after_)) {
      const auto& old = before.at(parent);
      if (old == children) continue;
      Add({ChangeKind::kChanged, DefinitionPart::kChildOrder, NumberText(parent), {}, Listed(old), Listed(children)});
    }
  }

  static std::string Listed(const std::vector<std::string>& items) {
    std::string list;
    for (const auto& item : items) {
      if (!list.empty()) list += ',';
      list += item;
    }
    return list;
  }

  using Inputs = std::vector<const InputParameter*>;

  void CompareInputs() {
    Inputs gone;
    Inputs come;
    Index<InputParameter, std::string_view> titles_before;
    Index<InputParameter, std::string_view> titles_after;
    for (const auto& input : before_.inputs) titles_before.Add(input.title, input);
    for (const auto& input : after_.inputs) titles_after.Add(input.title, input);
    Together(titles_before, titles_after, [&](const InputParameter* before, const InputParameter* after) {
      if (after == nullptr) {
        gone.push_back(before);
      } else if (before == nullptr) {
        come.push_back(after);
      } else {
        CompareInput(*before, *after);
      }
    });
    CompareInputsByOrder(gone, come);
  }

  /// What is left after the titles: renamed where the order number is the same.
  void CompareInputsByOrder(const Inputs& gone, const Inputs& come) {
    Index<InputParameter, std::string> orders_before;
    Index<InputParameter, std::string> orders_after;
    for (const auto* const input : gone) orders_before.Add(Number(input->order), *input);
    for (const auto* const input : come) orders_after.Add(Number(input->order), *input);
    Together(orders_before, orders_after, [&](const InputParameter* before, const InputParameter* after) {
      if (after == nullptr) {
        Add({ChangeKind::kRemoved, DefinitionPart::kInput, {}, before->title, before->title, {}});
      } else if (before == nullptr) {
        AddInput(*after);
      } else {
        CompareInput(*before, *after);
      }
    });
  }

  void AddInput(const InputParameter& input) {
    constexpr auto kAdded = ChangeKind::kAdded;
    Add({kAdded, DefinitionPart::kInput, {}, input.title, {}, input.title});
    Add({kAdded, DefinitionPart::kInputOrder, {}, input.title, {}, Number(input.order)});
    Add({kAdded, DefinitionPart::kInputSort, {}, input.title, {}, Number(input.sort)});
    if (!input.content.empty()) Add({kAdded, DefinitionPart::kInputContent, {}, input.title, {}, input.content});
  }

  void CompareInput(const InputParameter& before, const InputParameter& after) {
    const auto part = [&](DefinitionPart which) { return DefinitionChange{.part = which, .name = before.title}; };
    Texts(part(DefinitionPart::kInputTitle), before.title, after.title);
    Texts(part(DefinitionPart::kInputOrder), Number(before.order), Number(after.order));
    Texts(part(DefinitionPart::kInputSort), Number(before.sort), Number(after.sort));
    Texts(part(DefinitionPart::kInputContent), before.content, after.content);
  }

  const Definition& before_;
  const Definition& after_;
  DefinitionChanges changes_;
};

}  // namespace

DefinitionChanges CompareDefinitions(const DefinitionSource& before, const DefinitionSource& after) {
  const Definition first = Read(before);
  const Definition second = Read(after);
  return Comparison(first, second).Take();
}

}  // namespace talm_flow
