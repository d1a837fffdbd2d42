#pragma once

/// What is wrong with a database: its tables, and rows that do not fit together.

#include <string>
#include <vector>

#include "json.h"
#include "workspace.h"

namespace talm_flow::program {

struct Ailment {
  bool is_error = true;
  std::string kind;  ///< "schema", "key", "orphan", "stuck" or "definition"
  std::string table;
  std::string problem;
  std::string advice;
};

using Ailments = std::vector<Ailment>;

/// Tables, columns, defaults and indexes that are missing or other than they should be, and keys that would be given
/// twice.
[[nodiscard]] Ailments ExamineTables(adapters::Database& database);

/// Rows whose owner is gone, instances that wait for nothing, and definitions that the checker refuses. All tables are
/// there.
[[nodiscard]] Ailments ExamineRows(Workspace& workspace);

}  // namespace talm_flow::program
