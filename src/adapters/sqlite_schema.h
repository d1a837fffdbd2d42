#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace talm_flow::adapters {

/// A name in double quotes, safe with any content.
[[nodiscard]] std::string QuotedName(std::string_view name);

/// The statements that create what is missing of all tables and indexes, in order.
[[nodiscard]] std::vector<std::string> SqliteSchema();

/// The statement that creates a form's table.
[[nodiscard]] std::string SqliteFormTable(std::string_view table,
                                          const std::vector<std::pair<std::string, std::string>>& units);

/// @throws ArgumentError  a unit's code is no column name of a form's table, or appears twice (in any case).
void CheckInputUnits(const std::vector<std::pair<std::string, std::string>>& units);

}  // namespace talm_flow::adapters
