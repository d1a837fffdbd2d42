#pragma once

/// Tasks of people: finding the task step above a step, closing a task, asking about one. Told in `Command`.

#include <cstdint>
#include <string>

#include "db/session.h"

namespace talm_flow::engine {

[[nodiscard]] std::int32_t GetFlowNoApprov(db::Session& session, const Value& flow_id, const Value& flow_no);
[[nodiscard]] std::int32_t GetFlowNoInUnitSub(db::Session& session, const Value& flow_id, const Value& flow_no);

void ChangeAppStatusToFinish(db::Session& session, const Value& data_app_id, const Value& app_data_id);
void ChangeInUnitSubStatusToFinish(db::Session& session, const Value& in_unit_sub_id);

[[nodiscard]] bool NotAppExists(db::Session& session, const Value& data_app_id);

[[nodiscard]] std::string GetNoticInfFromDataApp(db::Session& session, const Value& data_app_id);
[[nodiscard]] std::string GetNoticInfFromInUnitSub(db::Session& session, const Value& in_unit_sub_id);
[[nodiscard]] std::string GetNoticInfFromDataAtt(db::Session& session, const Value& data_att_id);

}  // namespace talm_flow::engine
