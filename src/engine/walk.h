#pragma once

/// The walk over a flow's step tree.
///
/// Depth first, on a stack of pending work that lives on the heap: a step's children are pushed when its command has
/// run, an entry is gone before it runs, so that a chain keeps one entry however long it is, and nothing recurses. One
/// place (`Apply`) decides from a command's row and its outcome what runs next.

#include <memory>
#include <vector>

#include "db/session.h"
#include "engine/command_table.h"
#include "engine/instance.h"
#include "talm_flow/invocation_context.h"

namespace talm_flow::engine {

/// A tree has no more levels than step numbers; a descent beyond them has met a cycle.
inline constexpr int kDeepestLevel = 32767;

/// How deep child flows may start each other within one call.
inline constexpr int kDeepestChildFlow = 1000;

class Walk {
 public:
  /// References are kept.
  Walk(db::Session& session, const CommandTable& commands) : session_(session), commands_(commands) {}

  /// Runs a step and everything below it. @throws NestingError  the definition nests without end.
  void RunStep(Instance& instance, const Value& flow_no);

  /// Runs the children of a step, each with everything below it.
  void RunChildren(Instance& instance, const Value& flow_no);

  /// Runs one command alone, with the step or the child flow that it starts itself, but not the step's children.
  /// @returns its result; False for a command without one.
  bool RunCommand(const InvocationContext& call, const CommandRow& row);

 private:
  struct Pending {
    Instance* instance = nullptr;
    Value flow_no;
    int level = 0;  ///< below the flow's start or the last jump
    /// Set when the child flow that step `flow_no` started ends here. Everything pending above belongs to the child.
    std::unique_ptr<Instance> ended_child{};
  };

  void Drain();
  void Run(const Pending& step);
  [[nodiscard]] bool RunCommandOf(const Pending& step, const CommandRow& row);
  [[nodiscard]] bool Apply(const Pending& step, const InvocationContext& call, Effect effect, const Outcome& outcome);
  [[nodiscard]] std::unique_ptr<Instance> StartChild(const InvocationContext& call, const Value& flow_id);
  [[nodiscard]] bool EndChild(const Instance& child);
  void PushChildren(const Pending& step);

  db::Session& session_;
  const CommandTable& commands_;
  std::vector<Pending> pending_;
  int child_depth_ = 0;
};

}  // namespace talm_flow::engine
