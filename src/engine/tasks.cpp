#include "engine/tasks.h"

#include <optional>
#include <string_view>
#include <unordered_set>

#include "talm_flow/error.h"

namespace talm_flow::engine {
namespace {

std::int32_t ParentOf(db::Session& session, const Value& flow_id, const Value& flow_no) {
  const auto parent = session.FirstField(
      "ParentNo", "select Top 1 ParentNo from WorkFlowConstruction where FlowNo=", flow_no, " and FlowID=", flow_id);
  return parent ? ToInt32(*parent) : 0;
}

/// The nearest step above `flow_no` whose command is `command`; 0 when the walk up ends before one is met.
std::int32_t NearestAbove(db::Session& session, const Value& flow_id, const Value& flow_no, std::string_view command) {
  std::unordered_set<std::int32_t> seen;
  Value step = flow_no;
  while (true) {
    const std::int32_t parent = ParentOf(session, flow_id, step);
    if (parent == 0) return 0;
    if (!seen.insert(parent).second) {
      throw NestingError("the parents of step " + JoinedText(flow_no) + " of flow " + JoinedText(flow_id) +
                         " form a cycle at step " + std::to_string(parent));
    }
    const auto row = session.Open("select Top 1 Command,FlowNo from WorkFlowConstruction where FlowNo=", parent,
                                  " and FlowID=", db::Quoted(flow_id));
    if (!db::Session::HasRow(*row)) return 0;
    const std::string found = JoinedText(row->Field("Command"));
    if (found == command) return ToInt32(row->Field("FlowNo"));
    if (found.empty()) return 0;
    step = parent;
  }
}

constexpr std::string_view kInformation = "NoticInf";

/// A task that the host made may have none.
std::string Information(const std::optional<Value>& field) { return field ? JoinedText(*field) : std::string(); }

}  // namespace

std::int32_t GetFlowNoApprov(db::Session& session, const Value& flow_id, const Value& flow_no) {
  return NearestAbove(session, flow_id, flow_no, "C_2");
}

// "C_98" is the command that reads the outcome, not the fill-in task itself ("C_97"): kept as installed definitions
// know it, so that a `C_98` below a fill-in step reads "0".
std::int32_t GetFlowNoInUnitSub(db::Session& session, const Value& flow_id, const Value& flow_no) {
  return NearestAbove(session, flow_id, flow_no, "C_98");
}

void ChangeAppStatusToFinish(db::Session& session, const Value& data_app_id, const Value& app_data_id) {
  session.Execute("update DataApp set Status=2,AppDataID=", app_data_id, " where DataAppID=", data_app_id);
  session.Execute("update WorkFlowExecute set AppFinished=1 where DataAppID=", data_app_id);
}

void ChangeInUnitSubStatusToFinish(db::Session& session, const Value& in_unit_sub_id) {
  session.Execute("update InUnitSub set Status=2 where ID=", in_unit_sub_id);
  // The waiting row of a fill-in task carries the task's number in the same column as that of an approval.
  session.Execute("update WorkFlowExecute set AppFinished=1 where DataAppID=", in_unit_sub_id);
}

bool NotAppExists(db::Session& session, const Value& data_app_id) {
  const auto group =
      session.FirstField("RelatingID", "Select Top 1 RelatingID From DataApp Where DataAppID=", data_app_id);
  if (!group || group->IsNull()) return false;
  return session.AnyRow("Select Top 1 DataAppID From DataApp Where RelatingID=", *group, " And Status<2");
}

std::string GetNoticInfFromDataApp(db::Session& session, const Value& data_app_id) {
  return Information(
      session.FirstField(kInformation, "Select Top 1 NoticInf From DataApp Where DataAppID=", data_app_id));
}

std::string GetNoticInfFromInUnitSub(db::Session& session, const Value& in_unit_sub_id) {
  return Information(
      session.FirstField(kInformation, "Select Top 1 NoticInf From InUnitSub Where ID=", in_unit_sub_id));
}

std::string GetNoticInfFromDataAtt(db::Session& session, const Value& data_att_id) {
  return Information(
      session.FirstField(kInformation, "Select Top 1 NoticInf From DataAtt Where DataAttID=", data_att_id));
}

}  // namespace talm_flow::engine
