#pragma once

/// The catalogue of flows (`WorkFlowName`); the operations of class `Name` are told there.

#include <cstdint>
#include <memory>
#include <string>

#include "db/session.h"

namespace talm_flow::design {

[[nodiscard]] bool FlowExists(db::Session& session, const Value& flow_id);
[[nodiscard]] std::int32_t MaxFlowID(db::Session& session);

[[nodiscard]] std::unique_ptr<RowSet> GetRs(db::Session& session);
[[nodiscard]] bool GetAll(db::Session& session, const Value& flow_id, Value& flow_name, Value& creater, Value& remark);
[[nodiscard]] std::string GetFlowName(db::Session& session, const Value& flow_id);
[[nodiscard]] std::string GetCreater(db::Session& session, const Value& flow_id);
[[nodiscard]] std::string GetRemark(db::Session& session, const Value& flow_id);

[[nodiscard]] std::int16_t Add(db::Session& session, const Value& flow_name, const Value& creater, const Value& remark);
[[nodiscard]] std::int16_t Update(db::Session& session, const Value& flow_id, const Value& flow_name,
                                  const Value& creater, const Value& remark);
[[nodiscard]] std::int16_t Del(db::Session& session, const Value& flow_id);

[[nodiscard]] std::int16_t FlowSave(db::Session& session, const Value& flow_id, const Value& flow_name,
                                    const Value& creater, const Value& definition);
[[nodiscard]] std::int16_t FlowAdd(db::Session& session, const Value& flow_name, const Value& creater,
                                   const Value& definition);

}  // namespace talm_flow::design
