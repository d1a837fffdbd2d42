#pragma once

/// The expression evaluator: every value parameter of every command passes through it.

#include <string>
#include <string_view>

#include "db/reference.h"
#include "db/session.h"
#include "expr/variables.h"

namespace talm_flow::expr {

/// The value of an expression text. Its errors are texts too; see `Command::GetVariableValue` for what is raised.
[[nodiscard]] std::string GetVariableValue(db::Session& session, const Scope& scope, std::string_view expression);

/// The latest approval-form record of the tree ("DataID_PerApp"); 0 and 0 when there is none.
[[nodiscard]] db::RecordReference LatestApprovalRecord(db::Session& session, const Value& root_execute_id);

}  // namespace talm_flow::expr
