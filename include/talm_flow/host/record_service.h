#pragma once

#include <cstdint>
#include <string>

#include "talm_flow/conversion.h"
#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::host {

/// What the host knows of form records (documents).
class TALM_FLOW_API RecordService {
 public:
  virtual ~RecordService() = default;

  /// Whether commands may work on the record.
  [[nodiscard]] virtual bool AcceptsRecord(Connection& connection, std::int32_t table_id, std::int32_t data_id) = 0;

  /// Whether the document may be transferred (`DataTran`). The numbers are as the caller gave them.
  [[nodiscard]] virtual bool CheckDocument(Connection& connection, const Value& table_id, const Value& data_id) = 0;

  /// The date by which "DataID_PerApp" finds the latest document. A document without a date has 1900/1/1.
  [[nodiscard]] virtual DateTime DocumentDate(Connection& connection, std::int32_t table_id, std::int32_t data_id) = 0;

  /// The record in the encoded form in which a display page takes it, before URL encoding.
  [[nodiscard]] virtual std::string EncodeRecord(std::int32_t table_id, std::int32_t data_id) = 0;
};

}  // namespace talm_flow::host
