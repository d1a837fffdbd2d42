#pragma once

#include <cstdint>
#include <limits>
#include <optional>

#include "talm_flow/conversion.h"

namespace talm_flow::host {

/// The whole number of 32 bits, at least 1, that a loosely typed key stands for, or nothing when it is no such key.
[[nodiscard]] inline std::optional<std::int32_t> LooseKey(const Value& value) {
  if (!IsNumeric(value)) return std::nullopt;
  const double whole = RoundHalfEven(ToDouble(value));
  if (!(whole >= 1 && whole <= std::numeric_limits<std::int32_t>::max())) return std::nullopt;
  return static_cast<std::int32_t>(whole);
}

}  // namespace talm_flow::host
