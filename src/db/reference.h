#pragma once

/// Reference strings: short texts that name a host object.
///
///   record   "TableID:" n ",DataID:" m   (either order)
///   form     "TableID:" n  |  n
///   unit     "inunitid:" code  |  code
///   file     "fileid:" n
///   picture  "tablepicdataid:" n
///
/// Keys in any case, values as they stand. A text that is none gives nothing.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "talm_flow/host/common_functions.h"

namespace talm_flow::db {

struct RecordReference {
  std::int32_t table_id = 0;  ///< 1 to 32767
  std::int32_t data_id = 0;   ///< at least 1

  /// "TableID:" n ",DataID:" m
  [[nodiscard]] std::string Text() const;
};

/// @throws OverflowError  the table number is outside 16 bits.
[[nodiscard]] std::optional<RecordReference> SeparateTableIDAndDataID(std::string_view text);
[[nodiscard]] std::optional<std::int32_t> SeparateTableID(std::string_view text);
/// The code in upper case.
[[nodiscard]] std::optional<std::string> SeparateInUnitID(std::string_view text, const host::CommonFunctions& common);
[[nodiscard]] std::optional<std::int32_t> SeparateFileID(std::string_view text);
[[nodiscard]] std::optional<std::int32_t> SeparateTablePicDataID(std::string_view text);

}  // namespace talm_flow::db
