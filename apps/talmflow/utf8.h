#pragma once

#include <cstddef>
#include <string_view>

namespace talm_flow::program {

/// How long the well-formed UTF-8 sequence at the beginning is; 0 when there is none.
[[nodiscard]] std::size_t SequenceLength(std::string_view text);

}  // namespace talm_flow::program
