#pragma once

/// What a database's own catalogue tells of its tables, asked in the words of each dialect.

#include <cstdint>
#include <optional>
#include <vector>

#include "adapters/dialect.h"
#include "talm_flow/adapters/table_description.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::adapters {

/// The tables of an installation and its forms that the database has: the former in the order of `CompleteTables`, the
/// latter by number. Names that the schema knows are spelled as there, whatever the engine makes of them.
/// @throws DatabaseError  also when the dialect's catalogue is not known.
[[nodiscard]] std::vector<TableDescription> DescribeTables(Connection& connection, const Dialect& dialect);

/// The highest number that the key of the table was ever given by the database; 0 when it gave none. A key that an
/// insert brings along counts on engines whose counters follow it.
[[nodiscard]] std::int64_t LastKey(Connection& connection, const Dialect& dialect, const TableDescription& table);

/// Makes the database give numbers above `key` from now on, if it does not yet.
void ContinueKeys(Connection& connection, const Dialect& dialect, const TableDescription& table, std::int64_t key);

}  // namespace talm_flow::adapters
