#include "office_services.h"

#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace office {

using talm_flow::IsNumeric;
using talm_flow::JoinedText;
using talm_flow::MakeDateTime;
using talm_flow::ParseDate;
using talm_flow::Split;
using talm_flow::ToInt32;
using talm_flow::TrimBlanks;
using talm_flow::host::InputUnit;

namespace {

// snippet: reading
/// The first row's value of a column, or Null when there is no row.
Value First(Connection& connection, const std::string& query, std::string_view column) {
  const auto rows = connection.Unobserved().Open(query);
  return rows->AtEnd() ? Value() : rows->Field(column);
}
// snippet end

bool HasPurpose(Connection& connection, std::int32_t form, const char* purpose) {
  const auto query = "Select Top 1 Purpose From OfficeForm Where FormNo=" + std::to_string(form);
  return First(connection, query, "Purpose") == Value(purpose);
}

}  // namespace

// snippet: tables
std::optional<std::int32_t> OfficeTables::AcceptTable(Connection& connection, const Value& table_id) {
  // The number comes from a definition or from the host's own call: it may be a text, and no number at all.
  if (!IsNumeric(table_id)) return std::nullopt;
  const auto query = "Select Top 1 Kind From OfficeForm Where FormNo=" + std::to_string(ToInt32(table_id));
  const Value kind = First(connection, query, "Kind");
  return kind.IsNull() ? std::nullopt : std::optional(ToInt32(kind));
}

bool OfficeTables::AcceptsApprovalForm(Connection& connection, std::int32_t table_id) {
  return HasPurpose(connection, table_id, "opinion");
}

bool OfficeTables::AcceptsAttentionForm(Connection& connection, std::int32_t table_id) {
  return HasPurpose(connection, table_id, "note");
}

void OfficeTables::OperateOnTable(Connection& connection, std::int32_t table_id, std::string_view operator_name) {
  std::string statement = "Insert Into OfficeOrder (FormNo,OrderedBy,OrderedAt) Values (" + std::to_string(table_id);
  basics_.common.SqlText(operator_name, statement += ",");
  basics_.common.SqlText(basics_.dates.FormatDateTime(basics_.clock.Now()), statement += ",");
  (void)connection.Unobserved().Execute(statement += ")");
}
// snippet end

// snippet: records
bool OfficeRecords::AcceptsRecord(Connection& connection, std::int32_t table_id, std::int32_t data_id) {
  if (!tables_.AcceptTable(connection, table_id)) return false;
  const std::string form = std::to_string(table_id);
  const std::string record = std::to_string(data_id);
  const bool exists =
      !First(connection, "Select Top 1 ID From TableData" + form + " Where ID=" + record, "ID").IsNull();
  const auto lock = "Select Top 1 RecordNo From OfficeLock Where FormNo=" + form + " And RecordNo=" + record;
  return exists && First(connection, lock, "RecordNo").IsNull();
}

bool OfficeRecords::CheckDocument(Connection& connection, const Value& table_id, const Value& data_id) {
  if (!IsNumeric(table_id) || !IsNumeric(data_id)) return false;
  return AcceptsRecord(connection, ToInt32(table_id), ToInt32(data_id));
}

DateTime OfficeRecords::DocumentDate(Connection& connection, std::int32_t table_id, std::int32_t data_id) {
  const auto query =
      "Select Top 1 inputtime From TableData" + std::to_string(table_id) + " Where ID=" + std::to_string(data_id);
  return ParseDate(JoinedText(First(connection, query, "inputtime"))).value_or(MakeDateTime(1900, 1, 1));
}

std::string OfficeRecords::EncodeRecord(std::int32_t table_id, std::int32_t data_id) {
  return std::to_string(table_id) + "-" + std::to_string(data_id);
}
// snippet end

// snippet: people
std::string OfficePeople::UserNames(Connection& connection, std::string_view expression) {
  std::string names;
  const auto add = [&names](std::string_view name) { names.append(names.empty() ? "" : ",").append(name); };
  for (const std::string_view piece : Split(expression, ";")) {
    const std::string_view item = TrimBlanks(piece);
    if (!item.starts_with("team:")) {
      if (!item.empty()) add(item);
      continue;
    }
    std::string query = "Select FullName From Staff Where Team=";
    basics_.common.SqlText(item.substr(5), query);
    const auto rows = connection.Unobserved().Open(query += " Order By StaffNo");
    for (; !rows->AtEnd(); rows->MoveNext()) add(JoinedText(rows->Field("FullName")));
  }
  return names;
}
// snippet end

// snippet: forms
std::optional<InputUnit> OfficeForms::FindUnit(Connection& connection, std::int32_t table_id, std::string_view code) {
  const auto rows = connection.Unobserved().Open(
      "Select Code,ColumnName,Widget From OfficeField Where FormNo=" + std::to_string(table_id) + " Order By FieldNo");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const std::string known = JoinedText(rows->Field("Code"));
    if (!talm_flow::EqualIgnoringAsciiCase(known, code)) continue;
    return InputUnit{
        .code = known, .field = JoinedText(rows->Field("ColumnName")), .type = JoinedText(rows->Field("Widget"))};
  }
  return std::nullopt;
}

std::string OfficeForms::UnitValue(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                   const InputUnit& unit) {
  return JoinedText(First(connection,
                          "Select Top 1 " + unit.field + " From TableData" + std::to_string(table_id) +
                              " Where ID=" + std::to_string(data_id),
                          unit.field));
}
// snippet end

}  // namespace office
