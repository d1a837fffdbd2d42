#pragma once

/// Queries over a flow's step tree and its one edit; the operations of class `Construction` are told there.

#include <cstdint>
#include <string>

#include "db/session.h"

namespace talm_flow::design {

[[nodiscard]] bool FlowNoExists(db::Session& session, const Value& flow_id, const Value& flow_no);
[[nodiscard]] std::string GetCommand(db::Session& session, const Value& flow_id, const Value& flow_no);

}  // namespace talm_flow::design
