#pragma once

#include "talm_flow/host/common_functions.h"
#include "talm_flow/host/record_service.h"
#include "talm_flow/host/table_service.h"

namespace talm_flow::host {

/// Form records are the rows of "TableData" + TableID; a table that the table service does not accept has none.
class ReferenceRecordService : public RecordService {
 public:
  ReferenceRecordService(const CommonFunctions& common, TableService& tables) : common_(common), tables_(tables) {}

  [[nodiscard]] bool AcceptsRecord(Connection& connection, std::int32_t table_id, std::int32_t data_id) override;
  [[nodiscard]] bool CheckDocument(Connection& connection, const Value& table_id, const Value& data_id) override;
  [[nodiscard]] DateTime DocumentDate(Connection& connection, std::int32_t table_id, std::int32_t data_id) override;
  [[nodiscard]] std::string EncodeRecord(std::int32_t table_id, std::int32_t data_id) override;

 private:
  const CommonFunctions& common_;
  TableService& tables_;
};

}  // namespace talm_flow::host
