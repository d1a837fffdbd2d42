#pragma once

/// The flows that a flow starts, and what their steps name.

#include <string>

#include "db/session.h"

namespace talm_flow::design {

[[nodiscard]] std::string GetChildFlowIDStrByFlowID(db::Session& session, const Value& flow_id);
[[nodiscard]] std::string GetVarNameStrByFlowID(db::Session& session, const Value& flow_id);

}  // namespace talm_flow::design
