#include "desk.h"

#include <cstdint>

#include "talm_flow/command.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/host/unit_of_work.h"

namespace office {

using talm_flow::Command;
using talm_flow::InvocationContext;
using talm_flow::JoinedText;
using talm_flow::ParseDate;
using talm_flow::RowSet;
using talm_flow::ToInt32;
using talm_flow::host::UnitOfWork;

// snippet: submit
void Desk::Submit(const Value& flow, const Value& form, const Value& record, const Value& who) {
  UnitOfWork(database_).Run(
      [&] { Command(host_.services()).FlowExecute(database_, flow, form, record, who, "127.0.0.1", 0, 0); });
}
// snippet end

// snippet: approve
void Desk::Approve(const Value& task, const Value& opinion, bool agreed) {
  UnitOfWork(database_).Run([&] {
    Command command(host_.services());
    command.ChangeAppStatusToFinish(database_, task, opinion);
    const std::string key = " Where DataAppID=" + JoinedText(task);
    // The component only finishes tasks; an outcome that C_68 reads as 1 is the host's to give.
    if (agreed) (void)database_.Execute("Update DataApp Set Status=" + std::to_string(kAgreed) + key);
    if (command.NotAppExists(database_, task)) return;  // others of the step have not decided yet

    const auto row = database_.Open("Select Top 1 ExecuteID,FlowNo From DataApp" + key);
    GoOn(row->Field("ExecuteID"), row->Field("FlowNo"));
  });
}

void Desk::GoOn(const Value& instance, const Value& step) {
  Command command(host_.services());
  command.FlowExecuteAfter(database_, instance, step);
  command.EndFlow(database_, instance);
}
// snippet end

// snippet: fill_in
void Desk::FillIn(const Value& task) {
  UnitOfWork(database_).Run([&] {
    Command(host_.services()).ChangeInUnitSubStatusToFinish(database_, task);
    const auto row = database_.Open("Select Top 1 ExecuteID,FlowNo From InUnitSub Where ID=" + JoinedText(task));
    const Value instance = row->Field("ExecuteID");
    const Value step = row->Field("FlowNo");
    // Fill-ins have no group number: those of one step are its group.
    const bool others_wait =
        !database_
             .Open("Select Top 1 ID From InUnitSub Where Status<2 And ExecuteID=" + JoinedText(instance) +
                   " And FlowNo=" + JoinedText(step))
             ->AtEnd();
    if (!others_wait) GoOn(instance, step);
  });
}
// snippet end

// snippet: timers
int Desk::RunDueTimers() {
  const auto timers = DueTimers();
  for (const Timer& timer : timers) {
    UnitOfWork(database_).Run([&] { RunTimer(timer); });
  }
  return static_cast<int>(timers.size());
}

std::vector<Desk::Timer> Desk::DueTimers() {
  std::vector<Timer> due;
  const auto rows = database_.Open(
      "Select ID,ExecuteID,FlowNo,Command,Interval,InputTime From WorkFlowExecute Where "
      "(Command='C_15' And Times>HaveExeTimes) Or (Command='C_86' And HaveExeTimes=0) Order By ID");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    if (IsDue(*rows)) due.push_back({rows->Field("ID"), rows->Field("ExecuteID"), rows->Field("FlowNo")});
  }
  return due;
}

bool Desk::IsDue(const RowSet& timer) {
  const DateTime now = host_.clock().Now();
  if (timer.Field("Command") == Value("C_86")) {
    const auto moment = ParseDate(JoinedText(timer.Field("InputTime")));
    return moment && *moment <= now;
  }
  // What an interval counts is the host's choice: here minutes since the last run, or since the timer was first seen.
  const std::string id = JoinedText(timer.Field("ID"));
  const auto seen = database_.Open("Select LastRun From OfficeTimer Where WaitID=" + id);
  if (seen->AtEnd()) {
    (void)database_.Execute("Insert Into OfficeTimer (WaitID,LastRun) Values (" + id + ",'" + GeneralDateText(now) +
                            "')");
    return false;
  }
  const auto last_run = ParseDate(JoinedText(seen->Field("LastRun")));
  return last_run && now.seconds - last_run->seconds >= std::int64_t{60} * ToInt32(timer.Field("Interval"));
}

void Desk::RunTimer(const Timer& timer) {
  Command command(host_.services());
  const std::string id = JoinedText(timer.id);
  (void)database_.Execute("Update WorkFlowExecute Set HaveExeTimes=HaveExeTimes+1 Where ID=" + id);
  (void)database_.Execute("Update OfficeTimer Set LastRun='" + GeneralDateText(host_.clock().Now()) +
                          "' Where WaitID=" + id);

  Value instance = timer.instance, step = timer.step;
  Value root, form, record, flow, who, address, other_form, other_record;
  if (!command.ExecuteIDExists(database_, instance, root, form, record, flow, who, address, other_form, other_record)) {
    return;  // the instance has ended since
  }
  InvocationContext context{database_, instance, step,    root,       form,        record,
                            flow,      who,      address, other_form, other_record};
  command.FlowExecuteByExecuteID(context);
  command.EndFlow(database_, instance);
}
// snippet end

// snippet: queues
std::vector<std::string> Desk::SendMessages() {
  std::vector<std::string> sent;
  const auto rows = database_.Open("Select ID,Recver,Content From HandSetSend Order By ID");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    sent.push_back(JoinedText(rows->Field("Recver")) + ": " + JoinedText(rows->Field("Content")));
    // Only a message that went out leaves the queue. After a crash between the two it goes out twice, never not at all.
    (void)database_.Execute("Delete From HandSetSend Where ID=" + JoinedText(rows->Field("ID")));
  }
  return sent;
}
// snippet end

}  // namespace office
