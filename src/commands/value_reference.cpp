// Commands that write references to records, tables, input units, files and pictures.

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "commands/handlers.h"
#include "commands/value.h"
#include "db/reference.h"
#include "expr/evaluator.h"
#include "talm_flow/conversion.h"

namespace talm_flow::commands {

namespace {

std::string TableText(const Value& table_id) {
  std::string text = "TableID:";
  AppendJoined(text, table_id);
  return text;
}

std::string RecordText(const Value& table_id, const Value& data_id) {
  std::string text = TableText(table_id);
  text += ",DataID:";
  AppendJoined(text, data_id);
  return text;
}

std::string NumberedText(std::string_view key, std::int32_t number) {
  return std::string(key) + std::to_string(number);
}

/// The latest approval-form record of the tree, written in the form that `text` gives; nothing when there is none.
Outcome WriteLatestApproval(Step& step, std::string (*text)(const db::RecordReference&)) {
  const std::string target = step.Stored(1);
  const auto record = expr::LatestApprovalRecord(step.session(), step.call().RootExecuteID);
  if (record.table_id != 0) step.StoreVariable(target, text(record));
  return Outcome::Done();
}

/// An argument as a whole number; nothing when it is none of 32 bits.
std::optional<std::int32_t> WholeNumber(const Value& argument) {
  if (!IsNumeric(argument)) return std::nullopt;
  const double number = ToDouble(argument);
  if (number != std::trunc(number) || std::fabs(number) > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return static_cast<std::int32_t>(number);
}

/// The second document's table, when the host accepts it and gives it this kind.
std::optional<std::int32_t> OtherTableOfKind(const Step& step, std::int32_t kind) {
  const Value& table = step.call().OtherTableID;
  const auto table_id = WholeNumber(table);
  if (!table_id || step.host().tables.AcceptTable(step.connection(), table) != kind) return std::nullopt;
  return table_id;
}

Outcome WriteOtherTable(Step& step, std::int32_t kind) {
  const std::string target = step.Stored(1);
  if (OtherTableOfKind(step, kind)) step.StoreVariable(target, TableText(step.call().OtherTableID));
  return Outcome::Done();
}

Outcome WriteOtherRecord(Step& step, std::int32_t kind) {
  const std::string target = step.Stored(1);
  const auto table_id = OtherTableOfKind(step, kind);
  const auto data_id = WholeNumber(step.call().OtherDataID);
  if (table_id && data_id && step.host().records.AcceptsRecord(step.connection(), *table_id, *data_id)) {
    step.StoreVariable(target, RecordText(step.call().OtherTableID, step.call().OtherDataID));
  }
  return Outcome::Done();
}

std::optional<std::string> TableOfRecord(const Step&, std::string value) {
  const auto record = db::SeparateTableIDAndDataID(value);
  if (!record) return std::nullopt;
  return NumberedText("TableID:", record->table_id);
}

std::optional<std::string> Record(const Step&, std::string value) {
  const auto record = db::SeparateTableIDAndDataID(value);
  if (!record) return std::nullopt;
  return record->Text();
}

std::optional<std::string> AcceptedRecord(const Step& step, std::string value) {
  const auto record = db::SeparateTableIDAndDataID(value);
  if (!record || !step.host().records.AcceptsRecord(step.connection(), record->table_id, record->data_id)) {
    return std::nullopt;
  }
  return record->Text();
}

std::optional<std::string> AcceptedTable(const Step& step, std::string value) {
  const auto table_id = db::SeparateTableID(value);
  if (!table_id || !step.host().tables.AcceptTable(step.connection(), *table_id)) return std::nullopt;
  return NumberedText("TableID:", *table_id);
}

std::optional<std::string> InputUnit(const Step& step, std::string value) {
  return db::SeparateInUnitID(value, step.host().common);
}

std::optional<std::string> File(const Step&, std::string value) {
  const auto file_id = db::SeparateFileID(value);
  if (!file_id) return std::nullopt;
  return NumberedText("fileid:", *file_id);
}

std::optional<std::string> Picture(const Step&, std::string value) {
  const auto picture_id = db::SeparateTablePicDataID(value);
  if (!picture_id) return std::nullopt;
  return NumberedText("tablepicdataid:", *picture_id);
}

}  // namespace

Outcome C_31(Step& step) {
  step.StoreVariable(step.Stored(1), RecordText(step.call().TableID, step.call().DataID));
  return Outcome::Done();
}

Outcome C_32(Step& step) {
  step.StoreVariable(step.Stored(1), TableText(step.call().TableID));
  return Outcome::Done();
}

Outcome C_33(Step& step) {
  return WriteLatestApproval(
      step, [](const db::RecordReference& record) { return NumberedText("TableID:", record.table_id); });
}

Outcome C_34(Step& step) {
  return WriteLatestApproval(step, [](const db::RecordReference& record) { return record.Text(); });
}

Outcome C_35(Step& step) { return WriteOtherTable(step, 1); }
Outcome C_36(Step& step) { return WriteOtherRecord(step, 1); }
Outcome C_37(Step& step) { return WriteOtherTable(step, 3); }
Outcome C_38(Step& step) { return WriteOtherRecord(step, 3); }

Outcome C_45(Step& step) { return WriteComputed(step, TableOfRecord); }
Outcome C_46(Step& step) { return WriteComputed(step, Record); }

Outcome C_47(Step& step) {
  const std::string target = step.Stored(1);
  const auto record = db::SeparateTableIDAndDataID(step.Evaluated(2));
  const auto code = db::SeparateInUnitID(step.Evaluated(3), step.host().common);
  if (!record || !code) return Outcome::Done();
  if (!step.host().records.AcceptsRecord(step.connection(), record->table_id, record->data_id)) return Outcome::Done();
  const auto unit = step.host().forms.FindUnit(step.connection(), record->table_id, *code);
  if (!unit) return Outcome::Done();
  step.StoreVariable(target, step.host().forms.UnitValue(step.connection(), record->table_id, record->data_id, *unit));
  return Outcome::Done();
}

Outcome C_49(Step& step) { return WriteComputed(step, AcceptedRecord); }
Outcome C_50(Step& step) { return WriteComputed(step, AcceptedTable); }
Outcome C_51(Step& step) { return WriteComputed(step, InputUnit); }
Outcome C_52(Step& step) { return WriteComputed(step, File); }
Outcome C_53(Step& step) { return WriteComputed(step, Picture); }

}  // namespace talm_flow::commands
