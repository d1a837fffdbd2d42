#include "host/table_service.h"

#include "host/loose_number.h"
#include "host/statement.h"

namespace talm_flow::host {

std::optional<std::int32_t> ReferenceTableService::AcceptTable(Connection& connection, const Value& table_id) {
  const auto key = LooseKey(table_id);
  if (!key) return std::nullopt;
  const auto rows =
      connection.Unobserved().Open(StatementText(common_, "Select Top 1 Sort From TableName Where TableID=", *key));
  if (rows->AtEnd()) return std::nullopt;
  const Value kind = rows->Field("Sort");
  return kind.IsNull() ? 0 : ToInt32(kind);
}

bool ReferenceTableService::AcceptsApprovalForm(Connection& connection, std::int32_t table_id) {
  return AcceptTable(connection, table_id).has_value();
}

bool ReferenceTableService::AcceptsAttentionForm(Connection& connection, std::int32_t table_id) {
  return AcceptTable(connection, table_id).has_value();
}

void ReferenceTableService::OperateOnTable(Connection& connection, std::int32_t table_id,
                                           std::string_view operator_name) {
  const std::string moment = dates_.FormatDateTime(clock_.Now());
  (void)connection.Unobserved().Execute(
      StatementText(common_, "Insert Into TableOperation (TableID,Operator,InputTime) Values (", table_id, ",",
                    Literal{operator_name}, ",", Literal{moment}, ")"));
}

}  // namespace talm_flow::host
