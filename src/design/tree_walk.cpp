#include "design/tree_walk.h"

#include "talm_flow/conversion.h"
#include "talm_flow/error.h"

namespace talm_flow::design {

void StepPath::Enter(const Value& flow_no) {
  const auto number = Number(flow_no);
  if (!number || numbers_.insert(*number).second) return;
  throw NestingError("flow " + JoinedText(flow_id_) + " is no tree: step " + JoinedText(flow_no) +
                     " lies below itself");
}

void StepPath::Leave(const Value& flow_no) {
  if (const auto number = Number(flow_no)) numbers_.erase(*number);
}

std::optional<std::int64_t> StepPath::Number(const Value& flow_no) {
  if (flow_no.IsWhole()) return flow_no.Whole();
  if (!IsNumeric(flow_no)) return std::nullopt;
  const double number = ToDouble(flow_no);
  constexpr double kLargest = 9007199254740992.0;
  if (number < -kLargest || number > kLargest || number != RoundHalfEven(number)) return std::nullopt;
  return static_cast<std::int64_t>(number);
}

}  // namespace talm_flow::design
