#include "design/input_parameters.h"

#include <utility>

#include "design/text_of.h"
#include "talm_flow/text.h"

namespace talm_flow::design {

namespace {

using db::Quoted;

void CompleteTitle(Value& title) {
  std::string kept(TrimBlanks(TextOf(title).view()));
  if (kept.empty()) kept = "新参数";
  title = std::move(kept);
}

}  // namespace

void AddInputParameter(db::Session& session, const Value& flow_id, const InputParameter& parameter) {
  CompleteTitle(parameter.input_title);
  session.Execute("insert into WorkFlowFunctionInput (FlowID, InputTitle, OrderNo, sort, ClassContent) values (",
                  flow_id, ",", Quoted(parameter.input_title), ",", parameter.order_no, ",", parameter.sort, ",",
                  Quoted(parameter.class_content), ")");
}

void UpdateInputParameter(db::Session& session, const Value& id, const InputParameter& parameter) {
  CompleteTitle(parameter.input_title);
  session.Execute("update WorkFlowFunctionInput set InputTitle=", Quoted(parameter.input_title),
                  ",OrderNo=", parameter.order_no, ",sort=", parameter.sort,
                  ",ClassContent=", Quoted(parameter.class_content), " where id=", id);
}

void DelInputParameter(db::Session& session, const Value& id) {
  session.Execute("delete from WorkFlowFunctionInput where id=", id);
}

std::string GetParameterIDStr(db::Session& session, const Value& flow_id) {
  const auto rows = session.Open("select Top 10000 ID from WorkFlowFunctionInput where FlowID=", flow_id,
                                 " Order By OrderNo,InputTitle");
  std::string list;
  for (; db::Session::HasRow(*rows); rows->MoveNext()) {
    if (!list.empty()) list += ',';
    AppendJoined(list, rows->Field("ID"));
  }
  return list;
}

}  // namespace talm_flow::design
