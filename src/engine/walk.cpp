#include "engine/walk.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "design/structure.h"
#include "engine/run_counter.h"
#include "engine/step.h"
#include "talm_flow/error.h"

namespace talm_flow::engine {
namespace {

/// The eleven values of one step's run; a command gets them by reference.
InvocationContext ContextOf(Connection& connection, Instance& instance, Value& flow_no) {
  return {connection,
          instance.execute_id,
          flow_no,
          instance.root_execute_id,
          instance.table_id,
          instance.data_id,
          instance.flow_id,
          instance.operator_name,
          instance.ip_address,
          instance.other_table_id,
          instance.other_data_id};
}

}  // namespace

void Walk::RunStep(Instance& instance, const Value& flow_no) {
  pending_.push_back({.instance = &instance, .flow_no = flow_no});
  Drain();
}

void Walk::RunChildren(Instance& instance, const Value& flow_no) {
  PushChildren({.instance = &instance, .flow_no = flow_no});
  Drain();
}

bool Walk::RunCommand(const InvocationContext& call, const CommandRow& row) {
  Step step(session_, call, row);
  const Outcome outcome = row.handler(step);
  switch (outcome.kind) {
    case Outcome::Kind::kRunStep: {
      Instance instance = InstanceOf(call);
      RunStep(instance, outcome.number);
      return false;
    }
    case Outcome::Kind::kStartChild: {
      const auto child = StartChild(call, outcome.number);
      RunStep(*child, 1);
      return EndChild(*child);
    }
    default:
      return outcome.kind == Outcome::Kind::kTrue;
  }
}

void Walk::Drain() {
  while (!pending_.empty()) {
    const Pending next = std::move(pending_.back());
    pending_.pop_back();
    if (!next.ended_child) {
      Run(next);
    } else if (EndChild(*next.ended_child)) {
      PushChildren(next);
    }
  }
}

void Walk::Run(const Pending& step) {
  const std::string name = design::GetCommand(session_, step.instance->flow_id, step.flow_no);
  const CommandRow* row = FindCommand(commands_, name);
  // An unknown name runs nothing; its children run all the same.
  if (row == nullptr || RunCommandOf(step, *row)) PushChildren(step);
}

/// @returns whether the step's children run now.
bool Walk::RunCommandOf(const Pending& step, const CommandRow& row) {
  Value flow_no = step.flow_no;
  const InvocationContext call = ContextOf(session_.connection(), *step.instance, flow_no);
  if (row.run_cap) {
    if (IsExecuteOverTimes(session_, call.ExecuteID, flow_no)) return row.effect == Effect::kContinues;
    AddExecuteTimes(session_, call.ExecuteID, flow_no);
  }
  Step run(session_, call, row);
  return Apply(step, call, row.effect, row.handler(run));
}

bool Walk::Apply(const Pending& step, const InvocationContext& call, Effect effect, const Outcome& outcome) {
  switch (outcome.kind) {
    case Outcome::Kind::kRunStep:
      pending_.push_back({.instance = step.instance, .flow_no = outcome.number});
      return false;
    case Outcome::Kind::kStartChild: {
      auto child = StartChild(call, outcome.number);
      Instance* const running = child.get();
      pending_.push_back(
          {.instance = step.instance, .flow_no = step.flow_no, .level = step.level, .ended_child = std::move(child)});
      pending_.push_back({.instance = running, .flow_no = 1});
      return false;
    }
    default:
      return effect == Effect::kContinues || (effect == Effect::kByResult && outcome.kind == Outcome::Kind::kTrue);
  }
}

std::unique_ptr<Instance> Walk::StartChild(const InvocationContext& call, const Value& flow_id) {
  if (child_depth_ == kDeepestChildFlow) {
    throw NestingError("child flows are started inside each other more than " + std::to_string(kDeepestChildFlow) +
                       " deep: step " + JoinedText(call.FlowNo) + " of flow " + JoinedText(call.FlowID) +
                       " starts flow " + JoinedText(flow_id));
  }
  auto child = std::make_unique<Instance>(InsertChildInstance(session_, call, flow_id));
  ++child_depth_;
  return child;
}

/// @returns whether the parent goes on below the step that started the child.
bool Walk::EndChild(const Instance& child) {
  --child_depth_;
  if (!ChildFlowFinish(session_, child.execute_id)) return false;
  const bool goes_on = ParentGoesOn(session_, child.execute_id);
  DeleteParentLink(session_, child.execute_id);
  return goes_on;
}

void Walk::PushChildren(const Pending& step) {
  const auto first = static_cast<std::ptrdiff_t>(pending_.size());
  const auto rows =
      session_.Open("select Top 10000 flowno from WorkFlowConstruction where flowid=", step.instance->flow_id,
                    " and parentno=", step.flow_no, " order by ID");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    pending_.push_back({.instance = step.instance, .flow_no = rows->Field("flowno"), .level = step.level + 1});
  }
  if (std::ssize(pending_) == first) return;
  if (step.level == kDeepestLevel) {
    throw NestingError("the steps of flow " + JoinedText(step.instance->flow_id) + " nest more than " +
                       std::to_string(kDeepestLevel) + " levels deep, as in a cycle: step " +
                       JoinedText(pending_.back().flow_no) + " below step " + JoinedText(step.flow_no));
  }
  // The stack gives back the last pushed first.
  std::reverse(pending_.begin() + first, pending_.end());
}

}  // namespace talm_flow::engine
