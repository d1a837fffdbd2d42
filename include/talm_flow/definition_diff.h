#pragma once

/// @file
/// How two flow definitions differ: stored flows, definition texts, or one of each. Nothing is written.
///
/// Steps are the same when they have the same number, parameters when they have the same name in the same step, input
/// parameters when they have the same title, or failing that the same order number. Of several alike the first belongs
/// to the first, the second to the second. Texts count exactly, numbers by their value.
///
/// The functions keep nothing between calls, catch no error, and need time in proportion to the definitions' size (times
/// its logarithm), however deep or cyclic their trees of steps are.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"
#include "talm_flow/host/services.h"
#include "talm_flow/value.h"

namespace talm_flow {

/// A flow in a database. What it refers to outlives the comparison.
struct TALM_FLOW_API StoredFlow {
  std::reference_wrapper<Connection> connection;          ///< reads the flow
  std::reference_wrapper<const host::Services> services;  ///< the host's
  Value flow_id;                                          ///< which flow
};

/// A stored flow, or a definition text with CR LF line ends.
using DefinitionSource = std::variant<StoredFlow, std::string_view>;

/// What a change concerns.
enum class DefinitionPart {
  kRemark,        ///< the flow's remark
  kStep,          ///< a whole step, or where it hangs
  kStepRemark,    ///< its caption
  kStepCommand,   ///< its command
  kStepSerial,    ///< its serial number
  kParameter,     ///< a parameter of a step
  kChildOrder,    ///< the order in which children of a step run that both definitions have below it
  kInput,         ///< a whole input parameter
  kInputTitle,    ///< its title
  kInputOrder,    ///< its order number
  kInputSort,     ///< its kind
  kInputContent,  ///< its further content
};

/// What happened to a part.
enum class ChangeKind {
  kAdded,    ///< the second definition alone has it
  kRemoved,  ///< the first definition alone has it
  kMoved,    ///< a step that hangs below another parent
  kChanged,  ///< both have it, with different content
};

/// One difference.
struct TALM_FLOW_API DefinitionChange {
  ChangeKind kind = ChangeKind::kChanged;         ///< what happened
  DefinitionPart part = DefinitionPart::kRemark;  ///< to what
  /// The number of the step that is concerned; for `kChildOrder` the parent, 0 for the top. Empty for other parts.
  std::string step{};
  /// The parameter's name; the input parameter's title, before.
  std::string name{};
  /// The text in the first definition. A step's is its parent's number when it moved, its caption when it went.
  std::string before{};
  /// The text in the second definition. A step's is its parent's number when it moved, its caption when it came.
  std::string after{};
};

/// The flow's remark first, then the steps by number with their parameters, then the order of children, then the input
/// parameters. Steps that were added bring their command, serial number and parameters along as added parts, so that
/// the changes tell everything that the second definition has and the first has not; steps that were removed do not.
using DefinitionChanges = std::vector<DefinitionChange>;

/// What has to change in the first definition to give the second; nothing when they are alike.
/// @throws DatabaseError  a query fails.
[[nodiscard]] TALM_FLOW_API DefinitionChanges CompareDefinitions(const DefinitionSource& before,
                                                                 const DefinitionSource& after);

}  // namespace talm_flow
