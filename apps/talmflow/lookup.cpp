#include "lookup.h"

#include <charconv>

#include "talm_flow/conversion.h"
#include "talm_flow/name.h"

namespace talm_flow::program {

bool IsDigits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::int64_t IdOf(std::string_view word, const std::string& what, std::string_view shown) {
  std::int32_t id = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), id);
  if (!IsDigits(word) || error != std::errc() || end != word.data() + word.size() || id < 1) {
    throw UserError("\"" + std::string(shown) + "\" is no " + what);
  }
  return id;
}

Record RecordOf(const std::string& word) {
  const auto slash = word.find('/');
  if (slash == std::string::npos) {
    throw UserError("\"" + word + "\" is no record; write TABLE/DATA, as in 12/345");
  }
  return {IdOf(std::string_view(word).substr(0, slash), "table number"),
          IdOf(std::string_view(word).substr(slash + 1), "record number")};
}

std::string TextOf(const Record& record) { return std::to_string(record.table) + "/" + std::to_string(record.data); }

std::int64_t FlowOf(Workspace& workspace, const std::string& word) {
  if (IsDigits(word)) {
    const auto flow = IdOf(word, "flow number");
    if (!Name(workspace.services()).FlowExists(workspace.connection(), flow)) {
      throw UserError("there is no flow " + word);
    }
    return flow;
  }
  const auto rows =
      workspace.Rows("Select FlowID From WorkFlowName Where FlowName=" + workspace.Literal(word) + " Order By FlowID");
  if (rows.empty()) throw UserError("there is no flow named \"" + word + "\"");
  if (rows.size() > 1) {
    std::string numbers;
    for (const auto& row : rows) numbers += (numbers.empty() ? "" : ", ") + JoinedText(row[0]);
    throw UserError("several flows are named \"" + word + "\": " + numbers + "; name one by its number");
  }
  return NumberOf(rows[0][0]);
}

std::string FlowTitle(Workspace& workspace, std::int64_t flow) {
  const auto name = workspace.FirstField("Select FlowName From WorkFlowName Where FlowID=" + std::to_string(flow));
  return "flow " + std::to_string(flow) + " \"" + JoinedText(name) + "\"";
}

void RequireForm(Workspace& workspace, std::int64_t table) {
  if (!workspace.services().tables.AcceptTable(workspace.connection(), table)) {
    throw UserError("there is no form " + std::to_string(table) + "; create it with: talmflow form add");
  }
}

void RequireRecord(Workspace& workspace, const Record& record) {
  RequireForm(workspace, record.table);
  if (!workspace.services().records.AcceptsRecord(workspace.connection(), static_cast<std::int32_t>(record.table),
                                                  static_cast<std::int32_t>(record.data))) {
    throw UserError("the record " + TextOf(record) + " does not exist");
  }
}

std::int64_t NumberOf(const Value& value) {
  if (value.IsWhole()) return value.Whole();
  return IsNumeric(value) ? static_cast<std::int64_t>(ToDouble(value)) : 0;
}

Value CaptionOf(Workspace& workspace, std::int64_t flow, std::int64_t step) {
  return workspace.FirstField("Select Remark From WorkFlowConstruction Where FlowID=" + std::to_string(flow) +
                              " And FlowNo=" + std::to_string(step));
}

}  // namespace talm_flow::program
