#include "tasks.h"

#include <iostream>

#include "talm_flow/conversion.h"

namespace talm_flow::program {
namespace {

std::string StatusText(std::int64_t status) {
  switch (status) {
    case 0:
    case 1:
      return "open";
    case 2:
      return "finished";
    case 3:
      return "positive";
    default:
      return std::to_string(status);
  }
}

Task Common(TaskKind kind, const Row& row) {
  Task task;
  task.kind = kind;
  task.id = NumberOf(row[0]);
  task.instance = NumberOf(row[1]);
  task.step = NumberOf(row[2]);
  task.person = JoinedText(row[3]);
  task.record = {NumberOf(row[4]), NumberOf(row[5])};
  task.button = JoinedText(row[6]);
  task.notice = JoinedText(row[7]);
  task.status = NumberOf(row[8]);
  return task;
}

std::string InTree(std::int64_t root) {
  return "ExecuteID in (select ExecuteID From WorkFlowExecuteID where RootExecuteID=" + std::to_string(root) + ")";
}

Value FlowOfInstance(Workspace& workspace, std::int64_t instance) {
  return workspace.FirstField("Select FlowID From WorkFlowExecuteID Where ExecuteID=" + std::to_string(instance));
}

}  // namespace

std::string Task::Name() const { return (kind == TaskKind::kApproval ? "A" : "F") + std::to_string(id); }

std::vector<Task> Approvals(Workspace& workspace, const std::string& condition) {
  std::vector<Task> tasks;
  for (const auto& row :
       workspace.Rows("Select DataAppID,ExecuteID,FlowNo,Appover,AppedTableID,AppedDataID,ButtonText,NoticInf,Status,"
                      "AppTableID,RelatingID From DataApp Where " +
                      condition + " Order By DataAppID")) {
    auto& task = tasks.emplace_back(Common(TaskKind::kApproval, row));
    task.form = NumberOf(row[9]);
    task.group = NumberOf(row[10]);
  }
  return tasks;
}

std::vector<Task> FillIns(Workspace& workspace, const std::string& condition) {
  std::vector<Task> tasks;
  for (const auto& row : workspace.Rows("Select ID,ExecuteID,FlowNo,InPuter,TableID,DataID,ButtonText,NoticInf,Status,"
                                        "InUnitID From InUnitSub Where " +
                                        condition + " Order By ID")) {
    tasks.emplace_back(Common(TaskKind::kFillIn, row)).unit = JoinedText(row[9]);
  }
  return tasks;
}

Task TaskOf(Workspace& workspace, const std::string& word) {
  const char kind = word.empty() ? '\0' : word.front();
  const bool any = kind != 'A' && kind != 'F';
  const auto number =
      IdOf(std::string_view(word).substr(any ? 0 : 1), "task; write A12 for an approval, F3 for a fill-in", word);
  std::vector<Task> found;
  if (any || kind == 'A') found = Approvals(workspace, "DataAppID=" + std::to_string(number));
  if (any || kind == 'F') {
    for (auto& task : FillIns(workspace, "ID=" + std::to_string(number))) found.push_back(std::move(task));
  }
  if (found.empty()) throw UserError("there is no task " + word);
  if (found.size() > 1) {
    throw UserError("the task " + word + " may be " + found[0].Name() + " or " + found[1].Name() + "; write which");
  }
  return found.front();
}

Listing ListTasks(Workspace& workspace, const std::vector<Task>& tasks) {
  Listing listing(
      {"Task", "Kind", "Person", "Record", "Instance", "Flow", "Step", "Caption", "Button", "Notice", "Status"});
  for (const auto& task : tasks) {
    const auto flow = FlowOfInstance(workspace, task.instance);
    const auto caption = flow.IsNull() ? Value() : CaptionOf(workspace, NumberOf(flow), task.step);
    listing.Add({task.Name(), task.kind == TaskKind::kApproval ? "approval" : "fill-in " + task.unit, task.person,
                 TextOf(task.record), task.instance, ToJson(flow), task.step, ToJson(caption), task.button, task.notice,
                 StatusText(task.status)});
  }
  return listing;
}

Listing ListTimers(Workspace& workspace, const std::string& condition) {
  Listing listing({"Timer", "Instance", "Step", "Command", "Runs", "Done", "Interval", "Moment", "Live"});
  for (const auto& row :
       workspace.Rows("Select ID,ExecuteID,FlowNo,Command,Times,HaveExeTimes,Interval,InputTime From WorkFlowExecute "
                      "Where (Command='C_15' or Command='C_86') and " +
                      condition + " Order By ID")) {
    const bool once = row[3] == Value("C_86");
    const auto done = NumberOf(row[5]);
    const bool live = once ? done == 0 : NumberOf(row[4]) > done;
    listing.Add({ToJson(row[0]), ToJson(row[1]), ToJson(row[2]), ToJson(row[3]), once ? Json(1) : ToJson(row[4]),
                 ToJson(row[5]), ToJson(row[6]), ToJson(row[7]), live});
  }
  return listing;
}

Standing StandingOf(Workspace& workspace, std::int64_t instance, std::int64_t root) {
  const bool ended = FlowOfInstance(workspace, root).IsNull();
  if (ended) return {instance, true, {}, ListTimers(workspace, "1=0")};
  Standing standing{instance, false, Approvals(workspace, "Status<2 and " + InTree(root)),
                    ListTimers(workspace,
                               "((Command='C_15' and Times>HaveExeTimes) or (Command='C_86' and "
                               "HaveExeTimes=0)) and " +
                                   InTree(root))};
  for (auto& task : FillIns(workspace, "Status<2 and " + InTree(root))) standing.tasks.push_back(std::move(task));
  return standing;
}

Json AsJson(Workspace& workspace, const Standing& standing) {
  return {{"instance", standing.instance},
          {"ended", standing.ended},
          {"tasks", ListTasks(workspace, standing.tasks).AsJson()},
          {"timers", standing.timers.AsJson()}};
}

void Print(Workspace& workspace, const Standing& standing) {
  std::cout << "Instance " << standing.instance;
  if (standing.ended) {
    std::cout << " has ended.\n";
    return;
  }
  const bool has_timers = !standing.timers.AsJson().empty();
  if (standing.tasks.empty() && !has_timers) {
    std::cout << " waits for another instance of its tree.\n";
    return;
  }
  std::cout << " waits for\n";
  if (!standing.tasks.empty()) ListTasks(workspace, standing.tasks).PrintColumns("  ");
  if (has_timers) standing.timers.PrintColumns("  ");
}

}  // namespace talm_flow::program
