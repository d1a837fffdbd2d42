#pragma once

/// A host that brings flows to their ends: it starts them, gives approvals, fills in, lets timers come due, resumes and
/// ends instances, always in the same order, so that two runs of a flow do the same.

#include <functional>
#include <string>

#include "support/fault_sweep.h"
#include "support/world.h"

namespace talm_flow::test {

class FlowHost {
 public:
  /// Makes one call of the component; where nothing else is asked for, simply on the world's connection.
  using Perform = std::function<void(const SweptCall& call)>;

  explicit FlowHost(World& world);
  FlowHost(World& world, Perform perform) : world_(world), perform_(std::move(perform)) {}

  /// Starts a flow on record 1 of form 12; the second document is record 1 of form 16.
  void Start(int flow);

  /// Does what is due next: the oldest open approval, else the oldest open fill-in, else the oldest live timer. Every
  /// third approval is not agreed to. @returns whether anything was due.
  bool SettleOne();

  /// Settles until nothing is due, or `most` times. @returns whether nothing is due any more.
  bool Settle(int most);

 private:
  bool Approve();
  bool FillIn();
  bool RunTimer();
  void Resume(const Value& instance, const Value& step);
  void RunStep(const Value& instance, const Value& step);
  void End(const Value& instance);

  World& world_;
  Perform perform_;
};

}  // namespace talm_flow::test
