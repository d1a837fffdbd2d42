/// Removing what tasks about a record produced: the form records of approvals (C_12), answers (C_13) and attentions
/// (C_14), and the approvals that are still open (C_89).

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "commands/handlers.h"
#include "commands/inputs.h"
#include "talm_flow/conversion.h"

namespace talm_flow::commands {
namespace {

/// The number in a column that links to a form; nothing when it links to none.
std::optional<std::int32_t> LinkNumber(const Value& field) {
  if (field.IsNull()) return std::nullopt;
  const std::int32_t number = ToInt32(field);
  if (number < 1) return std::nullopt;
  return number;
}

/// Deletes the form records that the rows of a query name. All rows are read first: nothing is deleted from under the
/// reading.
template <typename... Pieces>
void DeleteFormRecords(const Step& step, std::string_view table_field, std::string_view data_field,
                       const Pieces&... query) {
  std::vector<db::RecordReference> records;
  const auto rows = step.session().Open(query...);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const auto table_id = LinkNumber(rows->Field(table_field));
    const auto data_id = LinkNumber(rows->Field(data_field));
    if (table_id && data_id) records.push_back({*table_id, *data_id});
  }
  rows->Close();
  for (const auto& [table_id, data_id] : records) {
    step.session().Execute("delete from TableData", table_id, " Where ID=", data_id);
  }
}

}  // namespace

Outcome C_12(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  DeleteFormRecords(step, "AppTableID", "AppDataID",
                    "select Top 100000 AppTableID,AppDataID from DataApp where AppedTableID=", record->table_id,
                    " and AppedDataID=", record->data_id);
  step.session().Execute("update DataApp set AppDataID=0 where AppedTableID=", record->table_id,
                         " and AppedDataID=", record->data_id);
  return Outcome::Done();
}

Outcome C_13(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  DeleteFormRecords(step, "AnswerTableID", "AnswerDataID",
                    "select Top 100000 AnswerTableID,AnswerDataID from DataAnswer where TableID=", record->table_id,
                    " and DataID=", record->data_id);
  step.session().Execute("delete from DataAnswer where TableID=", record->table_id, " and DataID=", record->data_id);
  return Outcome::Done();
}

Outcome C_14(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  DeleteFormRecords(step, "AttTableID", "AttDataID",
                    "select Top 100000 AttTableID,AttDataID from DataAtt where AttedTableID=", record->table_id,
                    " and AttedDataID=", record->data_id);
  step.session().Execute("update DataAtt set AttDataID=0 where AttedTableID=", record->table_id,
                         " and AttedDataID=", record->data_id);
  return Outcome::Done();
}

Outcome C_89(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  step.session().Execute(
      "delete from WorkFlowExecute where DataAppID in (select DataAppID from DataApp where AppedTableID=",
      record->table_id, " and AppedDataID=", record->data_id, " and Status<2)");
  step.session().Execute("delete from DataApp where AppedTableID=", record->table_id,
                         " and AppedDataID=", record->data_id, " and Status<2");
  return Outcome::Done();
}

}  // namespace talm_flow::commands
