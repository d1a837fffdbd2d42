#include "design/select_list.h"

#include <charconv>
#include <cstdint>
#include <string_view>

#include "design/child_flows.h"
#include "design/text_of.h"
#include "talm_flow/text.h"

namespace talm_flow::design {

namespace {

void AppendTag(std::string& out, const SelectList& list) {
  out += "<Select name=\"";
  AppendJoined(out, list.name);
  out += "\" size=";
  AppendJoined(out, list.size);
  if (SwitchIsPositive(list.width)) {
    // "width=" where a style would have "width:" is meant: pages know the list in this spelling.
    out += " style=\"width=";
    AppendJoined(out, list.width);
    out += '"';
  }
  if (SwitchIs(list.is_multiple, 1)) out += " multiple";
}

void AppendHead(std::string& out, const SelectList& list, std::string_view empty_value) {
  out += ">\r\n";
  if (SwitchIs(list.have_space, 1)) {
    out += "<option value=";
    out += empty_value;
    out += "></option>\r\n";
  }
}

/// The script attribute of the lists over one flow, which set it apart themselves.
void AppendScript(std::string& out, const SelectList& list) {
  if (list.script == nullptr) return;
  const TextOf script(*list.script);
  if (script.view().empty()) return;
  out += ' ';
  out += script.view();
}

void AppendPosition(std::string& out, std::int16_t position) {
  char digits[8];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, position).ptr);
}

}  // namespace

std::string FlowSelect(db::Session& session, const SelectList& list) {
  const auto& common = session.host().common;
  std::string out;
  AppendTag(out, list);
  if (list.script != nullptr) AppendJoined(out, *list.script);
  AppendHead(out, list, "0");
  const bool any_selected = !TextOf(list.selected).view().empty();
  const auto rows = session.Open("select Top 10000 FlowID, FlowName from WorkFlowName Order By FlowName");
  for (; db::Session::HasRow(*rows); rows->MoveNext()) {
    const Value flow_id = rows->Field("FlowID");
    out += "<option value=";
    AppendJoined(out, flow_id);
    if (any_selected) out += common.SelectedMark(flow_id, list.selected);
    out += '>';
    out += common.DisplayText(rows->Field("FlowName"));
    out += "</option>";
  }
  out += "</Select>";
  return out;
}

std::string InputParameterSelect(db::Session& session, const Value& flow_id, const SelectList& list) {
  std::string out;
  AppendTag(out, list);
  AppendScript(out, list);
  AppendHead(out, list, "0");
  const auto rows = session.Open("select Top 10000 InputTitle from WorkFlowFunctionInput where FlowID=", flow_id,
                                 " Order By OrderNo,InputTitle");
  for (std::int16_t position = 1; db::Session::HasRow(*rows); rows->MoveNext(), ++position) {
    out += "<option value=\"";
    AppendPosition(out, position);
    out += '"';
    if (SwitchIs(list.selected, position)) out += " selected";
    out += '>';
    AppendJoined(out, rows->Field("InputTitle"));
    out += "</option>\r\n";
  }
  out += "</select>\r\n";
  return out;
}

std::string VarSelect(db::Session& session, const Value& flow_id, const SelectList& list) {
  const auto& common = session.host().common;
  std::string out;
  AppendTag(out, list);
  AppendScript(out, list);
  AppendHead(out, list, "\"\"");
  const bool any_selected = !TextOf(list.selected).view().empty();
  const std::string variables = GetVarNameStrByFlowID(session, flow_id);
  for (const std::string_view variable : Split(variables, ",")) {
    const Value item(variable);
    const std::string shown = common.DisplayText(item);
    out += "<option value=";
    out += shown;
    if (any_selected) out += common.SelectedMark(item, list.selected);
    out += '>';
    out += shown;
    out += "</option>";
  }
  out += "</select>\r\n";
  return out;
}

}  // namespace talm_flow::design
