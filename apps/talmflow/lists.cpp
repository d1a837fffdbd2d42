#include "listing.h"
#include "lookup.h"
#include "talm_flow/conversion.h"
#include "tasks.h"
#include "workspace.h"

namespace talm_flow::program {
namespace {

class Tasks : public Subcommand {
 public:
  explicit Tasks(CLI::App& parent)
      : Subcommand(parent, "tasks", "List the approvals and fill-ins that wait for people",
                   "talmflow tasks\ntalmflow tasks --person kim\ntalmflow tasks --all --json") {
    app().add_option("--person", person_, "Only the tasks of this person");
    app().add_flag("--all", all_, "Finished tasks too");
  }

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    const std::string open = all_ ? "1=1" : "Status<2";
    const auto of = [&](const char* column) {
      return person_.empty() ? open : open + " and " + column + "=" + workspace.Literal(person_);
    };
    auto tasks = Approvals(workspace, of("Appover"));
    for (auto& task : FillIns(workspace, of("InPuter"))) tasks.push_back(std::move(task));
    ListTasks(workspace, tasks).Print(options, "There are no tasks.");
  }

 private:
  std::string person_;
  bool all_ = false;
};

class Instances : public Subcommand {
 public:
  explicit Instances(CLI::App& parent)
      : Subcommand(parent, "instances", "List the running flow instances",
                   "talmflow instances\ntalmflow instances --json") {}

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    Listing listing({"Instance", "Root", "Flow", "Name", "Record", "Operator", "Address", "Open tasks"});
    for (const auto& row :
         workspace.Rows("Select ExecuteID,RootExecuteID,FlowID,TableID,DataID,Operator,IpAddress From "
                        "WorkFlowExecuteID Order By ExecuteID")) {
      const auto instance = JoinedText(row[0]);
      const auto name = workspace.FirstField("Select FlowName From WorkFlowName Where FlowID=" + JoinedText(row[2]));
      const auto open = "Status<2 and ExecuteID=" + instance;
      listing.Add({ToJson(row[0]), ToJson(row[1]), ToJson(row[2]), ToJson(name),
                   TextOf({NumberOf(row[3]), NumberOf(row[4])}), ToJson(row[5]), ToJson(row[6]),
                   Approvals(workspace, open).size() + FillIns(workspace, open).size()});
    }
    listing.Print(options, "There are no instances.");
  }
};

class Variables : public Subcommand {
 public:
  explicit Variables(CLI::App& parent)
      : Subcommand(parent, "variables", "List flow variables",
                   "talmflow variables\ntalmflow variables 5\n"
                   "\nWith an instance: its own, those of its tree, and the global ones.") {
    app().add_option("INSTANCE", instance_, "The instance whose variables to list");
  }

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    Listing listing({"Scope", "Instance", "Root", "Name", "Value"});
    const auto instance = instance_.empty() ? 0 : IdOf(instance_, "instance number");
    for (const auto& row : workspace.Rows("Select RootExecuteID,ExecuteID,VariableName,VariableValue From "
                                          "WorkFlowVariable" +
                                          Condition(workspace, instance) + " Order By RootExecuteID,VariableName")) {
      const auto name = JoinedText(row[2]);
      const std::string scope = name.starts_with("Private_")  ? "private"
                                : name.starts_with("Global_") ? "global"
                                                              : "tree";
      // What other instances of the tree keep to themselves is not visible to this one.
      if (instance != 0 && scope == "private" && NumberOf(row[1]) != instance) continue;
      listing.Add({scope, ToJson(row[1]), ToJson(row[0]), name, ToJson(row[3])});
    }
    listing.Print(options, "There are no variables.");
  }

 private:
  static std::string Condition(Workspace& workspace, std::int64_t instance) {
    if (instance == 0) return {};
    const auto root =
        workspace.FirstField("Select RootExecuteID From WorkFlowExecuteID Where ExecuteID=" + std::to_string(instance));
    if (root.IsNull()) throw UserError("there is no instance " + std::to_string(instance));
    return " Where RootExecuteID=" + JoinedText(root) + " or RootExecuteID=0";
  }

  std::string instance_;
};

class Timers : public Subcommand {
 public:
  explicit Timers(CLI::App& parent)
      : Subcommand(parent, "timers", "List the timers that flows have set", "talmflow timers\ntalmflow timers --json") {
  }

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kComplete);
    ListTimers(workspace, "1=1").Print(options, "There are no timers.");
  }
};

}  // namespace

void AddListSubcommands(CLI::App& parent, Subcommands& all) {
  all.push_back(std::make_unique<Tasks>(parent));
  all.push_back(std::make_unique<Instances>(parent));
  all.push_back(std::make_unique<Variables>(parent));
  all.push_back(std::make_unique<Timers>(parent));
}

}  // namespace talm_flow::program
