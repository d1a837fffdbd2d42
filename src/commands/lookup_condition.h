#pragma once

/// Conditions by which records of a form are looked up.
///
///   condition   = [ disjunction ]                                  (empty: every record)
///   disjunction = operand { ( "and" | "or" ) operand }
///   operand     = "(" disjunction ")" | field comparison value
///   field       = "name" | "inputtime" | "id" | an input unit of the form     (in any case)
///   comparison  = ">=" | "<=" | "<>" | "=" | ">" | "<"
///   value       = an expression of one token
///
/// The text is cut into tokens before anything else, without regard to quotes: a value cannot hold a parenthesis, a
/// comparison or the words "and" and "or" between blanks; a variable can.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/step.h"

namespace talm_flow::commands {

struct LookupField {
  enum class Kind { kId, kInputTime, kOther };
  std::string column;
  Kind kind = Kind::kOther;
};

/// The field of a form's records that a name means.
[[nodiscard]] std::optional<LookupField> FindField(const engine::Step& step, std::int32_t table_id,
                                                   std::string_view name);

/// " Where " and the condition with its values put in; the empty text for the empty condition; nothing when the
/// condition does not parse, names an unknown field, or a value does not fit its field. Values are evaluated in order,
/// once everything else is known to fit.
[[nodiscard]] std::optional<std::string> WhereClause(const engine::Step& step, std::int32_t table_id,
                                                     std::string_view condition);

}  // namespace talm_flow::commands
