#pragma once

/// A flow's whole definition as client script.

#include <string>

#include "db/session.h"

namespace talm_flow::design {

/// A script element that declares FlowArr = [base, inputs, steps]:
///   base    [name, creator, remark]
///   inputs  of [title, sort (a number), class content], by order number
///   steps   of [number, parent, serial, remark, [command, of [parameter name, parameter data]]], by step number
[[nodiscard]] std::string CreateFlowArr(db::Session& session, const Value& flow_id);

}  // namespace talm_flow::design
