#pragma once

/// @file
/// Checking flow definitions before they run: what can never work, and what most likely is not meant.
///
/// A definition is judged by what running it would do, and nothing is written. An error is certain: the text cannot be
/// loaded, or a part of it can never do what it is for. A warning is a trap: it runs, but hardly as meant. A definition
/// that is used as it should be gives no findings. docs/checks.md tells every code with an example.
///
/// The functions keep nothing between calls, catch no error and need time in proportion to the definition's size,
/// however deep or cyclic its tree of steps is.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"
#include "talm_flow/host/services.h"
#include "talm_flow/value.h"

namespace talm_flow {

/// One thing that is wrong in a definition.
struct TALM_FLOW_API Finding {
  std::string_view code;             ///< "E205": E for errors, W for warnings
  std::optional<std::int64_t> flow;  ///< not set for a text
  std::optional<std::int64_t> step;  ///< not set where no step is concerned
  std::string parameter;             ///< "C_16_1"; empty where no parameter is concerned
  std::size_t line = 0;              ///< of the text, from 1; 0 where there is no text
  std::string problem;               ///< what is wrong, one sentence
  std::string advice;                ///< what to write instead, one sentence

  /// Whether the definition can never work here; otherwise it is a warning.
  [[nodiscard]] bool IsError() const { return code.front() == 'E'; }
};

/// Steps in their stored order, findings about the whole definition first.
using Findings = std::vector<Finding>;

/// Checks a stored flow, and how it and its child flows start each other.
/// @throws DatabaseError  a query fails.
[[nodiscard]] TALM_FLOW_API Findings CheckFlow(Connection& connection, const host::Services& services,
                                               const Value& flow_id);

/// Checks a definition text by itself; child flows are not looked for.
[[nodiscard]] TALM_FLOW_API Findings CheckDefinition(std::string_view text);

/// Checks a definition text that is to be loaded into a database, together with the child flows that it names there.
/// @param flow_id  the flow that it replaces; Null for a new one.
/// @throws DatabaseError  a query fails.
[[nodiscard]] TALM_FLOW_API Findings CheckDefinition(Connection& connection, const host::Services& services,
                                                     std::string_view text, const Value& flow_id);

/// One kind of finding.
struct TALM_FLOW_API CheckCode {
  std::string_view code;   ///< "E205"
  std::string_view title;  ///< what is wrong, in a few words
};

/// All kinds, ascending by number.
[[nodiscard]] TALM_FLOW_API std::span<const CheckCode> CheckCodes();

}  // namespace talm_flow
