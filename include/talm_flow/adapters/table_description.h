#pragma once

/// Tables as a database has them, in words that all engines share.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/export.h"

namespace talm_flow::adapters {

/// What a column holds.
enum class ColumnKind {
  kInteger,  ///< whole numbers
  kReal,     ///< floating-point numbers
  kText,     ///< texts of any length
  kBinary,   ///< bytes
  kOther,    ///< none of what an installation uses
};

/// "integer", "floating-point number", "text", "binary", "other".
[[nodiscard]] TALM_FLOW_API std::string_view Told(ColumnKind kind);

/// One column of a table.
struct TALM_FLOW_API ColumnDescription {
  std::string name;                      ///< as the engine spells it
  ColumnKind kind = ColumnKind::kOther;  ///< in the words above
  /// What a new row holds when an insert does not name the column; empty for Null.
  std::string initial;
};

/// One index of a table.
struct TALM_FLOW_API IndexDescription {
  std::string name;                  ///< as the engine spells it
  std::vector<std::string> columns;  ///< in the index's order
};

/// One table with all that belongs to it.
struct TALM_FLOW_API TableDescription {
  std::string name;                        ///< as the engine spells it
  std::string key;                         ///< the column whose numbers the database gives; empty when there is none
  std::vector<ColumnDescription> columns;  ///< without the key
  std::vector<IndexDescription> indexes;   ///< without that of the key

  /// The number of the form whose records the table holds.
  [[nodiscard]] std::optional<std::int64_t> FormNumber() const;
  /// In any case (ASCII); null when there is none.
  [[nodiscard]] const ColumnDescription* FindColumn(std::string_view column) const;
};

/// The tables of a complete installation, as `Database::CreateTables` makes them.
[[nodiscard]] TALM_FLOW_API std::vector<TableDescription> CompleteTables();

}  // namespace talm_flow::adapters
