#pragma once

/// The step tree drawn as nested HTML tables; the operations of class `Construction` are told there.

#include <string>

#include "db/session.h"

namespace talm_flow::design {

/// What a page wants of a drawing; holds references to the call's arguments.
struct DrawingStyle {
  const Value& display_form;  ///< 1: a click on a box fills the page's form
  const Value& form_name;
};

[[nodiscard]] std::string DisplayFlow(db::Session& session, const Value& flow_id, const DrawingStyle& style);
[[nodiscard]] std::string DisplayNextFlowStep(db::Session& session, const Value& flow_id, const Value& flow_no,
                                              const DrawingStyle& style);
[[nodiscard]] std::string DisplayPerFlowStep(db::Session& session, const Value& flow_id, const Value& flow_no,
                                             const DrawingStyle& style);

}  // namespace talm_flow::design
