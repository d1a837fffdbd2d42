#pragma once

/// Writing a flow out as a definition text, and a text into a file.

#include <string>
#include <string_view>

#include "db/session.h"
#include "talm_flow/host/file_system.h"

namespace talm_flow::design {

[[nodiscard]] std::string MakeConstructionBak(db::Session& session, const Value& flow_id);

void CreateTxt(host::FileSystem& files, std::string_view file_name, std::string_view text);

}  // namespace talm_flow::design
