#pragma once

#include "host/encoding.h"

namespace talm_flow::host {

/// The text in GB18030, with the means of the platform. @param text  well-formed UTF-8.
[[nodiscard]] EncodingResult EncodeGb18030(std::string_view text);

}  // namespace talm_flow::host
