#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::host {

/// One input unit of a form.
struct TALM_FLOW_API InputUnit {
  std::string code;   ///< the unit's code as the form stores it
  std::string field;  ///< the column of the form's table that holds its value
  std::string type;   ///< its type name, such as "InputText"
};

/// What the host knows of the input units of its forms.
class TALM_FLOW_API FormService {
 public:
  virtual ~FormService() = default;

  /// The unit with this code (any case), or nothing when the form has none such.
  [[nodiscard]] virtual std::optional<InputUnit> FindUnit(Connection& connection, std::int32_t table_id,
                                                          std::string_view code) = 0;

  /// The unit's value in a record: the column's text (empty for Null), for files "fileid:" + n joined by ",", for
  /// pictures "tablepicdataid:" + n of the newest one. The empty text when the record or the value is missing.
  [[nodiscard]] virtual std::string UnitValue(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                              const InputUnit& unit) = 0;
};

}  // namespace talm_flow::host
