#include "design/child_flows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <unordered_set>
#include <vector>

namespace talm_flow::design {

namespace {

/// The flow that a parameter's data names; nothing for other data. Variables and expressions are known to a run only.
std::optional<std::int32_t> FlowNumber(const Value& data) {
  if (!IsNumeric(data)) return std::nullopt;
  const double number = RoundHalfEven(ToDouble(data));
  if (number < std::numeric_limits<std::int32_t>::min() || number > std::numeric_limits<std::int32_t>::max()) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(number);
}

/// Puts the flows that a flow's steps start on top of the pending ones, the first row's uppermost.
void PushChildFlows(db::Session& session, const Value& flow_id, std::vector<std::int32_t>& pending) {
  const auto rows = session.Open("Select Top 100000 ParameterData from WorkFlowParameter where FlowID=", flow_id,
                                 " and ParameterName='C_18_1'");
  const std::size_t first = pending.size();
  for (; db::Session::HasRow(*rows); rows->MoveNext()) {
    if (const auto child = FlowNumber(rows->Field("ParameterData"))) pending.push_back(*child);
  }
  std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(first), pending.end());
}

}  // namespace

std::string GetChildFlowIDStrByFlowID(db::Session& session, const Value& flow_id) {
  std::string list;
  std::unordered_set<std::int32_t> seen;
  if (const auto asked = FlowNumber(flow_id)) seen.insert(*asked);
  std::vector<std::int32_t> pending;
  PushChildFlows(session, flow_id, pending);
  while (!pending.empty()) {
    const std::int32_t flow = pending.back();
    pending.pop_back();
    if (!seen.insert(flow).second) continue;
    if (!list.empty()) list += ',';
    list += std::to_string(flow);
    PushChildFlows(session, flow, pending);
  }
  return list;
}

std::string GetVarNameStrByFlowID(db::Session& session, const Value& flow_id) {
  const std::string flows = GetChildFlowIDStrByFlowID(session, flow_id);
  std::string names;
  if (flows.empty()) return names;
  const auto rows = session.Open(
      "select Top 10000 ParameterData from WorkFlowParameter where FlowID in (", flows,
      ") and (ParameterName<>'C_11_2' and ParameterName<>'C_15_3' and ParameterName<>'C_16_1' and "
      "ParameterName<>'C_17_1' and ParameterName<>'C_18_1' and ParameterName<>'C_18_2' and ParameterName<>'C_18_3' and "
      "ParameterName<>'C_19_2' and ParameterName<>'C_22_2' and ParameterName<>'C_23_2' and ParameterName<>'C_24_2' and "
      "ParameterName<>'C_25_2' and ParameterName<>'C_26_2' and ParameterName<>'C_27_2' and ParameterName<>'C_28_2' and "
      "ParameterName<>'C_29_2' and ParameterName<>'C_30_2' and ParameterName<>'C_70_1' and ParameterName<>'C_75_2' and "
      "ParameterName<>'C_77_2' and ParameterName<>'C_79_2' and ParameterName<>'C_86_2')");
  for (bool first = true; db::Session::HasRow(*rows); rows->MoveNext(), first = false) {
    if (!first) names += ',';
    AppendJoined(names, rows->Field("ParameterData"));
  }
  return names;
}

}  // namespace talm_flow::design
