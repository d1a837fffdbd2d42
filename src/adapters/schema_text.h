#pragma once

/// The tables of a complete installation, as statements of each dialect.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/dialect.h"

namespace talm_flow::adapters {

/// The statements that create what is missing of all tables and indexes, in order. Each is one line without ";".
[[nodiscard]] std::vector<std::string> SchemaStatements(const Dialect& dialect);

/// The statement that creates a form's table, which does not exist.
[[nodiscard]] std::string FormTableStatement(const Dialect& dialect, std::string_view table,
                                             const std::vector<std::pair<std::string, std::string>>& units);

/// @throws ArgumentError  a unit's code is no column name of a form's table, or appears twice (in any case).
void CheckInputUnits(const std::vector<std::pair<std::string, std::string>>& units);

/// The name of a table of an installation, or of a form, as the schema spells it; any other name as it is.
[[nodiscard]] std::string TableNameAsInSchema(std::string_view name);

}  // namespace talm_flow::adapters
