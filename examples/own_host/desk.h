#pragma once

/// The office's part of a flow's life: submitting, finishing tasks, timers, queued messages. Each public operation is
/// one unit of work. One thread at a time.

#include <string>
#include <vector>

#include "office_services.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/invocation_context.h"

namespace office {

/// The outcome of an approval that `C_68` reads as 1; set by the host alone.
inline constexpr int kAgreed = 3;

class Desk {
 public:
  /// Both outlive the desk.
  Desk(talm_flow::adapters::Database& database, OfficeHost& host) : database_(database), host_(host) {}

  /// Starts a flow on a form record.
  void Submit(const Value& flow, const Value& form, const Value& record, const Value& who);

  /// Finishes an approval; the flow goes on when it was the last of its step.
  /// @param opinion  the approver's record of the opinion form, 0 for none.
  void Approve(const Value& task, const Value& opinion, bool agreed);

  /// Finishes a fill-in; the flow goes on when it was the last of its step.
  void FillIn(const Value& task);

  /// Runs what is due of the flows' timers. @returns how many ran.
  int RunDueTimers();

  /// Takes the queued short messages out, oldest first.
  [[nodiscard]] std::vector<std::string> SendMessages();

 private:
  struct Timer {
    Value id;
    Value instance;
    Value step;
  };

  void GoOn(const Value& instance, const Value& step);
  [[nodiscard]] std::vector<Timer> DueTimers();
  [[nodiscard]] bool IsDue(const talm_flow::RowSet& timer);
  void RunTimer(const Timer& timer);

  talm_flow::adapters::Database& database_;
  OfficeHost& host_;
};

}  // namespace office
