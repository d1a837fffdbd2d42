#include "engine/instance.h"

#include <array>
#include <string>
#include <string_view>

namespace talm_flow::engine {

Instance InstanceOf(const InvocationContext& call) {
  return {.execute_id = call.ExecuteID,
          .root_execute_id = call.RootExecuteID,
          .table_id = call.TableID,
          .data_id = call.DataID,
          .flow_id = call.FlowID,
          .operator_name = call.Operator,
          .ip_address = call.IpAddress,
          .other_table_id = call.OtherTableID,
          .other_data_id = call.OtherDataID};
}

std::optional<Instance> FindInstance(db::Session& session, const Value& execute_id) {
  const auto row = session.Open("Select Top 1 * From WorkFlowExecuteID Where ExecuteID=", execute_id);
  if (!db::Session::HasRow(*row)) return std::nullopt;
  return Instance{.execute_id = execute_id,
                  .root_execute_id = row->Field("RootExecuteID"),
                  .table_id = row->Field("TableID"),
                  .data_id = row->Field("DataID"),
                  .flow_id = row->Field("FlowID"),
                  .operator_name = row->Field("Operator"),
                  .ip_address = row->Field("IpAddress"),
                  .other_table_id = row->Field("OtherTableID"),
                  .other_data_id = row->Field("OtherDataID")};
}

void InsertTopInstance(db::Session& session, Instance& started) {
  session.Execute(
      "Insert Into WorkFlowExecuteID (TableID,DataID,FlowID,Operator, IpAddress, OtherTableID, OtherDataID) Values (",
      started.table_id, ",", started.data_id, ",", started.flow_id, ",", db::Quoted(started.operator_name), ",",
      db::Quoted(started.ip_address), ",", started.other_table_id, ",", started.other_data_id, ")");
  started.execute_id = session.NewExecuteId();
  started.root_execute_id = started.execute_id;
  session.Execute("update WorkFlowExecuteID set RootExecuteID=", started.execute_id,
                  " where ExecuteID=", started.execute_id);
}

Instance InsertChildInstance(db::Session& session, const InvocationContext& call, const Value& flow_id) {
  session.Execute(
      "Insert Into WorkFlowExecuteID (TableID,DataID, FlowID, Operator, RootExecuteID, IpAddress, OtherTableID, "
      "OtherDataID) Values (",
      call.TableID, ",", call.DataID, ",", flow_id, ",", db::Quoted(call.Operator), ",", call.RootExecuteID, ",",
      db::Quoted(call.IpAddress), ",", call.OtherTableID, ",", call.OtherDataID, ")");
  const Value child = session.NewExecuteId();
  session.Execute("Insert Into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID) Values (", call.ExecuteID,
                  ",", call.FlowNo, ",", child, ")");
  return {.execute_id = child,
          .root_execute_id = call.RootExecuteID,
          .table_id = call.TableID,
          .data_id = call.DataID,
          .flow_id = flow_id,
          .operator_name = call.Operator,
          .ip_address = call.IpAddress,
          .other_table_id = call.OtherTableID,
          .other_data_id = call.OtherDataID};
}

std::optional<ParentLink> FindParentLink(db::Session& session, const Value& child_execute_id) {
  const auto row = session.Open("select Top 1 * from WorkFlowChildRec where ChildExecuteID=", child_execute_id);
  if (!db::Session::HasRow(*row)) return std::nullopt;
  return ParentLink{row->Field("ParentExecuteID"), row->Field("ParentFlowNo"), row->Field("ExecuteParent")};
}

void DeleteParentLink(db::Session& session, const Value& child_execute_id) {
  session.Execute("delete from WorkFlowChildRec where ChildExecuteID=", child_execute_id);
}

bool ParentGoesOn(db::Session& session, const Value& child_execute_id) {
  const auto flag = session.FirstField(
      "ExecuteParent", "Select Top 1 ExecuteParent From WorkFlowChildRec where ChildExecuteID=", child_execute_id);
  return !flag || ToDouble(*flag) != 0;
}

bool ChildFlowFinish(db::Session& session, const Value& execute_id) {
  if (session.AnyRow("select Top 1 DataAppID from DataApp where ExecuteID=", execute_id,
                     " and (status=0 or status=1)")) {
    return false;
  }
  if (session.AnyRow("select Top 1 ID from InUnitSub where ExecuteID=", execute_id, " and (status=0 or status=1)")) {
    return false;
  }
  return !session.AnyRow("select Top 1 ID from WorkFlowChildRec where ParentExecuteID=", execute_id);
}

void EndFlow(db::Session& session, const Value& execute_id) {
  const auto instance = FindInstance(session, execute_id);
  if (!instance) return;
  const Value& root = instance->root_execute_id;
  const std::string tree =
      "(select Top 100000 ExecuteID From WorkFlowExecuteID where RootExecuteID=" + JoinedText(root) + ")";

  static constexpr std::array<std::string_view, 4> kWaits = {
      "select Top 1 ID from WorkFlowChildRec where ParentExecuteID in ",
      "select Top 1 DataAppID from DataApp where (Status=0 or Status=1) and ExecuteID in ",
      "select Top 1 ID from InUnitSub where (Status=0 or Status=1) and ExecuteID in ",
      "select Top 1 ID from WorkFlowExecute where ((Command='C_15' and Times>HaveExeTimes) or (Command='C_86' and "
      "HaveExeTimes=0)) and ExecuteID in "};
  for (const std::string_view wait : kWaits) {
    if (session.AnyRow(wait, tree)) return;
  }
  session.Execute("delete from WorkFlowExecuteTimes where ExecuteID in ", tree);
  session.Execute("delete from WorkFlowVariable where RootExecuteID=", root);
  session.Execute("delete from WorkFlowExecuteID where RootExecuteID=", root);
}

}  // namespace talm_flow::engine
