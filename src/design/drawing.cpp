#include "design/drawing.h"

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "design/tree_walk.h"

namespace talm_flow::design {

namespace {

/// Draws into one text. As a visitor of the walk it frames every step's children with the connecting lines.
class Drawing {
 public:
  Drawing(db::Session& session, const Value& flow_id, const DrawingStyle& style)
      : session_(session),
        flow_id_(flow_id),
        field_start_("document." + JoinedText(style.form_name)),
        clickable_(SwitchIs(style.display_form, 1)) {}

  void Put(std::string_view fragment) { out_ += fragment; }
  [[nodiscard]] std::string Take() { return std::move(out_); }

  void Box(const Value& flow_no) {
    const auto rows =
        session_.Open("select Top 1 * from WorkFlowConstruction where flowid=", flow_id_, " and flowno=", flow_no);
    if (!db::Session::HasRow(*rows)) return;
    const Value number = rows->Field("FlowNo");
    const Value parent = rows->Field("ParentNo");
    const Value remark = rows->Field("Remark");
    out_ += R"(<table border="1" cellspacing="0" cellpadding="0"><tr><td>)";
    if (clickable_) {
      const Value command = rows->Field("Command");
      rows->Close();
      OpenLink(flow_no, number, parent, remark, command);
    }
    out_ += "序号：";
    AppendJoined(out_, number);
    out_ += "<br>父序：";
    AppendJoined(out_, parent);
    out_ += "<br>说明：";
    AppendJoined(out_, remark);
    if (clickable_) out_ += "</a>";
    out_ += "</td></tr></table>";
  }

  void ReadChildren(const Value& flow_no, std::vector<Value>& children) {
    const auto rows = session_.Open("select Top 10000 flowno from WorkFlowConstruction where flowid=", flow_id_,
                                    " and parentno=", flow_no, " order by ID");
    for (; db::Session::HasRow(*rows); rows->MoveNext()) children.push_back(rows->Field("flowno"));
  }
  void BeginChildren(std::size_t count) {
    if (count > 1) out_ += "↓";
    out_ += R"(<table border="0" cellspacing="0" cellpadding="0"><tr>)";
  }
  void EnterChild(const Value& flow_no, std::size_t index, std::size_t count) {
    out_ += "<td align=center valign=top>";
    if (count > 1) Bar(index > 0, index + 1 < count);
    out_ += "↓";
    Box(flow_no);
  }
  void LeaveChild() { out_ += "</td>"; }
  void EndChildren() { out_ += "</tr></table>"; }

 private:
  /// The piece of the line from the middle of the first sibling to the middle of the last that lies above one of them.
  void Bar(bool left, bool right) {
    constexpr std::string_view kBlack = R"(<td width="50%" bgcolor="#000000"></td>)";
    constexpr std::string_view kWhite = R"(<td width="50%"></td>)";
    out_ += R"(<table border="0" cellspacing="0" cellpadding="0" width="100%" height=1><tr>)";
    out_ += left ? kBlack : kWhite;
    out_ += right ? kBlack : kWhite;
    out_ += "</tr></table>";
  }

  void OpenLink(const Value& flow_no, const Value& number, const Value& parent, const Value& remark,
                const Value& command) {
    const auto& common = session_.host().common;
    out_ += R"(<a href="" onclick=")";
    Assign("FlowNo", number);
    Assign("FlowNoNow", number);
    Assign("OldFlowNo", number);
    Assign("ParentNo", parent);
    Assign("Remark", common.DisplayText(remark));
    Assign("Command", command);
    const auto rows =
        session_.Open("select Top 10000 * from WorkFlowParameter where flowid=", flow_id_, " and flowno=", flow_no);
    for (; db::Session::HasRow(*rows); rows->MoveNext()) {
      Assign(rows->Field("ParameterName"), common.DisplayText(rows->Field("ParameterData")));
    }
    out_ += "buttoncon();opendiv();return false;\">";
  }

  void Assign(const Value& field, const Value& value) {
    out_ += field_start_;
    out_ += '.';
    AppendJoined(out_, field);
    out_ += ".value='";
    AppendJoined(out_, value);
    out_ += "';";
  }

  db::Session& session_;
  const Value& flow_id_;
  std::string field_start_;
  bool clickable_;
  std::string out_;
};

}  // namespace

std::string DisplayFlow(db::Session& session, const Value& flow_id, const DrawingStyle& style) {
  const Value root = 1;
  Drawing drawing(session, flow_id, style);
  drawing.Put("<center>");
  drawing.Box(root);
  WalkBelow(flow_id, root, drawing);
  drawing.Put("</center>");
  return drawing.Take();
}

std::string DisplayNextFlowStep(db::Session& session, const Value& flow_id, const Value& flow_no,
                                const DrawingStyle& style) {
  Drawing drawing(session, flow_id, style);
  WalkBelow(flow_id, flow_no, drawing);
  return drawing.Take();
}

std::string DisplayPerFlowStep(db::Session& session, const Value& flow_id, const Value& flow_no,
                               const DrawingStyle& style) {
  Drawing drawing(session, flow_id, style);
  drawing.Box(flow_no);
  return drawing.Take();
}

}  // namespace talm_flow::design
