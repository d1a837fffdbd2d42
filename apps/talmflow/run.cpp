#include <iostream>

#include "lookup.h"
#include "talm_flow/command.h"
#include "talm_flow/construction.h"
#include "tasks.h"
#include "workspace.h"

namespace talm_flow::program {
namespace {

class RunFlow : public Subcommand {
 public:
  explicit RunFlow(CLI::App& parent)
      : Subcommand(parent, "run", "Start a flow on a record",
                   "talmflow run leave --record 12/345 --operator kim\n"
                   "talmflow run 3 --record 12/345 --operator kim --ip 10.0.0.7 --other 13/1") {
    app().add_option("FLOW", flow_, "The flow, by number or name")->required();
    app().add_option("--record", record_, "The document, as TABLE/DATA")->required();
    app().add_option("--operator", operator_, "Who starts it")->required();
    app().add_option("--ip", ip_, "From which address")->capture_default_str();
    app().add_option("--other", other_, "A second document, as TABLE/DATA");
  }

  void Run(const GlobalOptions& options) override {
    const auto record = RecordOf(record_);
    const auto other = other_.empty() ? Record() : RecordOf(other_);
    Workspace workspace(options, Need::kComplete);
    const auto flow = FlowOf(workspace, flow_);
    if (!Construction(workspace.services()).FlowNoExists(workspace.connection(), flow, 1)) {
      throw UserError(FlowTitle(workspace, flow) + " has no step 1, so there is nothing to run");
    }
    RequireRecord(workspace, record);
    if (!other_.empty()) RequireRecord(workspace, other);
    workspace.Together([&] {
      Command(workspace.services())
          .FlowExecute(workspace.connection(), flow, record.table, record.data, operator_, ip_, other.table,
                       other.data);
    });
    const auto instance = workspace.NewInstance().value_or(0);
    const auto standing = StandingOf(workspace, instance, instance);
    if (options.json) {
      auto json = AsJson(workspace, standing);
      json["flow"] = flow;
      std::cout << Dump(json, 2) << '\n';
    } else {
      Print(workspace, standing);
    }
  }

 private:
  std::string flow_;
  std::string record_;
  std::string operator_;
  std::string ip_ = "127.0.0.1";
  std::string other_;
};

/// What closing a task led to.
struct Closed {
  Task task;
  std::vector<Task> open_in_group;  ///< the approvals of the same step that are still waited for
  bool went_on = false;
  std::int64_t root = 0;
};

/// Below the task's step the flow goes on; what has nothing open any more is removed.
void GoOn(Workspace& workspace, Closed& closed) {
  Command command(workspace.services());
  command.FlowExecuteAfter(workspace.connection(), closed.task.instance, closed.task.step);
  command.EndFlow(workspace.connection(), closed.task.instance);
  closed.went_on = true;
}

Closed OpenTask(Workspace& workspace, const std::string& word, TaskKind kind) {
  Closed closed{TaskOf(workspace, word), {}, false, 0};
  const auto& task = closed.task;
  if (task.kind != kind) {
    throw UserError(task.Name() +
                    (kind == TaskKind::kApproval ? " is a fill-in; finish it with: talmflow finish "
                                                 : " is an approval; give it with: talmflow approve ") +
                    task.Name());
  }
  if (!task.IsOpen()) throw UserError("the task " + task.Name() + " is already finished");
  closed.root = NumberOf(workspace.FirstField("Select RootExecuteID From WorkFlowExecuteID Where ExecuteID=" +
                                              std::to_string(task.instance)));
  return closed;
}

void Report(Workspace& workspace, const GlobalOptions& options, const Closed& closed, const std::string& outcome) {
  const auto standing = StandingOf(workspace, closed.task.instance, closed.root);
  if (options.json) {
    Json waiting = Json::array();
    for (const auto& task : closed.open_in_group) waiting.push_back(task.Name());
    Json json = {{"task", closed.task.Name()}, {"outcome", outcome}, {"went_on", closed.went_on}, {"open", waiting}};
    json.update(AsJson(workspace, standing));
    std::cout << Dump(json, 2) << '\n';
    return;
  }
  std::cout << closed.task.Name() << " is " << outcome << ".\n";
  if (!closed.went_on) {
    std::cout << "The flow goes on when the others of the step have approved too:";
    for (const auto& task : closed.open_in_group) std::cout << ' ' << task.Name() << " (" << task.person << ')';
    std::cout << '\n';
    return;
  }
  Print(workspace, standing);
}

/// The outcome that C_68 and C_98 look for is the host's to give; the component itself only finishes tasks.
void GivePositiveOutcome(Workspace& workspace, const std::string& table, const std::string& key, const Task& task) {
  (void)workspace.database().Execute("Update " + table + " Set Status=3 Where " + key + "=" + std::to_string(task.id));
}

class Approve : public Subcommand {
 public:
  explicit Approve(CLI::App& parent)
      : Subcommand(
            parent, "approve", "Finish an approval and let its flow go on",
            "talmflow approve A12\n"
            "talmflow approve A12 --form 13/7\n"
            "talmflow approve A12 --positive\n"
            "\nThe flow goes on when all approvals of the step are finished; with --any it goes on at once, and\n"
            "again when the last of the others is finished.") {
    app().add_option("TASK", task_, "The approval, as A12")->required();
    app().add_option("--form", form_, "The record in which the approval was filled in, as TABLE/DATA");
    app().add_flag("--positive", positive_,
                   "Give it the positive outcome, Status 3, which a step with C_68 reads as 1");
    app().add_flag("--any", any_, "Go on though others of the step have not approved yet");
  }

