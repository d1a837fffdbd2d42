#pragma once

/// Queries over a flow's step tree and its one edit; the operations of class `Construction` are told there.

#include <cstdint>
#include <string>

#include "db/session.h"

namespace talm_flow::design {

[[nodiscard]] std::int16_t MaxFlowNo(db::Session& session, const Value& flow_id);
[[nodiscard]] bool FlowNoExists(db::Session& session, const Value& flow_id, const Value& flow_no);
[[nodiscard]] std::int16_t GetParentNo(db::Session& session, const Value& flow_id, const Value& flow_no);
[[nodiscard]] std::int16_t GetStepQty(db::Session& session, const Value& flow_id, const Value& flow_no);
[[nodiscard]] std::int16_t GetMaxStepQty(db::Session& session, const Value& flow_id, const Value& flow_no);
[[nodiscard]] std::string GetChildFlowNo(db::Session& session, const Value& flow_id, const Value& flow_no);
[[nodiscard]] bool InChild(db::Session& session, const Value& flow_id, const Value& flow_no, const Value& sought);
[[nodiscard]] bool ChildExists(db::Session& session, const Value& flow_id, const Value& flow_no);
[[nodiscard]] std::int16_t DelCommand(db::Session& session, const Value& flow_id, const Value& flow_no);
[[nodiscard]] std::string GetCommand(db::Session& session, const Value& flow_id, const Value& flow_no);

}  // namespace talm_flow::design
