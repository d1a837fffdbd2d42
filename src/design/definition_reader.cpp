#include "design/definition_reader.h"

#include <cstddef>
#include <string>

#include "design/catalogue.h"
#include "design/definition_text.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::design {

namespace {

using db::Quoted;

class DefinitionReader {
 public:
  DefinitionReader(db::Session& session, const Value& flow_id, std::string_view text)
      : session_(session), flow_id_(flow_id), text_(text), rest_(text) {}

  void Read() {
    while (true) {
      const std::string_view value = Next();
      if (IsFlowRemark(value)) {
        session_.Execute("update WorkFlowName set Remark=", Quoted(value.substr(kFlowRemarkKey.size())),
                         " where flowid=", flow_id_);
      } else if (value == "StepBegin") {
        ReadStep();
      } else if (value == "ParameterBegin") {
        ReadParameters(value);
      } else if (value == "FunctionParameterBegin") {
        ReadInputParameter();
      } else if (value.empty() || value == "FlowEnd") {
        return;
      }
    }
  }

 private:
  std::string_view Next() {
    const auto [value, rest] = SeparateValue(rest_);
    rest_ = rest;
    return value;
  }

  void ReadStep() {
    const auto [values, back] = GetStepValue(rest_);
    rest_ = back.value_or(rest_);
    flow_no_ = values[kFlowNo].value_or(kNoNumber);
    session_.Execute("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values( ",
                     flow_id_, ",", flow_no_, ",", values[kParentNo].value_or(kNoNumber), ",",
                     values[kSerial].value_or(kNoNumber), ",", Quoted(values[kRemark].value_or("")), ",",
                     Quoted(values[kCommand].value_or("")), ")");
  }

  void ReadParameters(std::string_view begin) {
    while (true) {
      const std::string_view value = Next();
      if (value == "ParameterEnd") return;
      if (value.starts_with("//")) continue;
      if (value.empty()) throw ArgumentError(LineOf(begin) + " has no ParameterEnd: the parameter block is not closed");
      const std::size_t colon = value.find(':');
      if (colon == std::string_view::npos) {
        throw ArgumentError(LineOf(value) + " is no parameter: it has no \":\" behind a name");
      }
      session_.Execute("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values( ", flow_id_,
                       ",", flow_no_, ",", Quoted(value.substr(0, colon)), ",", Quoted(value.substr(colon + 1)), ")");
    }
  }

  void ReadInputParameter() {
    const auto [values, back] = GetFunctionValue(rest_);
    rest_ = back.value_or(rest_);
    session_.Execute("Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent) Values( ",
                     flow_id_, ",", Quoted(values[kInputTitle].value_or("")), ",", values[kOrderNo].value_or(kNoNumber),
                     ",", values[kSort].value_or(kNoNumber), ",", Quoted(values[kClassContent].value_or("")), ")");
  }

  /// Names the line of the text with which a value begins.
  [[nodiscard]] std::string LineOf(std::string_view value) const {
    constexpr std::size_t kLongest = 100;
    std::size_t number = 1;
    std::string_view before = text_.substr(0, static_cast<std::size_t>(value.data() - text_.data()));
    for (std::size_t end; (end = before.find(kLineEnd)) != std::string_view::npos; ++number) {
      before.remove_prefix(end + kLineEnd.size());
    }
    const std::string_view line = SeparateLine(value).front;
    const std::string_view shown = FirstCharacters(line, kLongest);
    std::string name = "line " + std::to_string(number) + " of the definition text, \"";
    name += shown;
    name += shown.size() < line.size() ? "...\"," : "\",";
    return name;
  }

  static constexpr std::string_view kNoNumber = "0";

  db::Session& session_;
  const Value& flow_id_;
  std::string_view text_;
  std::string_view rest_;
  std::string_view flow_no_ = kNoNumber;  // of the last step: parameters belong to it
};

}  // namespace

std::int16_t CreatFlow(db::Session& session, const Value& flow_id, std::string_view text) {
  if (!FlowExists(session, flow_id)) return 1;
  if (text.find("\r\nVer:Flow_V600\r\n") == std::string_view::npos) return 2;
  session.Execute("delete from WorkFlowConstruction where FlowID=", flow_id);
  session.Execute("delete from WorkFlowParameter where FlowID=", flow_id);
  session.Execute("delete from WorkFlowFunctionInput where FlowID=", flow_id);
  DefinitionReader(session, flow_id, text).Read();
  return 0;
}

}  // namespace talm_flow::design
