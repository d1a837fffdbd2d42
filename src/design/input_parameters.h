#pragma once

/// The input parameters of a flow (`WorkFlowFunctionInput`); the operations of class `Construction` are told there.

#include <string>

#include "db/session.h"

namespace talm_flow::design {

/// The columns that a caller gives. The title is written back as it is stored, before anything is stored.
struct InputParameter {
  Value& input_title;
  const Value& order_no;
  const Value& sort;
  const Value& class_content;
};

void AddInputParameter(db::Session& session, const Value& flow_id, const InputParameter& parameter);
void UpdateInputParameter(db::Session& session, const Value& id, const InputParameter& parameter);
void DelInputParameter(db::Session& session, const Value& id);
[[nodiscard]] std::string GetParameterIDStr(db::Session& session, const Value& flow_id);

}  // namespace talm_flow::design
