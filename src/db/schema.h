#pragma once

/// Every table that a complete installation has, as data: the flows' own and those of the host application, with the
/// columns that the component and the reference host use. An engine's adapter writes its own definitions from this.
///
/// The spellings are frozen: they stand in databases that exist.

#include <cstdint>
#include <span>
#include <string_view>

namespace talm_flow::db {

enum class ColumnKind { kInteger, kReal, kText, kBinary };

/// What a column holds when an insert does not name it.
enum class ColumnDefault { kNull, kZero, kOne };

struct Column {
  std::string_view name;
  ColumnKind kind;
  ColumnDefault initial = ColumnDefault::kNull;
};

/// Columns that queries ask for together, most selective order first.
struct Index {
  std::string_view columns;  ///< names, separated by ","
};

struct Table {
  std::string_view name;
  /// The column whose whole numbers the database gives out, ascending and never twice.
  std::string_view key;
  std::span<const Column> columns;  ///< without the key
  std::span<const Index> indexes;
};

[[nodiscard]] std::span<const Table> Tables();

/// A form's table is named by this and the form's number.
inline constexpr std::string_view kFormTablePrefix = "TableData";

/// What every form's table has before its input units: who wrote the record, and when.
inline constexpr std::string_view kFormTableKey = "ID";
[[nodiscard]] std::span<const Column> FormTableColumns();

/// How the values of an input unit of this type are stored.
[[nodiscard]] ColumnKind InputUnitKind(std::string_view unit_type);

}  // namespace talm_flow::db
