#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "talm_flow/component.h"

namespace talm_flow::component {

struct ErrorCode {
  const char* kind;  ///< as `FlowError::Kind` gives it
  TalmResult code;
};

inline constexpr std::array kErrorCodes = {
    ErrorCode{.kind = "FlowError", .code = TALM_FLOW_ERROR},
    ErrorCode{.kind = "DatabaseError", .code = TALM_DATABASE_ERROR},
    ErrorCode{.kind = "ConversionError", .code = TALM_CONVERSION_ERROR},
    ErrorCode{.kind = "OverflowError", .code = TALM_OVERFLOW_ERROR},
    ErrorCode{.kind = "SubscriptError", .code = TALM_SUBSCRIPT_ERROR},
    ErrorCode{.kind = "NestingError", .code = TALM_NESTING_ERROR},
    ErrorCode{.kind = "FileError", .code = TALM_FILE_ERROR},
    ErrorCode{.kind = "ArgumentError", .code = TALM_ARGUMENT_ERROR},
};

/// The code of a kind of error; that of errors in general for a kind that has none of its own.
[[nodiscard]] constexpr TalmResult CodeOf(std::string_view kind) {
  const auto* const found = std::ranges::find(kErrorCodes, kind, [](const ErrorCode& entry) { return entry.kind; });
  return found == kErrorCodes.end() ? TALM_FLOW_ERROR : found->code;
}

}  // namespace talm_flow::component
