#include "waiting.h"

#include "lookup.h"
#include "talm_flow/conversion.h"
#include "tasks.h"

namespace talm_flow::program {
namespace {

void RequireInstance(Workspace& workspace, std::int64_t flow, std::int64_t instance) {
  const auto number = std::to_string(instance);
  const auto running = workspace.FirstField("Select FlowID From WorkFlowExecuteID Where ExecuteID=" + number);
  if (running.IsNull()) throw UserError("there is no instance " + number);
  if (NumberOf(running) == flow) return;
  throw UserError("instance " + number + " runs " + FlowTitle(workspace, NumberOf(running)) + ", not " +
                  FlowTitle(workspace, flow));
}

void AddTasks(Waiting& waiting, const std::vector<Task>& tasks) {
  for (const auto& task : tasks) waiting[task.step].push_back(task.person + " (" + task.Name() + ")");
}

void AddTimers(Waiting& waiting, Workspace& workspace, const std::string& instance) {
  for (const auto& row : workspace.Rows(
           "Select FlowNo,Command,InputTime,HaveExeTimes,Times From WorkFlowExecute Where ExecuteID=" + instance +
           " and ((Command='C_15' and HaveExeTimes<Times) or (Command='C_86' and "
           "HaveExeTimes=0)) Order By ID")) {
    const bool once = row[1] == Value("C_86");
    waiting[NumberOf(row[0])].push_back(once ? "timer " + JoinedText(row[2])
                                             : "timer, " + JoinedText(row[3]) + " of " + JoinedText(row[4]) + " runs");
  }
}

void AddChildFlows(Waiting& waiting, Workspace& workspace, const std::string& instance) {
  for (const auto& row : workspace.Rows("Select ParentFlowNo,ChildExecuteID From WorkFlowChildRec Where "
                                        "ParentExecuteID=" +
                                        instance + " Order By ID")) {
    const auto child = JoinedText(row[1]);
    const auto flow = workspace.FirstField("Select FlowID From WorkFlowExecuteID Where ExecuteID=" + child);
    if (flow.IsNull()) continue;
    waiting[NumberOf(row[0])].push_back(FlowTitle(workspace, NumberOf(flow)) + " (instance " + child + ")");
  }
}

}  // namespace

Waiting WaitingSteps(Workspace& workspace, std::int64_t flow, std::int64_t instance) {
  RequireInstance(workspace, flow, instance);
  const auto number = std::to_string(instance);
  Waiting waiting;
  AddTasks(waiting, Approvals(workspace, "Status<2 and ExecuteID=" + number));
  AddTasks(waiting, FillIns(workspace, "Status<2 and ExecuteID=" + number));
  AddTimers(waiting, workspace, number);
  AddChildFlows(waiting, workspace, number);
  return waiting;
}

}  // namespace talm_flow::program
