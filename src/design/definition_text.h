#pragma once

/// Flow definitions as texts: the format, and taking a text apart. Everything here is pure; views point into the text
/// that was given.
///
///   text        comment* version structure            every line ends with CR LF
///   version     "Ver:Flow_V600"                       never the first line
///   structure   "FlowBegin" remark step* input* "FlowEnd"
///   remark      "FlowRemark:" value
///   step        "StepBegin" "FlowNo:" value "ParentNo:" value "Serial:" value "Remark:" value "Command:" value
///               "ParameterBegin" (name ":" value)* "ParameterEnd" ["StepEnd"]
///   input       "FunctionParameterBegin" "InputTitle:" value "OrderNo:" value "Sort:" value "ClassContent:" value
///               "FunctionParameterEnd"
///   comment     a line that begins with "//", anywhere between the others
///
/// A value goes on over the following lines up to the next line that begins with a separator key: "//", "Ver:", one of
/// the words above or a parameter name "C_" n "_" k ":" with n from 1 to 98 and k from 1 to 8. Nothing is escaped, so a
/// value with such a line inside cannot be carried.

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace talm_flow::design {

inline constexpr std::string_view kLineEnd = "\r\n";
inline constexpr std::string_view kFlowRemarkKey = "FlowRemark:";

/// A text in two; `back` without the line end between them.
struct Parted {
  std::string_view front;
  std::string_view back;
};

/// The first line, and the rest.
[[nodiscard]] Parted SeparateLine(std::string_view text);

/// The first line with the lines that continue it, and the rest, which is empty or begins with a separator key.
[[nodiscard]] Parted SeparateValue(std::string_view text);

/// Whether a line begins with a separator key.
[[nodiscard]] bool IsSeparateLine(std::string_view line);

[[nodiscard]] bool IsFlowRemark(std::string_view value);

/// Attribute values as they stand after their keys; nothing for an attribute that was not given.
template <std::size_t count>
struct Attributes {
  std::array<std::optional<std::string_view>, count> values;
  /// The text behind the last attribute; nothing when no attribute was found.
  std::optional<std::string_view> back;
};

/// In the order of `Attributes::values`.
enum StepAttribute : std::size_t { kFlowNo, kParentNo, kSerial, kRemark, kCommand };
enum InputAttribute : std::size_t { kInputTitle, kOrderNo, kSort, kClassContent };

/// Reads attributes in any order, up to the first value that is none.
[[nodiscard]] Attributes<5> GetStepValue(std::string_view text);
[[nodiscard]] Attributes<4> GetFunctionValue(std::string_view text);

}  // namespace talm_flow::design
