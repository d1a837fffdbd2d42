#include "engine/parameters.h"

namespace talm_flow::engine {

std::string GetParameterData(db::Session& session, const Value& flow_id, const Value& flow_no,
                             std::string_view parameter_name) {
  return session.FirstText("ParameterData", "Select Top 1 ParameterData From WorkFlowParameter Where ParameterName=",
                           db::Quoted(parameter_name), " And FlowID=", flow_id, " And FlowNo=", flow_no);
}

}  // namespace talm_flow::engine
