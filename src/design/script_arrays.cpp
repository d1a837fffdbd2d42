#include "design/script_arrays.h"

#include <string_view>
#include <utility>

namespace talm_flow::design {

namespace {

class ScriptArrays {
 public:
  ScriptArrays(db::Session& session, const Value& flow_id)
      : session_(session), common_(session.host().common), flow_id_(flow_id) {}

  std::string Write() {
    out_ =
        "<Script>"
        "var FlowArr=new Array();"
        "var FlowBaseInfArr=new Array();"
        "var FlowFunctionInputArr=new Array();"
        "var PerFlowFunctionInputArr=new Array();"
        "var FlowStepArr=new Array();"
        "var PerFlowStepArr=new Array();"
        "var FlowCommandArr=new Array();"
        "var FlowCommandParameterArr=new Array();"
        "var FlowCommandPerParameterArr=new Array();";
    WriteBase();
    WriteInputParameters();
    WriteSteps();
    out_ += "</Script>";
    return std::move(out_);
  }

 private:
  void WriteBase() {
    out_ += R"(FlowBaseInfArr[0]="";FlowBaseInfArr[1]="";FlowBaseInfArr[2]="";)";
    const auto rows = session_.Open("Select Top 1 * From WorkFlowName Where FlowID=", flow_id_);
    if (db::Session::HasRow(*rows)) {
      AssignText("FlowBaseInfArr[0]", rows->Field("FlowName"));
      AssignText("FlowBaseInfArr[1]", rows->Field("Creater"));
      AssignText("FlowBaseInfArr[2]", common_.ScriptText(rows->Field("Remark")));
    }
    out_ += "FlowArr[0]=FlowBaseInfArr;";
  }

  void WriteInputParameters() {
    const auto rows =
        session_.Open("Select Top 10000 * From WorkFlowFunctionInput Where FlowID=", flow_id_, " Order By OrderNo");
    for (; db::Session::HasRow(*rows); rows->MoveNext()) {
      out_ += "PerFlowFunctionInputArr=new Array();";
      AssignText("PerFlowFunctionInputArr[0]", common_.ScriptText(rows->Field("InputTitle")));
      out_ += "PerFlowFunctionInputArr[1]=";
      AppendJoined(out_, rows->Field("Sort"));
      out_ += ';';
      AssignText("PerFlowFunctionInputArr[2]", common_.ScriptText(rows->Field("ClassContent")));
      out_ += "FlowFunctionInputArr.push(PerFlowFunctionInputArr);";
    }
    out_ += "FlowArr[1]=FlowFunctionInputArr;";
  }

  void WriteSteps() {
    const auto rows =
        session_.Open("Select Top 10000 * From WorkFlowConstruction Where FlowID=", flow_id_, " Order By FlowNo");
    for (; db::Session::HasRow(*rows); rows->MoveNext()) {
      const Value flow_no = rows->Field("FlowNo");
      out_ += "PerFlowStepArr=new Array();";
      AssignText("PerFlowStepArr[0]", flow_no);
      AssignText("PerFlowStepArr[1]", rows->Field("ParentNo"));
      AssignText("PerFlowStepArr[2]", rows->Field("Serial"));
      AssignText("PerFlowStepArr[3]", common_.ScriptText(rows->Field("Remark")));
      out_ += "FlowCommandArr=new Array();";
      AssignText("FlowCommandArr[0]", rows->Field("Command"));
      out_ += "FlowCommandParameterArr=new Array();";
      WriteParameters(flow_no);
      out_ +=
          "FlowCommandArr[1]=FlowCommandParameterArr;"
          "PerFlowStepArr[4]=FlowCommandArr;"
          "FlowStepArr.push(PerFlowStepArr);";
    }
    out_ += "FlowArr[2]=FlowStepArr;";
  }

  void WriteParameters(const Value& flow_no) {
    const auto rows =
        session_.Open("Select Top 10000 * From WorkFlowParameter Where FlowID=", flow_id_, " And FlowNo=", flow_no);
    for (; db::Session::HasRow(*rows); rows->MoveNext()) {
      out_ += "FlowCommandPerParameterArr=new Array();";
      AssignText("FlowCommandPerParameterArr[0]", rows->Field("ParameterName"));
      AssignText("FlowCommandPerParameterArr[1]", common_.ScriptText(rows->Field("ParameterData")));
      out_ += "FlowCommandParameterArr.push(FlowCommandPerParameterArr);";
    }
  }

  void AssignText(std::string_view target, const Value& value) {
    out_ += target;
    out_ += "=\"";
    AppendJoined(out_, value);
    out_ += "\";";
  }

  db::Session& session_;
  const host::CommonFunctions& common_;
  const Value& flow_id_;
  std::string out_;
};

}  // namespace

std::string CreateFlowArr(db::Session& session, const Value& flow_id) { return ScriptArrays(session, flow_id).Write(); }

}  // namespace talm_flow::design
