/// The commands that steer the walk: the condition, timers, the jump, child flows.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "commands/handlers.h"
#include "commands/inputs.h"
#include "design/catalogue.h"
#include "design/structure.h"
#include "engine/instance.h"
#include "engine/parameters.h"
#include "expr/condition.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::commands {
namespace {

/// The step that parameter k names, when it is a number and a step of the flow.
std::optional<std::int32_t> TargetStep(const Step& step, int k) {
  const std::string text = step.Stored(k);
  if (!IsNumeric(text)) return std::nullopt;
  const std::int32_t target = ToInt32(Value(text));
  if (!design::FlowNoExists(step.session(), step.call().FlowID, target)) return std::nullopt;
  return target;
}

/// The piece of a "|^|"-separated list at a 1-based position; empty when the list has no such piece. The pieces are
/// counted in 16 bits, so that a search that goes on past the last number overflows.
std::string_view PieceAt(std::string_view list, double position) {
  constexpr std::size_t kLastCount = std::numeric_limits<std::int16_t>::max();
  const auto pieces = Split(list, "|^|");
  const double whole = std::trunc(position);
  if (whole >= 1 && whole <= static_cast<double>(std::min(pieces.size(), kLastCount))) {
    return pieces[static_cast<std::size_t>(whole) - 1];
  }
  if (pieces.size() > kLastCount) throw OverflowError("a list has more variable names than 16 bits can count");
  return {};
}

}  // namespace

Outcome C_11(Step& step) {
  const std::string left = step.Evaluated(1);
  const std::string comparison = step.Stored(2);
  const std::string right = step.Evaluated(3);
  return Outcome::Result(expr::Compare(left, comparison, right));
}

Outcome C_15(Step& step) {
  const std::int32_t runs = Count(step, 1);
  const std::int32_t interval = Count(step, 2);
  const auto target = TargetStep(step, 3);
  if (!target) return Outcome::Done();
  const Value& execute_id = step.call().ExecuteID;
  if (!step.session().AnyRow("select Top 1 ID from WorkFlowExecute where ExecuteID=", execute_id,
                             " and FlowNo=", *target, " and Command='C_15'")) {
    step.session().Execute("insert into WorkFlowExecute (ExecuteID,FlowNo,Command,Times,Interval) Values (", execute_id,
                           ",", *target, ",'C_15',", runs, ",", interval, ")");
  }
  return Outcome::Done();
}

Outcome C_16(Step& step) {
  const auto target = TargetStep(step, 1);
  if (!target || *target == ToInt32(step.call().FlowNo)) return Outcome::Done();
  return Outcome::RunStep(*target);
}

Outcome C_17(Step& step) {
  if (const auto target = TargetStep(step, 1)) {
    step.session().Execute("delete from WorkFlowExecute where ExecuteID=", step.call().ExecuteID,
                           " and FlowNo=", *target);
  }
  return Outcome::Done();
}

Outcome C_18(Step& step) {
  const std::string text = step.Stored(1);
  if (!IsNumeric(text)) return Outcome::Result(false);
  const Value flow_id = ToInt32(Value(text));
  if (!design::FlowExists(step.session(), flow_id)) return Outcome::Result(false);
  return Outcome::StartChild(flow_id);
}

Outcome C_70(Step& step) {
  db::Session& session = step.session();
  const auto link = engine::FindParentLink(session, step.call().ExecuteID);
  if (!link) return Outcome::Done();
  const auto parent_flow = session.FirstField(
      "FlowID", "select Top 1 FlowID from WorkFlowExecuteID where ExecuteID=", link->parent_execute_id);
  if (!parent_flow) return Outcome::Done();
  const std::string names = engine::GetParameterData(session, *parent_flow, link->parent_flow_no, "C_18_3");
  const std::string position = step.Stored(1);
  const std::string value = step.Stored(2);
  if (!names.empty() && IsNumeric(position)) {
    step.StoreVariable(PieceAt(names, ToDouble(Value(position))), value);
  }
  return Outcome::Done();
}

Outcome C_73(Step& step) {
  step.session().Execute("update WorkFlowChildRec set ExecuteParent=0 where ChildExecuteID=", step.call().ExecuteID);
  return Outcome::Done();
}

Outcome C_74(Step& step) {
  step.session().Execute("update WorkFlowChildRec set ExecuteParent=1 where ChildExecuteID=", step.call().ExecuteID);
  return Outcome::Done();
}

Outcome C_86(Step& step) {
  const std::string moment = step.Evaluated(1);
  const auto target = TargetStep(step, 2);
  if (target && IsDate(moment)) {
    step.session().Execute("insert into WorkFlowExecute (ExecuteID,FlowNo,Command,InputTime) Values (",
                           step.call().ExecuteID, ",", *target, ",'C_86','", moment, "')");
  }
  return Outcome::Done();
}

}  // namespace talm_flow::commands
