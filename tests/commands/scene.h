#pragma once

/// A step of a running flow on whose command a test calls: step 3 of flow 7, in instance 901 of tree 900, on record
/// 345 of form 12. The form has an input unit of every group of types; form 13 is there for approvals and answers.

#include <string>
#include <string_view>
#include <vector>

#include "support/invocation.h"
#include "support/world.h"
#include "talm_flow/command.h"

namespace talm_flow::test {

/// A reference to the record that the scene's flow runs on, as a parameter.
inline constexpr std::string_view kRecord = "\"TableID:12,DataID:345\"";

/// A text as an expression whose value it is, whatever it holds.
inline std::string Marked(std::string_view text) { return "MkStr_Begin" + std::string(text) + "MkStr_End"; }

/// A text so many times over.
inline std::string Repeated(std::string_view text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

using Texts = std::vector<std::string>;

/// What a user may write: it would end a literal, begin a further statement, be a marker of some engine or a pattern.
inline const std::string kHostile = "'); Delete From TableData12; --\"?\r\n\t\x01 @x :y $1 %_[]\\";

class Scene {
 public:
  using Operation = void (Command::*)(InvocationContext&);

  Scene() {
    world_.database().CreateFormTable(12, {{"Title", "InputText"},
                                           {"Amount", "InputNum"},
                                           {"Day", "InputTime"},
                                           {"Memo", "InputTextArea"},
                                           {"Doc", "UpLoadFile"},
                                           {"Sign", "InputDigitalSign"},
                                           {"Odd", "InputUnheardOf"}});
    world_.database().CreateFormTable(13, {{"Opinion", "InputText"}});
    world_.Run("Insert Into TableData12 (ID,name,inputtime) Values (345,'张三','2026-01-02 03:04:05')");
    world_.Run("Insert Into TableData12 (ID,name,inputtime) Values (346,'李四','2026-01-03 00:00:00')");
    world_.Run(
        "Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID,TableID,DataID,FlowID) Values (901,900,12,345,7)");
    world_.ForgetTrace();
  }

  [[nodiscard]] World& world() { return world_; }

  void SetVariable(std::string_view name, std::string_view value) {
    world_.Run("Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (900,901," +
               Literal(name) + "," + Literal(value) + ")");
  }

  /// The value of a variable of the tree; "none" when it has no row.
  [[nodiscard]] std::string Variable(std::string_view name) {
    const auto rows = world_.Rows("Select VariableValue From WorkFlowVariable Where VariableName=" + Literal(name));
    return rows.empty() ? "none" : rows.front();
  }

  /// Stores the step's parameters, the first of them as "C_n_1", without calling anything.
  void SetParameters(std::string_view command, const std::vector<std::string>& parameters) {
    world_.Run("Delete From WorkFlowParameter");
    for (std::size_t i = 0; i < parameters.size(); ++i) {
      world_.Parameter(7, 3, std::string(command) + "_" + std::to_string(i + 1), parameters[i]);
    }
  }

  /// Runs a command with these parameters on the traced connection.
  void Run(Operation operation, std::string_view command, const std::vector<std::string>& parameters) {
    SetParameters(command, parameters);
    world_.ForgetTrace();
    RunOn(world_.connection(), operation);
  }

  void RunOn(Connection& connection, Operation operation) {
    Invocation call;
    call.flow_no = 3;
    call.root_execute_id = 900;
    InvocationContext context = call.On(connection);
    (Command(world_.services()).*operation)(context);
  }

  /// What was handed to the connection, without the variable store's statements; the reading of a parameter is given
  /// as "read C_2_1".
  [[nodiscard]] std::vector<std::string> Trace() const {
    std::vector<std::string> result;
    for (const std::string& statement : world_.trace()) {
      if (statement.find("WorkFlowVariable") != std::string::npos) continue;
      result.push_back(Abbreviated(statement));
    }
    return result;
  }

  /// As `Trace`, without the reading of parameters.
  [[nodiscard]] std::vector<std::string> Statements() const {
    std::vector<std::string> result = Trace();
    std::erase_if(result, [](const std::string& line) { return line.starts_with("read "); });
    return result;
  }

  [[nodiscard]] std::vector<std::string> Rows(std::string_view query) { return world_.Rows(query); }

 private:
  static std::string Abbreviated(const std::string& statement) {
    constexpr std::string_view kHead = "Select Top 1 ParameterData From WorkFlowParameter Where ParameterName='";
    constexpr std::string_view kTail = "' And FlowID=7 And FlowNo=3";
    if (!statement.starts_with(kHead) || !statement.ends_with(kTail)) return statement;
    return "read " + statement.substr(kHead.size(), statement.size() - kHead.size() - kTail.size());
  }

  World world_;
};

}  // namespace talm_flow::test
