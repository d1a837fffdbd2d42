#include "design/definition_writer.h"

#include <utility>

#include "design/definition_text.h"

namespace talm_flow::design {

namespace {

class DefinitionWriter {
 public:
  DefinitionWriter(db::Session& session, const Value& flow_id) : session_(session), flow_id_(flow_id) {}

  std::string Write() {
    WriteHead();
    WriteSteps();
    WriteInputParameters();
    Line("FlowEnd");
    return std::move(text_);
  }

 private:
  void Line(std::string_view line) {
    text_ += line;
    text_ += kLineEnd;
  }

  void Attribute(std::string_view key, const Value& value) {
    text_ += key;
    AppendJoined(text_, value);
    text_ += kLineEnd;
  }

  void WriteHead() {
    Line("//表示注释");
    Line("//请不要编辑本文件，否则，可能会破坏文件结构");
    Line("//把本文件的数据导入某个指定的流程，会删除这个流程的以前结构");
    Line("//换行符号分割开各个属性");
    Line("//格式版本");
    Line("Ver:Flow_V600");
    Line("//这里开始记录流程结构，用FlowBegin开始，用FlowEnd结束");
    Line("FlowBegin");
    Line("////这里记录该流程的说明");
    const auto rows = session_.Open("select Top 1 Remark From WorkFlowName where FlowID=", flow_id_);
    Attribute(kFlowRemarkKey, rows->Field("Remark"));
  }

  void WriteSteps() {
    const auto rows = session_.Open("select Top 10000 * from WorkFlowConstruction where FlowID=", flow_id_);
    for (; db::Session::HasRow(*rows); rows->MoveNext()) {
      const Value flow_no = rows->Field("FlowNo");
      Line("//这里记录每个步骤，用StepBegin开始，用StepEnd结束");
      Line("StepBegin");
      Attribute("FlowNo:", flow_no);
      Attribute("ParentNo:", rows->Field("ParentNo"));
      Attribute("Serial:", rows->Field("Serial"));
      Attribute("Remark:", rows->Field("Remark"));
      Attribute("Command:", rows->Field("Command"));
      Line("//这里记录指令参数，用ParameterBegin开始，用ParameterEnd结束");
      Line("ParameterBegin");
      WriteParameters(flow_no);
      // No "StepEnd": the end of its parameters ends a step.
      Line("ParameterEnd");
    }
  }

  void WriteParameters(const Value& flow_no) {
    const auto rows =
        session_.Open("select Top 10000 * from WorkFlowParameter where FlowID=", flow_id_, " and FlowNo=", flow_no);
    for (; db::Session::HasRow(*rows); rows->MoveNext()) {
      AppendJoined(text_, rows->Field("ParameterName"));
      Attribute(":", rows->Field("ParameterData"));
    }
  }

  void WriteInputParameters() {
    const auto rows = session_.Open("select Top 10000 * from WorkFlowFunctionInput where FlowID=", flow_id_);
    for (; db::Session::HasRow(*rows); rows->MoveNext()) {
      Line("//这里记录每个子流程参数，用FunctionParameterBegin开始，用FunctionParameterEnd结束");
      Line("FunctionParameterBegin");
      Attribute("InputTitle:", rows->Field("InputTitle"));
      Attribute("OrderNo:", rows->Field("OrderNo"));
      Attribute("Sort:", rows->Field("Sort"));
      Attribute("ClassContent:", rows->Field("ClassContent"));
      Line("FunctionParameterEnd");
    }
  }

  db::Session& session_;
  const Value& flow_id_;
  std::string text_;
};

}  // namespace

std::string MakeConstructionBak(db::Session& session, const Value& flow_id) {
  return DefinitionWriter(session, flow_id).Write();
}

void CreateTxt(host::FileSystem& files, std::string_view file_name, std::string_view text) {
  files.RequireEncodable(file_name, text);
  if (files.FileExists(file_name)) files.DeleteFile(file_name);
  const auto file = files.CreateTextFile(file_name);
  file->WriteLine(text);
  file->Close();
}

}  // namespace talm_flow::design
