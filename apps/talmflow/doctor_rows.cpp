#include <algorithm>

#include "check.h"
#include "doctor.h"
#include "lookup.h"
#include "talm_flow/conversion.h"
#include "talm_flow/definition_check.h"

namespace talm_flow::program {
namespace {

/// How many rows of one kind are looked for, and how many of them are named.
constexpr std::size_t kMost = 1000;
constexpr std::size_t kMostNamed = 3;

/// Rows that should not be there. The query gives their keys, which tell them to people.
struct RowCheck {
  const char* kind;
  const char* table;
  const char* key;
  const char* condition;
  const char* problem;  ///< behind "row 3" or "5 rows (3, 4, 7 ...)"
  const char* advice;
};

constexpr RowCheck kChecks[] = {
    {"orphan", "WorkFlowExecuteID", "ExecuteID",
     "not exists (select r.ExecuteID from WorkFlowExecuteID r where r.ExecuteID=x.RootExecuteID)",
     "of a tree whose top instance does not exist", "delete what is left of the tree"},
    {"orphan", "WorkFlowExecuteID", "ExecuteID",
     "not exists (select n.FlowID from WorkFlowName n where n.FlowID=x.FlowID)", "of a flow that does not exist",
     "import the flow again, or delete the instance's tree"},
    {"orphan", "WorkFlowExecuteTimes", "ID",
     "not exists (select i.ExecuteID from WorkFlowExecuteID i where i.ExecuteID=x.ExecuteID)",
     "of an instance that does not exist", "delete it: nothing reads it"},
    {"orphan", "WorkFlowVariable", "ID",
     "x.RootExecuteID<>0 and not exists (select i.ExecuteID from WorkFlowExecuteID i where "
     "i.RootExecuteID=x.RootExecuteID)",
     "of an instance that does not exist", "delete it: nothing reads it"},
    {"orphan", "WorkFlowChildRec", "ID",
     "not exists (select i.ExecuteID from WorkFlowExecuteID i where i.ExecuteID=x.ParentExecuteID) or not exists "
     "(select i.ExecuteID from WorkFlowExecuteID i where i.ExecuteID=x.ChildExecuteID)",
     "between instances of which one does not exist", "delete it; a parent that is left then ends by Command.EndFlow"},
    {"orphan", "WorkFlowExecute", "ID",
     "((x.Command='C_15' and x.Times>x.HaveExeTimes) or (x.Command='C_86' and x.HaveExeTimes=0)) and not exists "
     "(select i.ExecuteID from WorkFlowExecuteID i where i.ExecuteID=x.ExecuteID)",
     "which is a timer of an instance that does not exist", "delete it: it would run nothing"},
    {"orphan", "DataApp", "DataAppID",
     "x.Status<2 and x.ExecuteID>0 and not exists (select i.ExecuteID from WorkFlowExecuteID i where "
     "i.ExecuteID=x.ExecuteID)",
     "which is an open approval of an instance that does not exist", "set its Status to 2: nothing waits for it"},
    {"orphan", "InUnitSub", "ID",
     "x.Status<2 and x.ExecuteID>0 and not exists (select i.ExecuteID from WorkFlowExecuteID i where "
     "i.ExecuteID=x.ExecuteID)",
     "which is an open fill-in of an instance that does not exist", "set its Status to 2: nothing waits for it"},
    {"orphan", "WorkFlowConstruction", "ID", "not exists (select n.FlowID from WorkFlowName n where n.FlowID=x.FlowID)",
     "which is a step of a flow that does not exist", "delete it, or import the flow again"},
    {"orphan", "WorkFlowParameter", "ID",
     "not exists (select c.ID from WorkFlowConstruction c where c.FlowID=x.FlowID and c.FlowNo=x.FlowNo)",
     "which is a parameter of a step that does not exist", "delete it: nothing reads it"},
    {"orphan", "WorkFlowFunctionInput", "ID",
     "not exists (select n.FlowID from WorkFlowName n where n.FlowID=x.FlowID)",
     "which is an input parameter of a flow that does not exist", "delete it: nothing reads it"},
    {"stuck", "WorkFlowExecuteID", "ExecuteID",
     "x.ExecuteID=x.RootExecuteID and not exists (select c.ID from WorkFlowChildRec c,WorkFlowExecuteID i where "
     "c.ParentExecuteID=i.ExecuteID and i.RootExecuteID=x.ExecuteID) and not exists (select d.DataAppID from DataApp "
     "d,WorkFlowExecuteID i where d.Status<2 and d.ExecuteID=i.ExecuteID and i.RootExecuteID=x.ExecuteID) and not "
     "exists (select s.ID from InUnitSub s,WorkFlowExecuteID i where s.Status<2 and s.ExecuteID=i.ExecuteID and "
     "i.RootExecuteID=x.ExecuteID) and not exists (select w.ID from WorkFlowExecute w,WorkFlowExecuteID i where "
     "((w.Command='C_15' and w.Times>w.HaveExeTimes) or (w.Command='C_86' and w.HaveExeTimes=0)) and "
     "w.ExecuteID=i.ExecuteID and i.RootExecuteID=x.ExecuteID)",
     "which is an instance in whose tree nothing waits", "end it with talmflow call Command.EndFlow and its number"},
    {"stuck", "WorkFlowChildRec", "ID",
     "exists (select i.ExecuteID from WorkFlowExecuteID i where i.ExecuteID=x.ChildExecuteID) and exists (select "
     "i.ExecuteID from WorkFlowExecuteID i where i.ExecuteID=x.ParentExecuteID) and not exists (select c.ID from "
     "WorkFlowChildRec c where c.ParentExecuteID=x.ChildExecuteID) and not exists (select d.DataAppID from DataApp d "
     "where d.Status<2 and d.ExecuteID=x.ChildExecuteID) and not exists (select s.ID from InUnitSub s where s.Status<2 "
     "and s.ExecuteID=x.ChildExecuteID)",
     "whose child flow waits for nothing, while its parent waits for the child",
     "go on behind the child's last step with talmflow call Command.FlowExecuteAfter"},
    {"stuck", "WorkFlowExecute", "ID",
     "x.Command='C_2' and x.AppFinished=0 and exists (select i.ExecuteID from WorkFlowExecuteID i where "
     "i.ExecuteID=x.ExecuteID) and not exists (select d.DataAppID from DataApp d where d.DataAppID=x.DataAppID and "
     "d.Status<2)",
     "which waits for an approval that is gone or finished already",
     "go on behind the step with talmflow call Command.FlowExecuteAfter"},
    {"stuck", "WorkFlowExecute", "ID",
     "x.Command='C_97' and x.AppFinished=0 and exists (select i.ExecuteID from WorkFlowExecuteID i where "
     "i.ExecuteID=x.ExecuteID) and not exists (select s.ID from InUnitSub s where s.ID=x.DataAppID and s.Status<2)",
     "which waits for a fill-in that is gone or finished already",
     "go on behind the step with talmflow call Command.FlowExecuteAfter"},
};

/// "row 3", "2 rows (3, 4)", "more than 1000 rows (3, 4, 5 ...)".
std::string Rows(const std::vector<Row>& rows) {
  if (rows.size() == 1) return "row " + JoinedText(rows[0][0]);
  std::string named;
  for (std::size_t i = 0; i < std::min(rows.size(), kMostNamed); ++i) {
    named.append(i > 0 ? ", " : "").append(JoinedText(rows[i][0]));
  }
  return (rows.size() > kMost ? "more than " + std::to_string(kMost) : std::to_string(rows.size())) + " rows (" +
         named + (rows.size() > kMostNamed ? " ...)" : ")");
}

std::string StatementOf(const RowCheck& check) {
  const auto key = std::string("x.") + check.key;
  return "Select Top " + std::to_string(kMost + 1) + " " + key + " From " + check.table + " x Where " +
         check.condition + " Order By " + key;
}

void ExamineDefinitions(Workspace& workspace, Ailments& ailments) {
  for (const auto& row : workspace.Rows("Select FlowID From WorkFlowName Order By FlowID")) {
    const auto flow = NumberOf(row[0]);
    const auto findings = CheckFlow(workspace.connection(), workspace.services(), flow);
    if (!HasErrors(findings)) continue;
    ailments.push_back({false, "definition", "WorkFlowConstruction",
                        FlowTitle(workspace, flow) + " has steps that can never work: " + FindingsCounted(findings),
                        "see them with talmflow check " + std::to_string(flow)});
  }
}

}  // namespace

Ailments ExamineRows(Workspace& workspace) {
  Ailments ailments;
  for (const auto& check : kChecks) {
    const auto rows = workspace.Rows(StatementOf(check));
    if (rows.empty()) continue;
    ailments.push_back({true, check.kind, check.table, Rows(rows) + " " + check.problem, check.advice});
  }
  ExamineDefinitions(workspace, ailments);
  return ailments;
}

}  // namespace talm_flow::program
