#include "engine/run_counter.h"

namespace talm_flow::engine {
namespace {

std::optional<Value> Times(db::Session& session, const Value& execute_id, const Value& flow_no) {
  return session.FirstField("Times", "Select Top 1 Times from WorkFlowExecuteTimes where ExecuteID=", execute_id,
                            " And FlowNo=", flow_no);
}

}  // namespace

bool IsExecuteOverTimes(db::Session& session, const Value& execute_id, const Value& flow_no) {
  const auto times = Times(session, execute_id, flow_no);
  return times && ToDouble(*times) >= kRunCap;
}

void AddExecuteTimes(db::Session& session, const Value& execute_id, const Value& flow_no) {
  if (Times(session, execute_id, flow_no)) {
    session.Execute("update WorkFlowExecuteTimes set Times=Times+1 where ExecuteID=", execute_id,
                    " And FlowNo=", flow_no);
  } else {
    session.Execute("insert into WorkFlowExecuteTimes (ExecuteID,FlowNo,Times) Values (", execute_id, ",", flow_no,
                    ",1)");
  }
}

}  // namespace talm_flow::engine
