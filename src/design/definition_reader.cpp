#include "design/definition_reader.h"

#include <cstddef>
#include <string>

#include "design/catalogue.h"
#include "design/definition_parser.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::design {

namespace {

using db::Quoted;

/// Writes what a definition text holds into the database.
class DefinitionLoader {
 public:
  DefinitionLoader(db::Session& session, const Value& flow_id, std::string_view text)
      : session_(session), flow_id_(flow_id), text_(text) {}

  void Remark(std::string_view remark) {
    session_.Execute("update WorkFlowName set Remark=", Quoted(remark), " where flowid=", flow_id_);
  }

  void Step(std::string_view, const Attributes<5>& step) {
    const auto& values = step.values;
    flow_no_ = values[kFlowNo].value_or(kNoNumber);
    session_.Execute("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values( ",
                     flow_id_, ",", flow_no_, ",", values[kParentNo].value_or(kNoNumber), ",",
                     values[kSerial].value_or(kNoNumber), ",", Quoted(values[kRemark].value_or("")), ",",
                     Quoted(values[kCommand].value_or("")), ")");
  }

  void Parameter(std::string_view name, std::string_view data) {
    session_.Execute("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values( ", flow_id_,
                     ",", flow_no_, ",", Quoted(name), ",", Quoted(data), ")");
  }

  void InputParameter(std::string_view, const Attributes<4>& input) {
    const auto& values = input.values;
    session_.Execute("Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent) Values( ",
                     flow_id_, ",", Quoted(values[kInputTitle].value_or("")), ",", values[kOrderNo].value_or(kNoNumber),
                     ",", values[kSort].value_or(kNoNumber), ",", Quoted(values[kClassContent].value_or("")), ")");
  }

  [[noreturn]] void NoParameter(std::string_view value) const {
    throw ArgumentError(LineOf(value) + " is no parameter: it has no \":\" behind a name");
  }

  [[noreturn]] void NotClosed(std::string_view begin) const {
    throw ArgumentError(LineOf(begin) + " has no ParameterEnd: the parameter block is not closed");
  }

  void PassedOver(std::string_view) {}
  void End(std::string_view) {}

 private:
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
  std::string_view flow_no_ = kNoNumber;  // of the last step: parameters belong to it
};

}  // namespace

std::int16_t CreatFlow(db::Session& session, const Value& flow_id, std::string_view text) {
  if (!FlowExists(session, flow_id)) return 1;
  if (text.find("\r\nVer:Flow_V600\r\n") == std::string_view::npos) return 2;
  session.Execute("delete from WorkFlowConstruction where FlowID=", flow_id);
  session.Execute("delete from WorkFlowParameter where FlowID=", flow_id);
  session.Execute("delete from WorkFlowFunctionInput where FlowID=", flow_id);
  DefinitionLoader loader(session, flow_id, text);
  DefinitionParser(text, loader).Parse();
  return 0;
}

}  // namespace talm_flow::design