  void Run(const GlobalOptions& options) override {
    const auto form = form_.empty() ? Record() : RecordOf(form_);
    Workspace workspace(options, Need::kComplete);
    Closed closed;
    workspace.Together([&] {
      closed = OpenTask(workspace, task_, TaskKind::kApproval);
      if (!form_.empty()) RequireForm(workspace, closed.task, form);
      Command command(workspace.services());
      command.ChangeAppStatusToFinish(workspace.connection(), closed.task.id, form.data);
      if (positive_) GivePositiveOutcome(workspace, "DataApp", "DataAppID", closed.task);
      if (any_ || !command.NotAppExists(workspace.connection(), closed.task.id)) {
        GoOn(workspace, closed);
      } else {
        closed.open_in_group = Approvals(workspace, "Status<2 and RelatingID=" + std::to_string(closed.task.group));
      }
    });
    Report(workspace, options, closed, positive_ ? "approved with the positive outcome" : "approved");
  }

 private:
  static void RequireForm(Workspace& workspace, const Task& task, const Record& form) {
    if (form.table != task.form) {
      throw UserError("--form: " + task.Name() + " is filled in with the form " + std::to_string(task.form) + ", not " +
                      std::to_string(form.table));
    }
    RequireRecord(workspace, form);
  }

  std::string task_;
  std::string form_;
  bool positive_ = false;
  bool any_ = false;
};

class Finish : public Subcommand {
 public:
  explicit Finish(CLI::App& parent)
      : Subcommand(parent, "finish", "Finish a fill-in and let its flow go on",
                   "talmflow finish F3\n"
                   "talmflow finish F3 --positive") {
    app().add_option("TASK", task_, "The fill-in, as F3")->required();
    app().add_flag("--positive", positive_,
                   "Give it the positive outcome, Status 3, which a step with C_98 reads as 1");
  }

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    Closed closed;
    workspace.Together([&] {
      closed = OpenTask(workspace, task_, TaskKind::kFillIn);
      Command(workspace.services()).ChangeInUnitSubStatusToFinish(workspace.connection(), closed.task.id);
      if (positive_) GivePositiveOutcome(workspace, "InUnitSub", "ID", closed.task);
      GoOn(workspace, closed);
    });
    Report(workspace, options, closed, positive_ ? "finished with the positive outcome" : "finished");
  }

 private:
  std::string task_;
  bool positive_ = false;
};

}  // namespace

void AddRunSubcommands(CLI::App& parent, Subcommands& all) {
  all.push_back(std::make_unique<RunFlow>(parent));
  all.push_back(std::make_unique<Approve>(parent));
  all.push_back(std::make_unique<Finish>(parent));
}

}  // namespace talm_flow::program
