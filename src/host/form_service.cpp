#include "host/form_service.h"

#include "host/statement.h"
#include "talm_flow/text.h"

namespace talm_flow::host {

std::optional<InputUnit> ReferenceFormService::FindUnit(Connection& connection, std::int32_t table_id,
                                                        std::string_view code) {
  const std::string sought = UpperCase(code);
  const auto rows = connection.Unobserved().Open(StatementText(
      common_, "Select InUnitID,InUnitType From TableInUnitConstruction Where TableID=", table_id, " Order By ID"));
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const Value stored = rows->Field("InUnitID");
    if (stored.IsNull()) continue;
    std::string stored_code = JoinedText(stored);
    // The columns of a form's table are named like its units.
    if (UpperCase(stored_code) == sought) {
      return InputUnit{stored_code, stored_code, JoinedText(rows->Field("InUnitType"))};
    }
  }
  return std::nullopt;
}

std::string ReferenceFormService::UnitValue(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                            const InputUnit& unit) {
  Connection& unobserved = connection.Unobserved();
  if (unit.type == "UpLoadFile") return FileReferences(unobserved, table_id, data_id, unit.code);
  if (unit.type == "InputDigitalSign" || unit.type == "InputElectroSeal") {
    return NewestPicture(unobserved, table_id, data_id, unit.code);
  }
  return ColumnText(unobserved, table_id, data_id, unit.field);
}

std::string ReferenceFormService::FileReferences(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                                 std::string_view code) const {
  std::string references;
  const auto rows =
      connection.Open(StatementText(common_, "Select ID From TableFile Where TableID=", table_id,
                                    " And DataID=", data_id, " And InUnitID=", Literal{code}, " Order By ID"));
  for (; !rows->AtEnd(); rows->MoveNext()) {
    references += references.empty() ? "fileid:" : ",fileid:";
    AppendJoined(references, rows->Field("ID"));
  }
  return references;
}

std::string ReferenceFormService::NewestPicture(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                                std::string_view code) const {
  const auto rows = connection.Open(
      StatementText(common_, "Select Top 1 TablePicDataID From TablePicData Where TableID=", table_id,
                    " And DataID=", data_id, " And InUnitID=", Literal{code}, " Order By TablePicDataID Desc"));
  if (rows->AtEnd()) return {};
  return "tablepicdataid:" + JoinedText(rows->Field("TablePicDataID"));
}

std::string ReferenceFormService::ColumnText(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                             std::string_view field) const {
  const auto rows = connection.Open(
      StatementText(common_, "Select Top 1 ", field, " From TableData", table_id, " Where ID=", data_id));
  if (rows->AtEnd()) return {};
  return JoinedText(rows->Field(field));
}

}  // namespace talm_flow::host
