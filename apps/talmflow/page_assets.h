#pragma once

/// The style and the script of drawn pages, as they stand in page/.

#include <string_view>

namespace talm_flow::program {

extern const std::string_view kPageStyle;
extern const std::string_view kPageScript;

}  // namespace talm_flow::program
