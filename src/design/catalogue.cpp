#include "design/catalogue.h"

#include "design/definition_reader.h"
#include "design/text_of.h"
#include "talm_flow/text.h"

namespace talm_flow::design {

using db::Quoted;

namespace {

bool IsBlankName(const Value& flow_name) {
  return flow_name.IsText() ? TrimBlanks(flow_name.Text()).empty() : flow_name.IsNull();
}

}  // namespace

bool FlowExists(db::Session& session, const Value& flow_id) {
  return session.AnyRow("Select Top 1 FlowID from WorkFlowName Where FlowID=", flow_id);
}

std::int32_t MaxFlowID(db::Session& session) {
  const auto found = session.FirstField("FlowID", "Select Top 1 FlowID from WorkFlowName order by FlowID desc");
  return found ? ToInt32(*found) : 0;
}

std::unique_ptr<RowSet> GetRs(db::Session& session) {
  return session.Open("Select Top 10000 * from WorkFlowName Order By FlowName");
}

bool GetAll(db::Session& session, const Value& flow_id, Value& flow_name, Value& creater, Value& remark) {
  flow_name = creater = remark = Value("");
  const auto rows = session.Open("Select Top 1 * from WorkFlowName Where FlowID=", flow_id);
  if (!db::Session::HasRow(*rows)) return false;
  flow_name = rows->Field("FlowName");
  creater = rows->Field("Creater");
  remark = rows->Field("Remark");
  return true;
}

std::string GetFlowName(db::Session& session, const Value& flow_id) {
  return session.FirstText("FlowName", "Select Top 1 FlowName from WorkFlowName Where FlowID=", flow_id);
}

std::string GetCreater(db::Session& session, const Value& flow_id) {
  return session.FirstText("Creater", "Select Top 1 Creater from WorkFlowName Where FlowID=", flow_id);
}

std::string GetRemark(db::Session& session, const Value& flow_id) {
  return session.FirstText("Remark", "Select Top 1 Remark from WorkFlowName Where FlowID=", flow_id);
}

std::int16_t Add(db::Session& session, const Value& flow_name, const Value& creater, const Value& remark) {
  if (IsBlankName(flow_name)) return 1;
  session.Execute("Insert Into WorkFlowName (FlowName, Creater, Remark) Values( ", Quoted(flow_name), ",",
                  Quoted(creater), ",", Quoted(remark), ")");
  return 0;
}

std::int16_t Update(db::Session& session, const Value& flow_id, const Value& flow_name, const Value& creater,
                    const Value& remark) {
  if (IsBlankName(flow_name)) return 2;
  if (!FlowExists(session, flow_id)) return 1;
  session.Execute("Update WorkFlowName Set FlowName=", Quoted(flow_name), ",Creater=", Quoted(creater),
                  ",Remark=", Quoted(remark), " Where FlowID=", flow_id);
  return 0;
}

std::int16_t Del(db::Session& session, const Value& flow_id) {
  if (!FlowExists(session, flow_id)) return 1;
  session.Execute("Delete From WorkFlowName Where FlowID=", flow_id);
  session.Execute(
      "Delete From WorkFlowVariable Where RootExecuteID in (select ExecuteID from WorkFlowExecuteID where FlowID=",
      flow_id, ")");
  session.Execute("Delete From WorkFlowConstruction Where FlowID=", flow_id);
  session.Execute("Delete From WorkFlowParameter Where FlowID=", flow_id);
  return 0;
}

std::int16_t FlowSave(db::Session& session, const Value& flow_id, const Value& flow_name, const Value& creater,
                      const Value& definition) {
  if (!FlowExists(session, flow_id)) return 1;
  if (IsBlankName(flow_name)) return 2;
  session.Execute("update WorkFlowName set FlowName=", Quoted(flow_name), ",Creater=", Quoted(creater),
                  " where flowid=", flow_id);
  return CreatFlow(session, flow_id, TextOf(definition).view()) == 0 ? 0 : 3;
}

std::int16_t FlowAdd(db::Session& session, const Value& flow_name, const Value& creater, const Value& definition) {
  if (IsBlankName(flow_name)) return 1;
  session.Execute("Insert Into WorkFlowName (FlowName, Creater) Values( ", Quoted(flow_name), ",", Quoted(creater),
                  ")");
  const Value flow_id = MaxFlowID(session);
  return CreatFlow(session, flow_id, TextOf(definition).view()) == 0 ? 0 : 2;
}

}  // namespace talm_flow::design
