#pragma once

/// Loading a flow from a definition text.

#include <cstdint>
#include <string_view>

#include "db/session.h"

namespace talm_flow::design {

/// As `InOut::CreatFlow`. One pass over the text; the only memory is the number of the last step.
[[nodiscard]] std::int16_t CreatFlow(db::Session& session, const Value& flow_id, std::string_view text);

}  // namespace talm_flow::design
