#pragma once

/// How often a step of an instance has run, and the cap that ends endless loops.

#include "db/session.h"

namespace talm_flow::engine {

/// A capped step that has run this often in one instance is skipped.
inline constexpr int kRunCap = 200;

[[nodiscard]] bool IsExecuteOverTimes(db::Session& session, const Value& execute_id, const Value& flow_no);

void AddExecuteTimes(db::Session& session, const Value& execute_id, const Value& flow_no);

}  // namespace talm_flow::engine
