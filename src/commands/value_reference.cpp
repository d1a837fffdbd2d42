// Commands that write references to records, tables, input units, files and pictures.

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "commands/handlers.h"
#include "commands/inputs.h"
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

std::string TableTextOf(const db::RecordReference& record) { return NumberedText("TableID:", record.table_id); }
std::string RecordTextOf(const db::RecordReference& record) { return record.Text(); }

/// Writes the record that parameter 2 names, read as `read` takes it, in the form that `text` gives.
Outcome WriteRecord(Step& step, std::optional<db::RecordReference> (*read)(const Step&, int),
                    std::string (*text)(const db::RecordReference&)) {
  const std::string target = step.Stored(1);
  if (const auto record = read(step, 2)) step.StoreVariable(target, text(*record));
  return Outcome::Done();
}

std::optional<std::string> InputUnit(const Step& step, std::string_view value) {
  return db::SeparateInUnitID(value, step.host().common);
}

std::optional<std::string> File(const Step&, std::string_view value) {
  const auto file_id = db::SeparateFileID(value);
  if (!file_id) return std::nullopt;
  return NumberedText("fileid:", *file_id);
}

std::optional<std::string> Picture(const Step&, std::string_view value) {
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

Outcome C_33(Step& step) { return WriteLatestApproval(step, TableTextOf); }
Outcome C_34(Step& step) { return WriteLatestApproval(step, RecordTextOf); }

Outcome C_35(Step& step) { return WriteOtherTable(step, 1); }
Outcome C_36(Step& step) { return WriteOtherRecord(step, 1); }
Outcome C_37(Step& step) { return WriteOtherTable(step, 3); }
Outcome C_38(Step& step) { return WriteOtherRecord(step, 3); }

Outcome C_45(Step& step) { return WriteRecord(step, Record, TableTextOf); }
Outcome C_46(Step& step) { return WriteRecord(step, Record, RecordTextOf); }

Outcome C_47(Step& step) {
  const std::string target = step.Stored(1);
  const auto record = AcceptedRecord(step, 2);
  const std::string unit_name = step.Evaluated(3);
  if (!record) return Outcome::Done();
  if (const auto unit = FindUnit(step, record->table_id, unit_name)) {
    step.StoreVariable(target,
                       step.host().forms.UnitValue(step.connection(), record->table_id, record->data_id, *unit));
  }
  return Outcome::Done();
}

Outcome C_49(Step& step) { return WriteRecord(step, AcceptedRecord, RecordTextOf); }

Outcome C_50(Step& step) {
  const std::string target = step.Stored(1);
  if (const auto table_id = AcceptedTable(step, 2)) {
    step.StoreVariable(target, NumberedText("TableID:", *table_id));
  }
  return Outcome::Done();
}

Outcome C_51(Step& step) { return WriteComputed(step, InputUnit); }
Outcome C_52(Step& step) { return WriteComputed(step, File); }
Outcome C_53(Step& step) { return WriteComputed(step, Picture); }

}  // namespace talm_flow::commands
