#pragma once

/// Digests as content security policies name them.

#include <string>
#include <string_view>

namespace talm_flow::program {

/// The source expression that admits exactly this text: "'sha256-...'".
[[nodiscard]] std::string HashSource(std::string_view text);

}  // namespace talm_flow::program
