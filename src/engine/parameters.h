#pragma once

/// Reading the parameters of a step.

#include <string>
#include <string_view>

#include "db/session.h"

namespace talm_flow::engine {

/// A step's parameter as stored; the empty text when it has none. @throws ConversionError  it is Null.
[[nodiscard]] std::string GetParameterData(db::Session& session, const Value& flow_id, const Value& flow_no,
                                           std::string_view parameter_name);

}  // namespace talm_flow::engine
