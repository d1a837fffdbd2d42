#pragma once

#include "talm_flow/host/common_functions.h"
#include "talm_flow/host/table_service.h"
#include "talm_flow/host/text_services.h"

namespace talm_flow::host {

/// Form tables are those that `TableName` lists.
class ReferenceTableService : public TableService {
 public:
  ReferenceTableService(const CommonFunctions& common, const DateService& dates, Clock& clock)
      : common_(common), dates_(dates), clock_(clock) {}

  [[nodiscard]] std::optional<std::int32_t> AcceptTable(Connection& connection, const Value& table_id) override;
  [[nodiscard]] bool AcceptsApprovalForm(Connection& connection, std::int32_t table_id) override;
  [[nodiscard]] bool AcceptsAttentionForm(Connection& connection, std::int32_t table_id) override;
  void OperateOnTable(Connection& connection, std::int32_t table_id, std::string_view operator_name) override;

 private:
  const CommonFunctions& common_;
  const DateService& dates_;
  Clock& clock_;
};

}  // namespace talm_flow::host
