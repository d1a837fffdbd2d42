#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::host {

/// What the host knows of form tables.
class TALM_FLOW_API TableService {
 public:
  virtual ~TableService() = default;

  /// The table's kind when commands may work on the table, nothing when they may not. Kinds 1 and 3 are those that
  /// `C_35` to `C_38` ask for.
  [[nodiscard]] virtual std::optional<std::int32_t> AcceptTable(Connection& connection, const Value& table_id) = 0;

  /// Whether the table is a valid form to fill in an approval with.
  [[nodiscard]] virtual bool AcceptsApprovalForm(Connection& connection, std::int32_t table_id) = 0;

  /// Whether the table is a valid form to attach to a document.
  [[nodiscard]] virtual bool AcceptsAttentionForm(Connection& connection, std::int32_t table_id) = 0;

  /// The host's own operation on a form table that `C_10` triggers.
  virtual void OperateOnTable(Connection& connection, std::int32_t table_id, std::string_view operator_name) = 0;
};

}  // namespace talm_flow::host
