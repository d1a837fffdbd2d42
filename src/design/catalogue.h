#pragma once

/// The catalogue of flows (`WorkFlowName`); the operations of class `Name` are told there.

#include <cstdint>
#include <memory>
#include <string>

#include "db/session.h"

namespace talm_flow::design {

[[nodiscard]] bool FlowExists(db::Session& session, const Value& flow_id);
[[nodiscard]] std::int32_t MaxFlowID(db::Session& session);

}  // namespace talm_flow::design
