#pragma once

/// The variable store: named texts in `WorkFlowVariable`, whose scope the name's prefix selects.

#include <cstdint>
#include <string>
#include <string_view>

#include "db/session.h"

namespace talm_flow::expr {

/// Which instance an expression or a variable belongs to, and the document of its call.
struct Scope {
  const Value& execute_id;
  const Value& root_execute_id;
  const Value& table_id;
  const Value& data_id;
};

/// 2 for "Private_...", 3 for "Global_...", else 1.
[[nodiscard]] std::int32_t GetVarTypeByName(std::string_view name);

void UpdateVariableValue(db::Session& session, const Value& execute_id, const Value& root_execute_id,
                         std::string_view name, std::string_view text);

/// The stored value; the empty text when the variable has no row. @throws ConversionError  it is Null.
[[nodiscard]] std::string ReadVariable(db::Session& session, const Scope& scope, std::string_view name);

}  // namespace talm_flow::expr
